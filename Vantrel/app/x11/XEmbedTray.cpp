#include "Vantrel/app/x11/XEmbedTray.h"

#include "Vantrel/app/x11/XcbSupport.h"

#include <QCoreApplication>

#include <string>

namespace vantrel {

std::unique_ptr<XEmbedTray> XEmbedTray::create()
{
    const auto screen = qtX11Screen();
    if (!screen) {
        return nullptr;
    }
    const xcb_atom_t selection =
        internAtom(screen->connection, "_NET_SYSTEM_TRAY_S" + std::to_string(screen->number));
    return std::unique_ptr<XEmbedTray>(new XEmbedTray(screen->connection, screen->root, selection,
                                                      internAtom(screen->connection, "MANAGER")));
}

XEmbedTray::XEmbedTray(xcb_connection_t* connection, xcb_window_t root, xcb_atom_t selection,
                       xcb_atom_t manager)
    : connection_(connection), selection_(selection), manager_(manager)
{
    // A tray's MANAGER message goes to the root window's structure listeners.
    selectMoreEvents(connection_, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    readOwner();
    qApp->installNativeEventFilter(this);
}

XEmbedTray::~XEmbedTray()
{
    if (qApp != nullptr) {
        qApp->removeNativeEventFilter(this);
    }
}

bool XEmbedTray::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/)
{
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const std::uint8_t type = responseType(*event);
    if (type == XCB_CLIENT_MESSAGE) {
        const auto* announcement = reinterpret_cast<const xcb_client_message_event_t*>(event);
        if (announcement->type == manager_ && announcement->format == 32 &&
            announcement->data.data32[1] == selection_) {
            readOwner();
        }
    } else if (type == XCB_DESTROY_NOTIFY) {
        if (reinterpret_cast<const xcb_destroy_notify_event_t*>(event)->window == owner_) {
            readOwner();
        }
    }
    return false;
}

void XEmbedTray::readOwner()
{
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, selection_), nullptr));
    xcb_window_t owner = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
    if (owner != XCB_WINDOW_NONE) {
        // Its destruction is the tray's end. A window destroyed before it could be watched is a tray gone
        // already: the failure is checked here, so it is not reported as an error of the application's.
        const std::uint32_t structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        const Reply<xcb_generic_error_t> gone(xcb_request_check(
            connection_,
            xcb_change_window_attributes_checked(connection_, owner, XCB_CW_EVENT_MASK, &structure)));
        if (gone) {
            owner = XCB_WINDOW_NONE;
        }
    }
    if (owner != owner_) {
        owner_ = owner;
        emit changed();
    }
}

} // namespace vantrel
