#pragma once

#include "Vantrel/app/FrontmostReach.h"

#include <optional>
#include <string>
#include <vector>

namespace vantrel {

// Where nothing tells the window in front, the panel could never show itself and Vantrel would look broken,
// so Vantrel pins the panel itself and says once what to enable. Once something tells (the GNOME Shell
// extension enabled while Vantrel runs), Vantrel lifts its own pin, and puts it back should the session
// fall silent again. A choice from the menu is the user's and stands: from then on only the user pins and
// unpins, whatever the session tells.
class AutomaticPin {
public:
    struct Step {
        std::optional<bool> pinned;     // the pin to set; nothing leaves it as it is
        std::vector<std::string> lines; // for standard error
    };

    // The session's reach, first known or changed, and whether the panel is pinned now.
    Step follow(const FrontmostReach& reach, bool pinned);
    // The user pinned or unpinned from the menu.
    void userChose();

private:
    bool userChose_ = false;
    bool pinnedByVantrel_ = false;
    bool advised_ = false;
};

} // namespace vantrel
