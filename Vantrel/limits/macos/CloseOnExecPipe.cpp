#include "Vantrel/limits/CloseOnExecPipe.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace vantrel::limits {
namespace {

bool setFlags(int end, bool nonBlocking)
{
    if (fcntl(end, F_SETFD, FD_CLOEXEC) != 0)
        return false;
    if (!nonBlocking)
        return true;
    const int statusFlags = fcntl(end, F_GETFL);
    return statusFlags != -1 && fcntl(end, F_SETFL, statusFlags | O_NONBLOCK) == 0;
}

} // namespace

// macOS has no pipe2, so the flags follow the pipe. The program starts its one kind of child, the limits
// script, from one thread and one at a time: no child can be started in between.
bool openCloseOnExecPipe(std::array<int, 2>& ends, bool nonBlocking)
{
    if (pipe(ends.data()) != 0)
        return false;
    if (setFlags(ends[0], nonBlocking) && setFlags(ends[1], nonBlocking))
        return true;
    const int error = errno;
    close(ends[0]);
    close(ends[1]);
    errno = error;
    return false;
}

} // namespace vantrel::limits
