#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>
#include <xcb/xcb.h>

namespace vantrel {

// Whether an XEmbed system tray runs: the owner of the selection _NET_SYSTEM_TRAY_S<screen>, followed as
// Qt follows it for its tray icons. A tray announces itself with a MANAGER message to the root window; it
// is gone when its selection window is destroyed.
class XEmbedTray : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // Nothing when the application does not run on an X server.
    static std::unique_ptr<XEmbedTray> create();
    ~XEmbedTray() override;
    XEmbedTray(const XEmbedTray&) = delete;
    XEmbedTray& operator=(const XEmbedTray&) = delete;

    bool present() const { return owner_ != XCB_WINDOW_NONE; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

signals:
    void changed();

private:
    XEmbedTray(xcb_connection_t* connection, xcb_window_t root, xcb_atom_t selection, xcb_atom_t manager);

    // Asks the server who owns the selection now and watches that window's end.
    void readOwner();

    xcb_connection_t* connection_;
    xcb_atom_t selection_;
    xcb_atom_t manager_;
    xcb_window_t owner_ = XCB_WINDOW_NONE;
};

} // namespace vantrel
