#pragma once

#include "Vantrel/app/FrontmostWindow.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantrel {

// The application in front as a desktop that names applications itself tells it (macOS: NSWorkspace's
// frontmost application): its localised name, where it has one, and its process.
struct ActiveApplication {
    std::optional<std::string> localizedName;
    std::int64_t pid = 0;
};

// The window in front as the visibility rule reads it: the name as it is (an application without one counts
// by the empty name, which no companion has) and whether it is this very program. Nothing when no
// application is in front.
std::optional<FrontmostWindow> frontmostWindowOf(const std::optional<ActiveApplication>& active,
                                                 std::int64_t ownPid);

} // namespace vantrel
