#include "Vantrel/app/x11/DisplayCheck.h"

#include <cstdlib>
#include <xcb/xcb.h>

namespace vantrel {
namespace {

std::string environmentValue(const char* name)
{
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

bool canConnect(const std::string& display)
{
    xcb_connection_t* connection = xcb_connect(display.c_str(), nullptr);
    const bool connected = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return connected;
}

} // namespace

std::optional<std::string> displayProblem(const DisplayEnvironment& environment)
{
    if (environment.display.empty()) {
        if (!environment.waylandDisplay.empty()) {
            return "vantrel: needs an X display, and this Wayland session has none (DISPLAY is not set): "
                   "enable XWayland or log in to an X11 session";
        }
        return "vantrel: needs an X display (DISPLAY is not set): start it in an X11 or XWayland session";
    }
    if (!environment.reachable) {
        return "vantrel: cannot connect to the X display \"" + environment.display + "\"";
    }
    return std::nullopt;
}

DisplayEnvironment currentDisplayEnvironment()
{
    DisplayEnvironment environment{environmentValue("DISPLAY"), environmentValue("WAYLAND_DISPLAY"), false};
    environment.reachable = !environment.display.empty() && canConnect(environment.display);
    return environment;
}

} // namespace vantrel
