#pragma once

#include <sys/types.h>

namespace vantrel::limits {

// A descriptor that names one process for as long as it is open (Linux's pidfd), so that a signal sent
// through it never reaches a later process that got the same id. One implementation per operating system.

// The process's descriptor; -1 where the system (or the kernel's version) has none.
int openProcessDescriptor(pid_t pid);

// Sends `signal` through the descriptor; false when it could not, as once the process has been reaped.
bool signalThroughDescriptor(int descriptor, int signal);

} // namespace vantrel::limits
