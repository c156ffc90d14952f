#pragma once

#include <optional>
#include <string>

namespace vantrel {

// What decides whether the panel can run: it needs an X server, which a Wayland session offers only
// through XWayland.
struct DisplayEnvironment {
    std::string display;        // $DISPLAY
    std::string waylandDisplay; // $WAYLAND_DISPLAY
    bool reachable = false;     // a connection to $DISPLAY succeeded
};

// One line for standard error when there is no usable X display; nothing when there is one.
std::optional<std::string> displayProblem(const DisplayEnvironment& environment);

// The process's own environment, with a trial connection to its display.
DisplayEnvironment currentDisplayEnvironment();

} // namespace vantrel
