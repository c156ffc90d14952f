#pragma once

#include <memory>
#include <sys/types.h>

namespace vantrel::limits {

// A launched limits script. Copies share one process handle (a pidfd), so a termination request sent
// after the child has been reaped reaches nobody instead of a process that inherited the pid.
class ScriptProcess {
public:
    explicit ScriptProcess(pid_t pid);

    pid_t pid() const { return pid_; }

private:
    friend void requestTermination(const ScriptProcess& process);

    struct Handle;
    pid_t pid_;
    std::shared_ptr<const Handle> handle_;
};

// Sends SIGTERM to the script and to the process group it leads (whatever it started and left holding
// its output), if the script has not been reaped yet; does not wait for either.
void requestTermination(const ScriptProcess& process);

} // namespace vantrel::limits
