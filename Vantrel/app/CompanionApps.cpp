#include "Vantrel/app/CompanionApps.h"

#include <algorithm>

namespace vantrel {

bool isCompanionName(std::string_view name)
{
    return std::find(companionAppNames.begin(), companionAppNames.end(), name) != companionAppNames.end();
}

bool isCompanion(const std::optional<FrontmostApplication>& frontmost)
{
    if (!frontmost) {
        return false;
    }
    if (frontmost->ownProcess) {
        return isCompanionName(ownAppName);
    }
    if (frontmost->runsCodexCli) {
        return isCompanionName(codexAppName);
    }
    if (frontmost->name) {
        return isCompanionName(*frontmost->name);
    }
    return isCompanionName(frontmost->appId) || isCompanionName(frontmost->processName);
}

} // namespace vantrel
