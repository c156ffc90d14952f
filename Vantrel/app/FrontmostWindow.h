#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantrel {

// What the desktop tells about the window in front; how much it tells depends on the desktop. X11 gives a
// class and an instance (WM_CLASS) and usually a process id, Wayland compositors an app_id and sometimes a
// process id, and macOS names the application itself.
struct FrontmostWindow {
    std::string appId;                        // Wayland app_id, or the class of X11's WM_CLASS
    std::string instanceName;                 // X11's WM_CLASS instance, or KWin's resource name; else empty
    std::optional<std::int64_t> pid;          // the window's process, where the desktop tells it
    bool ownProcess = false;                  // a window of this very program
    std::optional<std::string> localizedName; // the application's name, where the desktop itself gives it

    friend bool operator==(const FrontmostWindow&, const FrontmostWindow&) = default;
};

} // namespace vantrel
