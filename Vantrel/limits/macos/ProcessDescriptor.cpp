#include "Vantrel/limits/ProcessDescriptor.h"

#include <cerrno>

namespace vantrel::limits {

// macOS has no process descriptors: the process id is the only handle there is.
int openProcessDescriptor(pid_t /*pid*/)
{
    errno = ENOSYS;
    return -1;
}

bool signalThroughDescriptor(int /*descriptor*/, int /*signal*/)
{
    errno = ENOSYS;
    return false;
}

} // namespace vantrel::limits
