#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/Desktop.h"

namespace vantrel {

void AppDelegate::followReach()
{
    const AutomaticPin::Step step =
        automaticPin_.follow(services_.desktop->frontmostReach(), pinnedEverywhere);
    for (const std::string& line : step.lines) {
        services_.notice(line);
    }
    if (step.pinned) {
        pinEverywhere(*step.pinned);
    }
}

} // namespace vantrel
