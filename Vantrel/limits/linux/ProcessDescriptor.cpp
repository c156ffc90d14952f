#include "Vantrel/limits/ProcessDescriptor.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace vantrel::limits {

// Through syscall(2): glibc 2.36 declares its wrappers without C linkage, so C++ cannot link them.
int openProcessDescriptor(pid_t pid)
{
    return static_cast<int>(syscall(SYS_pidfd_open, pid, 0U));
}

bool signalThroughDescriptor(int descriptor, int signal)
{
    return syscall(SYS_pidfd_send_signal, descriptor, signal, nullptr, 0U) == 0;
}

} // namespace vantrel::limits
