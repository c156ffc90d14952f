#include "Vantrel/app/MemoryPolicy.h"

#include <malloc.h>

namespace vantrel {

void keepLargeBlocksMapped()
{
    // Setting the threshold also turns off glibc's raising of it.
    constexpr int largeBlockBytes = 256 * 1024;
    static_cast<void>(mallopt(M_MMAP_THRESHOLD, largeBlockBytes));
}

} // namespace vantrel
