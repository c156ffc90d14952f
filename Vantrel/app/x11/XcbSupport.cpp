#include "Vantrel/app/x11/XcbSupport.h"

#include <QGuiApplication>
#include <QtGui/qguiapplication_platform.h>

namespace vantrel {
namespace {

xcb_screen_t* screenNumbered(xcb_connection_t* connection, int number)
{
    auto iterator = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int index = 0; iterator.rem > 0; ++index, xcb_screen_next(&iterator)) {
        if (index == number) {
            return iterator.data;
        }
    }
    return nullptr;
}

int displayScreenNumber()
{
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) == 0) {
        screen = 0;
    }
    std::free(host);
    return screen;
}

} // namespace

std::optional<QtX11Screen> qtX11Screen()
{
    auto* x11 = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (x11 == nullptr || x11->connection() == nullptr) {
        return std::nullopt;
    }
    xcb_connection_t* connection = x11->connection();
    int number = displayScreenNumber();
    const xcb_screen_t* screen = screenNumbered(connection, number);
    if (screen == nullptr) {
        number = 0;
        screen = screenNumbered(connection, number);
    }
    if (screen == nullptr) {
        return std::nullopt;
    }
    return QtX11Screen{connection, screen->root, number};
}

xcb_atom_t internAtom(xcb_connection_t* connection, const std::string& name)
{
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void selectMoreEvents(xcb_connection_t* connection, xcb_window_t window, std::uint32_t mask)
{
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr));
    const std::uint32_t selected = (attributes ? attributes->your_event_mask : 0U) | mask;
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &selected);
    xcb_flush(connection);
}

} // namespace vantrel
