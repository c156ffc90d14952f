#include "Vantrel/app/AutomaticPin.h"

#include "Vantrel/app/ReachAdvice.h"

namespace vantrel {

AutomaticPin::Step AutomaticPin::follow(const FrontmostReach& reach, bool pinned)
{
    Step step;
    if (reach.state == FrontmostReach::State::tellsNothing) {
        const bool pin = !userChose_ && !pinned;
        if (pin) {
            pinnedByVantrel_ = true;
            step.pinned = true;
        }
        if (!advised_) {
            advised_ = true;
            step.lines.push_back(reachAdvice(reach, pinned || pin));
        } else if (pin) {
            step.lines.emplace_back(
                "vantrel: nothing tells which window is in front any more, so the panel is "
                "pinned until something does");
        }
    } else if (reach.state == FrontmostReach::State::tells && pinnedByVantrel_) {
        pinnedByVantrel_ = false;
        if (pinned) {
            step.pinned = false;
            step.lines.emplace_back(
                "vantrel: the window in front is told now, so the panel is no longer pinned");
        }
    }
    return step;
}

void AutomaticPin::userChose()
{
    userChose_ = true;
    pinnedByVantrel_ = false;
}

} // namespace vantrel
