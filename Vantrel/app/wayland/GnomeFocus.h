#pragma once

#include "Vantrel/app/FrontmostReach.h"
#include "Vantrel/app/FrontmostWindow.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>

namespace vantrel::gnome {

// One value of the extension's a{sv} dictionary as far as it matters: a string, an unsigned 32-bit number,
// or a value of any other type.
using FocusValue = std::variant<std::monostate, std::string, std::uint32_t>;
using FocusDescription = std::map<std::string, FocusValue>;

// A reply to GetFocusedWindow or a FocusedWindowChanged signal, as it came from the extension's bus name.
struct FocusMessage {
    std::string errorName;                       // an error reply's name; empty otherwise
    std::optional<FocusDescription> description; // the dictionary, when the message carried exactly one a{sv}
};

struct FocusAnswer {
    FrontmostReach reach;
    std::optional<FrontmostWindow> window; // nothing: no window has the focus, or none the message tells
};

// What a message tells. A described window: "client-type" ("wayland" or "x11"), "wm-class" (the app_id,
// or the X11 class), "wm-class-instance" (X11 only; GNOME repeats a Wayland window's app_id there) and
// "pid", each optional but the first; an empty dictionary: no window has the focus. Keys of other names
// are left alone; a known key of another type, an unknown client type, an error or no dictionary at all
// tell nothing. An error naming no owner for the name means the extension is not running.
FocusAnswer readFocusMessage(const FocusMessage& message);

} // namespace vantrel::gnome
