#pragma once

#include "Vantrel/app/FrontmostReach.h"

#include <string>
#include <string_view>

namespace vantrel {

// The GNOME Shell extension that tells Vantrel the window in front, one uuid per style it is built in.
inline constexpr std::string_view gnome43ExtensionUuid = "vantrel-focus-gnome43@vantrel.github.io";
inline constexpr std::string_view gnome45ExtensionUuid = "vantrel-focus@vantrel.github.io";

enum class ExtensionStyle {
    unknown, // the version does not read as one
    tooOld,  // before GNOME 43, which neither style serves
    gnome43, // 43 and 44: a script in the "imports" style
    gnome45, // 45 and later: an ES module
};

// The style of extension a GNOME Shell version ("43.9", "45.rc", "3.38.4") loads.
ExtensionStyle extensionStyleFor(std::string_view shellVersion);

// One line for standard error where nothing tells the window in front: what is missing, that the panel
// stays pinned for it (when it is), and what to enable.
std::string reachAdvice(const FrontmostReach& reach, bool pinned);

} // namespace vantrel
