#include "Vantrel/app/x11/X11Desktop.h"

#include "Vantrel/app/x11/WindowIdentity.h"
#include "Vantrel/app/x11/XcbSupport.h"

#include <QGuiApplication>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace vantrel {
namespace {

constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
constexpr std::uint32_t addState = 1;
constexpr std::uint32_t sourceIsApplication = 1;
constexpr std::uint32_t maxPropertyWords = 1024;

} // namespace

std::unique_ptr<X11Desktop> X11Desktop::create()
{
    const auto screen = qtX11Screen();
    if (!screen) {
        return nullptr;
    }
    xcb_connection_t* connection = screen->connection;
    const Atoms atoms{internAtom(connection, "_NET_ACTIVE_WINDOW"),
                      internAtom(connection, "_NET_WM_PID"),
                      internAtom(connection, "_NET_WM_DESKTOP"),
                      internAtom(connection, "_NET_WM_STATE"),
                      internAtom(connection, "_NET_WM_STATE_STICKY"),
                      internAtom(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                      internAtom(connection, "_NET_WM_STATE_SKIP_PAGER"),
                      internAtom(connection, "_NET_WM_CM_S" + std::to_string(screen->number))};
    return std::unique_ptr<X11Desktop>(new X11Desktop(connection, screen->root, atoms));
}

X11Desktop::X11Desktop(xcb_connection_t* connection, xcb_window_t root, Atoms atoms)
    : connection_(connection), root_(root), atoms_(atoms)
{
    connect(&settler_, &FocusSettler::settled, this, &Desktop::frontmostChanged);

    selectMoreEvents(connection_, root_, XCB_EVENT_MASK_PROPERTY_CHANGE);
    qApp->installNativeEventFilter(this);
}

X11Desktop::~X11Desktop()
{
    if (qApp != nullptr) {
        qApp->removeNativeEventFilter(this);
    }
}

std::optional<FrontmostWindow> X11Desktop::frontmostWindow()
{
    const xcb_window_t window = activeWindow();
    if (window == XCB_WINDOW_NONE) {
        return std::nullopt;
    }
    FrontmostWindow frontmost;
    WmClass wmClass = parseWmClass(propertyBytes(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING));
    frontmost.appId = std::move(wmClass.windowClass);
    frontmost.instanceName = std::move(wmClass.instance);
    if (const auto pid = propertyWords(window, atoms_.wmPid, XCB_ATOM_CARDINAL); !pid.empty()) {
        frontmost.pid = pid.front();
        frontmost.ownProcess = static_cast<pid_t>(pid.front()) == getpid();
    }
    if (QWidget::find(window) != nullptr) {
        frontmost.ownProcess = true;
    }
    return frontmost;
}

bool X11Desktop::hasCompositor()
{
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, atoms_.compositor), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

void X11Desktop::prepareToShow(QWidget& window)
{
    const auto id = static_cast<xcb_window_t>(window.winId());
    if (panelUnmanaged_) {
        const std::uint32_t overrideRedirect = 1;
        xcb_change_window_attributes(connection_, id, XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
    }
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, id, atoms_.wmDesktop, XCB_ATOM_CARDINAL, 32, 1,
                        &allDesktops);
    auto states = propertyWords(id, atoms_.wmState, XCB_ATOM_ATOM);
    for (const xcb_atom_t state : {atoms_.sticky, atoms_.skipTaskbar, atoms_.skipPager}) {
        if (std::find(states.begin(), states.end(), state) == states.end()) {
            states.push_back(state);
        }
    }
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, id, atoms_.wmState, XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(states.size()), states.data());
    xcb_flush(connection_);
}

void X11Desktop::didShow(QWidget& window)
{
    // Window managers read the properties only when they start managing a window; one that already
    // manages it (openbox honours the desktop, others the sticky state) needs the requests.
    const auto id = static_cast<xcb_window_t>(window.winId());
    sendToRoot(id, atoms_.wmDesktop, {allDesktops, sourceIsApplication});
    sendToRoot(id, atoms_.wmState, {addState, atoms_.sticky, atoms_.skipTaskbar, sourceIsApplication});
    sendToRoot(id, atoms_.wmState, {addState, atoms_.skipPager, XCB_ATOM_NONE, sourceIsApplication});
    xcb_flush(connection_);
}

bool X11Desktop::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/)
{
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if (responseType(*event) != XCB_PROPERTY_NOTIFY) {
        return false;
    }
    const auto* notify = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (notify->window == root_ && notify->atom == atoms_.activeWindow) {
        settler_.activeWindowChanged(activeWindow() == XCB_WINDOW_NONE);
    }
    return false;
}

xcb_window_t X11Desktop::activeWindow()
{
    const auto words = propertyWords(root_, atoms_.activeWindow, XCB_ATOM_WINDOW);
    return words.empty() ? xcb_window_t{XCB_WINDOW_NONE} : words.front();
}

std::string X11Desktop::propertyBytes(xcb_window_t window, xcb_atom_t property, xcb_atom_t type)
{
    xcb_generic_error_t* error = nullptr;
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, property, type, 0, maxPropertyWords), &error));
    // A window that is gone by now is no error worth reporting: it simply has no properties.
    std::free(error);
    if (!reply || reply->type != type || reply->format != 8) {
        return {};
    }
    const auto* data = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return {data, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<std::uint32_t> X11Desktop::propertyWords(xcb_window_t window, xcb_atom_t property,
                                                     xcb_atom_t type)
{
    xcb_generic_error_t* error = nullptr;
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, property, type, 0, maxPropertyWords), &error));
    std::free(error);
    if (!reply || reply->type != type || reply->format != 32) {
        return {};
    }
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {data, data + reply->value_len};
}

void X11Desktop::sendToRoot(xcb_window_t window, xcb_atom_t message, const std::vector<std::uint32_t>& data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = message;
    std::copy_n(data.begin(), std::min<std::size_t>(data.size(), 5), std::begin(event.data.data32));
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

} // namespace vantrel
