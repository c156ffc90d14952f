#pragma once

#include "Vantrel/app/FrontmostWindow.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace vantrel {

// Follows the windows that KWin announces through org_kde_plasma_window_management and tells the active
// one. A window counts once its initial state has arrived, so that its app_id and process come with it;
// until then, and after it is unmapped, it is left out. Should two windows be active at once (a second
// activation told before the first one's end), the one activated last counts.
class PlasmaWindowTracker {
public:
    // Any unique number per window: the client uses the proxy's address.
    using Handle = std::uintptr_t;

    // org_kde_plasma_window_management.state: active is bit 0.
    static constexpr std::uint32_t activeState = 1U << 0U;

    void created(Handle handle);
    // Each returns whether what activeWindow() tells has changed.
    bool appIdChanged(Handle handle, std::string appId);
    bool resourceNameChanged(Handle handle, std::string resourceName);
    bool pidChanged(Handle handle, std::uint32_t pid);
    bool stateChanged(Handle handle, std::uint32_t flags);
    bool initialStateDone(Handle handle);
    bool unmapped(Handle handle);
    // All windows gone at once (the connection dropped).
    bool clear();

    // The active window: its app_id (KWin's desktop file name for the window, else its resource class,
    // which KWin lower-cases for X11 windows), its resource name (the X11 instance, or a native window's
    // program name) and its process where KWin knows one; nothing when no window is active.
    std::optional<FrontmostWindow> activeWindow() const;

private:
    struct Window {
        std::string appId;
        std::string resourceName;
        std::uint32_t pid = 0;
        bool active = false;
        bool complete = false;
        std::uint64_t activatedAt = 0;
    };

    template <typename Change> bool change(Handle handle, Change&& apply);

    std::map<Handle, Window> windows_;
    std::uint64_t activations_ = 0;
};

} // namespace vantrel
