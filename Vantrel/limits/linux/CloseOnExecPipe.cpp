#include "Vantrel/limits/CloseOnExecPipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace vantrel::limits {

bool openCloseOnExecPipe(std::array<int, 2>& ends, bool nonBlocking)
{
    return pipe2(ends.data(), O_CLOEXEC | (nonBlocking ? O_NONBLOCK : 0)) == 0;
}

} // namespace vantrel::limits
