#include "Vantrel/app/FrontmostIdentifier.h"

#include <utility>

namespace vantrel {

FrontmostIdentifier::FrontmostIdentifier(IdentificationSources sources) : sources_(std::move(sources))
{}

const std::optional<FrontmostApplication>&
FrontmostIdentifier::identify(const std::optional<FrontmostWindow>& window)
{
    terminalPid_.reset();
    if (!window) {
        current_.reset();
        return current_;
    }
    FrontmostApplication application;
    application.appId = window->appId;
    application.ownProcess = window->ownProcess;
    application.name = window->localizedName;
    if (!application.name && sources_.entryName) {
        application.name = sources_.entryName(*window);
    }
    if (window->pid && !window->ownProcess && sources_.inspectProcesses) {
        const ProcessFindings findings = sources_.inspectProcesses(*window->pid);
        application.processName = findings.processName;
        application.runsCodexCli = findings.runsCodexCli;
        if (findings.isTerminal) {
            terminalPid_ = window->pid;
        }
    }
    current_ = std::move(application);
    return current_;
}

bool FrontmostIdentifier::recheckTerminal()
{
    if (!terminalPid_ || !current_) {
        return false;
    }
    const ProcessFindings findings = sources_.inspectProcesses(*terminalPid_);
    if (findings.runsCodexCli == current_->runsCodexCli) {
        return false;
    }
    current_->runsCodexCli = findings.runsCodexCli;
    return true;
}

} // namespace vantrel
