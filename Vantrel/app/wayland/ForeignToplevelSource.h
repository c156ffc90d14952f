#pragma once

#include "Vantrel/app/wayland/ToplevelSource.h"
#include "Vantrel/app/wayland/ToplevelTracker.h"

#include <memory>

struct wl_array;
struct zwlr_foreign_toplevel_handle_v1;
struct zwlr_foreign_toplevel_manager_v1;

namespace vantrel {

class WaylandConnection;

// The activated toplevel as zwlr_foreign_toplevel_manager_v1 tells it (wlroots compositors: sway,
// Hyprland, niri, labwc, Wayfire). The protocol names the app_id but not the process.
class ForeignToplevelSource : public ToplevelSource {
    Q_OBJECT

public:
    // Nothing when the compositor does not offer the protocol.
    static std::unique_ptr<ForeignToplevelSource> create(WaylandConnection& connection);
    ~ForeignToplevelSource() override;
    ForeignToplevelSource(const ForeignToplevelSource&) = delete;
    ForeignToplevelSource& operator=(const ForeignToplevelSource&) = delete;

    std::optional<FrontmostWindow> frontmost() const override;

private:
    explicit ForeignToplevelSource(zwlr_foreign_toplevel_manager_v1* manager);
    void connectionLost();

    static void toplevel(void* data, zwlr_foreign_toplevel_manager_v1* manager,
                         zwlr_foreign_toplevel_handle_v1* handle);
    static void finished(void* data, zwlr_foreign_toplevel_manager_v1* manager);
    static void appId(void* data, zwlr_foreign_toplevel_handle_v1* handle, const char* appId);
    static void state(void* data, zwlr_foreign_toplevel_handle_v1* handle, wl_array* states);
    static void done(void* data, zwlr_foreign_toplevel_handle_v1* handle);
    static void closed(void* data, zwlr_foreign_toplevel_handle_v1* handle);

    zwlr_foreign_toplevel_manager_v1* manager_;
    ToplevelTracker tracker_;
};

} // namespace vantrel
