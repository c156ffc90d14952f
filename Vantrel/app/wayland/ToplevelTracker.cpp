#include "Vantrel/app/wayland/ToplevelTracker.h"

#include <algorithm>

namespace vantrel {

void ToplevelTracker::created(Handle handle)
{
    toplevels_[handle] = Toplevel{};
}

void ToplevelTracker::appIdChanged(Handle handle, std::string appId)
{
    const auto found = toplevels_.find(handle);
    if (found != toplevels_.end()) {
        found->second.pendingAppId = std::move(appId);
    }
}

void ToplevelTracker::stateChanged(Handle handle, std::span<const std::uint32_t> states)
{
    const auto found = toplevels_.find(handle);
    if (found != toplevels_.end()) {
        found->second.pendingActivated =
            std::find(states.begin(), states.end(), activatedState) != states.end();
    }
}

bool ToplevelTracker::done(Handle handle)
{
    const auto found = toplevels_.find(handle);
    if (found == toplevels_.end()) {
        return false;
    }
    const auto before = activatedAppId();
    Toplevel& toplevel = found->second;
    if (toplevel.pendingActivated && !toplevel.activated) {
        toplevel.activatedAt = ++activations_;
    }
    toplevel.appId = toplevel.pendingAppId;
    toplevel.activated = toplevel.pendingActivated;
    return activatedAppId() != before;
}

bool ToplevelTracker::closed(Handle handle)
{
    const auto before = activatedAppId();
    toplevels_.erase(handle);
    return activatedAppId() != before;
}

bool ToplevelTracker::clear()
{
    const auto before = activatedAppId();
    toplevels_.clear();
    return activatedAppId() != before;
}

std::optional<std::string> ToplevelTracker::activatedAppId() const
{
    const Toplevel* latest = nullptr;
    for (const auto& [handle, toplevel] : toplevels_) {
        if (toplevel.activated && (latest == nullptr || toplevel.activatedAt > latest->activatedAt)) {
            latest = &toplevel;
        }
    }
    if (latest == nullptr) {
        return std::nullopt;
    }
    return latest->appId;
}

} // namespace vantrel
