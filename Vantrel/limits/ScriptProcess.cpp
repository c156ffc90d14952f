#include "Vantrel/limits/ScriptProcess.h"

#include "Vantrel/limits/ProcessDescriptor.h"

#include <csignal>
#include <unistd.h>

namespace vantrel::limits {

struct ScriptProcess::Handle {
    explicit Handle(pid_t pid) : pidfd(openProcessDescriptor(pid)) {}
    ~Handle()
    {
        if (pidfd >= 0) {
            close(pidfd);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    Handle(Handle&&) = delete;
    Handle& operator=(Handle&&) = delete;

    int pidfd;
};

ScriptProcess::ScriptProcess(pid_t pid) : pid_(pid), handle_(std::make_shared<const Handle>(pid))
{}

void requestTermination(const ScriptProcess& process)
{
    if (process.handle_->pidfd >= 0) {
        // Fails quietly (ESRCH) once the worker has reaped the child. Until then its pid is also the id of
        // its process group, which nothing else can take, so the group gets the request too: a child that
        // the script left behind holding the output would otherwise keep the run open after quitting.
        if (signalThroughDescriptor(process.handle_->pidfd, SIGTERM)) {
            kill(-process.pid(), SIGTERM);
        }
        return;
    }
    // Without a pidfd (macOS, a kernel before 5.3, no descriptor left) the pid is the only handle there is.
    kill(process.pid(), SIGTERM);
}

} // namespace vantrel::limits
