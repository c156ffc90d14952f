#include "Vantrel/app/CompanionApps.h"

#include <algorithm>

namespace vantrel {

bool isCompanionName(std::string_view name)
{
    return std::find(companionAppNames.begin(), companionAppNames.end(), name) != companionAppNames.end();
}

bool isCompanion(const std::optional<FrontmostWindow>& frontmost)
{
    if (!frontmost) {
        return false;
    }
    if (frontmost->ownProcess) {
        return isCompanionName(ownAppName);
    }
    return isCompanionName(frontmost->windowClass) || isCompanionName(frontmost->processName);
}

} // namespace vantrel
