#pragma once

#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/x11/FocusSettler.h"

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace vantrel {

// The desktop as an X server and an EWMH window manager present it (also XWayland).
class X11Desktop : public Desktop, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // Nothing when the application does not run on an X server.
    static std::unique_ptr<X11Desktop> create();
    ~X11Desktop() override;
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;

    std::optional<FrontmostWindow> frontmostWindow() override;
    bool hasCompositor() override;
    void prepareToShow(QWidget& window) override;
    void didShow(QWidget& window) override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    // From now on the panel maps as an override-redirect window, which no window manager places or
    // focuses: the one way to the bottom right where the window manager ignores where a window asks to
    // be (sway's XWayland centres floating windows).
    void keepPanelUnmanaged() { panelUnmanaged_ = true; }

private:
    struct Atoms {
        xcb_atom_t activeWindow, wmPid, wmDesktop, wmState, sticky, skipTaskbar, skipPager, compositor;
    };

    X11Desktop(xcb_connection_t* connection, xcb_window_t root, Atoms atoms);

    xcb_window_t activeWindow();
    std::string propertyBytes(xcb_window_t window, xcb_atom_t property, xcb_atom_t type);
    std::vector<std::uint32_t> propertyWords(xcb_window_t window, xcb_atom_t property, xcb_atom_t type);
    void sendToRoot(xcb_window_t window, xcb_atom_t message, const std::vector<std::uint32_t>& data);

    xcb_connection_t* connection_;
    xcb_window_t root_;
    Atoms atoms_;
    FocusSettler settler_;
    bool panelUnmanaged_ = false;
};

} // namespace vantrel
