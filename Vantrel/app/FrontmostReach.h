#pragma once

#include <string>

namespace vantrel {

// What keeps a session from telling Vantrel which window is in front.
enum class MissingSource {
    gnomeExtension,       // GNOME Shell without Vantrel's extension running
    faultyGnomeExtension, // the extension's bus name answers nothing Vantrel understands, or nothing at all
    kwinGrant,            // KWin without org_kde_plasma_window_management granted to Vantrel
    compositorInterface,  // another Wayland compositor, offering no interface Vantrel knows
};

// Whether the session tells which window is in front: an X11 session and most Wayland compositors do,
// GNOME Shell only through Vantrel's extension, which may answer only after the start or never.
struct FrontmostReach {
    enum class State {
        pending, // the first answer is still to come
        tells,
        tellsNothing,
    };

    State state = State::tells;
    // Where nothing tells: what is missing, and GNOME Shell's version where it said it ("43.9").
    MissingSource missing = MissingSource::compositorInterface;
    std::string shellVersion;

    friend bool operator==(const FrontmostReach&, const FrontmostReach&) = default;
};

} // namespace vantrel
