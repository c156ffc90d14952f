#include "Vantrel/app/MemoryPolicy.h"

namespace vantrel {

// macOS's allocator has no such threshold to set: it keeps large blocks apart from the small ones and tells
// the kernel itself when their pages are free.
void keepLargeBlocksMapped()
{}

} // namespace vantrel
