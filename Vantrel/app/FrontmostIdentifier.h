#pragma once

#include "Vantrel/app/CompanionApps.h"
#include "Vantrel/app/FrontmostWindow.h"
#include "Vantrel/app/ProcessTree.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace vantrel {

// The platform's lookups behind identifying an application; either may be empty where the platform has none.
struct IdentificationSources {
    // The name of the window's desktop entry in the user's language.
    std::function<std::optional<std::string>(const FrontmostWindow&)> entryName;
    // What the window's process and its descendants tell.
    std::function<ProcessFindings(std::int64_t pid)> inspectProcesses;
};

// Turns the window in front into the application behind it, and keeps it: a terminal's tabs start and end
// programs without any window changing, so while one is in front its processes are looked at again on
// request.
class FrontmostIdentifier {
public:
    explicit FrontmostIdentifier(IdentificationSources sources);

    // The window in front changed: its name and its processes, looked up afresh.
    const std::optional<FrontmostApplication>& identify(const std::optional<FrontmostWindow>& window);
    // While a terminal is in front, its processes again; true when that changed the application.
    bool recheckTerminal();

    const std::optional<FrontmostApplication>& current() const { return current_; }

private:
    IdentificationSources sources_;
    std::optional<FrontmostApplication> current_;
    std::optional<std::int64_t> terminalPid_;
};

} // namespace vantrel
