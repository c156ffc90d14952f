#include "Vantrel/app/wayland/PlasmaWindowTracker.h"

namespace vantrel {

void PlasmaWindowTracker::created(Handle handle)
{
    windows_[handle] = Window{};
}

template <typename Change> bool PlasmaWindowTracker::change(Handle handle, Change&& apply)
{
    const auto found = windows_.find(handle);
    if (found == windows_.end()) {
        return false;
    }
    const auto before = activeWindow();
    apply(found->second);
    return activeWindow() != before;
}

bool PlasmaWindowTracker::appIdChanged(Handle handle, std::string appId)
{
    return change(handle, [&appId](Window& window) { window.appId = std::move(appId); });
}

bool PlasmaWindowTracker::resourceNameChanged(Handle handle, std::string resourceName)
{
    return change(handle, [&resourceName](Window& window) { window.resourceName = std::move(resourceName); });
}

bool PlasmaWindowTracker::pidChanged(Handle handle, std::uint32_t pid)
{
    return change(handle, [pid](Window& window) { window.pid = pid; });
}

bool PlasmaWindowTracker::stateChanged(Handle handle, std::uint32_t flags)
{
    return change(handle, [this, flags](Window& window) {
        const bool active = (flags & activeState) != 0;
        if (active && !window.active) {
            window.activatedAt = ++activations_;
        }
        window.active = active;
    });
}

bool PlasmaWindowTracker::initialStateDone(Handle handle)
{
    return change(handle, [](Window& window) { window.complete = true; });
}

bool PlasmaWindowTracker::unmapped(Handle handle)
{
    const auto before = activeWindow();
    windows_.erase(handle);
    return activeWindow() != before;
}

bool PlasmaWindowTracker::clear()
{
    const auto before = activeWindow();
    windows_.clear();
    return activeWindow() != before;
}

std::optional<FrontmostWindow> PlasmaWindowTracker::activeWindow() const
{
    const Window* latest = nullptr;
    for (const auto& [handle, window] : windows_) {
        if (window.complete && window.active &&
            (latest == nullptr || window.activatedAt > latest->activatedAt)) {
            latest = &window;
        }
    }
    if (latest == nullptr) {
        return std::nullopt;
    }
    FrontmostWindow frontmost;
    frontmost.appId = latest->appId;
    frontmost.instanceName = latest->resourceName;
    // KWin sends 0 for a window whose process it could not learn.
    if (latest->pid != 0) {
        frontmost.pid = latest->pid;
    }
    return frontmost;
}

} // namespace vantrel
