#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace vantrel {

// Follows the toplevels that zwlr_foreign_toplevel_manager_v1 announces and tells the app_id of the
// activated one. A handle's app_id and state are pending until its "done" event applies them, as the
// protocol has it. Should a compositor report two activated toplevels (one per seat), the one activated
// last counts.
class ToplevelTracker {
public:
    // Any unique number per toplevel: the client uses the handle's address.
    using Handle = std::uintptr_t;

    // zwlr_foreign_toplevel_handle_v1.state: activated is 2.
    static constexpr std::uint32_t activatedState = 2;

    void created(Handle handle);
    void appIdChanged(Handle handle, std::string appId);
    void stateChanged(Handle handle, std::span<const std::uint32_t> states);
    // Each returns whether what activatedAppId() tells has changed.
    bool done(Handle handle);
    bool closed(Handle handle);
    // All toplevels gone at once (the manager finished, or the connection dropped).
    bool clear();

    // Nothing when no toplevel is activated; an empty string when the activated one has no app_id.
    std::optional<std::string> activatedAppId() const;

private:
    struct Toplevel {
        std::string appId;
        bool activated = false;
        std::string pendingAppId;
        bool pendingActivated = false;
        std::uint64_t activatedAt = 0;
    };

    std::map<Handle, Toplevel> toplevels_;
    std::uint64_t activations_ = 0;
};

} // namespace vantrel
