#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <xcb/xcb.h>

namespace vantrel {

// xcb's replies are malloc'ed; this frees them.
struct FreeDeleter {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <typename T> using Reply = std::unique_ptr<T, FreeDeleter>;

// The X connection Qt works on and the screen that $DISPLAY names, which is the one Qt uses.
struct QtX11Screen {
    xcb_connection_t* connection;
    xcb_window_t root;
    int number;
};

// Nothing when the application does not run on an X server.
std::optional<QtX11Screen> qtX11Screen();

xcb_atom_t internAtom(xcb_connection_t* connection, const std::string& name);

// Adds events to those this connection already selects on the window (Qt selects some on the root window):
// adding, not replacing, keeps Qt's own.
void selectMoreEvents(xcb_connection_t* connection, xcb_window_t window, std::uint32_t mask);

// An event's type, whether the server or another client (XSendEvent) sent it.
inline std::uint8_t responseType(const xcb_generic_event_t& event)
{
    constexpr std::uint8_t sentByClient = 0x80;
    return event.response_type & static_cast<std::uint8_t>(~sentByClient);
}

} // namespace vantrel
