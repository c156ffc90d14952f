#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/Desktop.h"

#include <QAction>

namespace vantrel {

void AppDelegate::followReach()
{
    const AutomaticPin::Step step =
        automaticPin_.follow(services_.desktop->frontmostReach(), pinnedEverywhere);
    for (const std::string& line : step.lines) {
        services_.notice(line);
    }
    if (step.pinned) {
        pinnedEverywhere = *step.pinned;
        if (everywhereEntry != nullptr) {
            everywhereEntry->setChecked(pinnedEverywhere);
        }
        focusChanged();
    }
}

} // namespace vantrel
