#pragma once

#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/wayland/ToplevelSource.h"
#include "Vantrel/app/wayland/WaylandConnection.h"
#include "Vantrel/app/x11/FocusSettler.h"
#include "Vantrel/app/x11/X11Desktop.h"

#include <memory>

namespace vantrel {

// A Wayland session: the panel is an XWayland window that the X11 desktop places and keeps, and a source
// of the session's own tells which window is in front, native or X11. While the source tells nothing (a
// GNOME Shell extension not running, no source at all), XWayland still tells X11 windows.
class WaylandDesktop : public Desktop {
    Q_OBJECT

public:
    // The connection, where there is one, is the source's and outlives it.
    WaylandDesktop(std::unique_ptr<X11Desktop> panelDesktop, std::unique_ptr<WaylandConnection> connection,
                   std::unique_ptr<ToplevelSource> source);

    std::optional<FrontmostWindow> frontmostWindow() override;
    FrontmostReach frontmostReach() override { return source_->reach(); }
    bool hasCompositor() override { return panelDesktop_->hasCompositor(); }
    void prepareToShow(QWidget& window) override { panelDesktop_->prepareToShow(window); }
    void didShow(QWidget& window) override { panelDesktop_->didShow(window); }

private:
    bool sourceTells() const { return source_->reach().state == FrontmostReach::State::tells; }
    void sourceLost();

    std::unique_ptr<X11Desktop> panelDesktop_;
    std::unique_ptr<WaylandConnection> connection_;
    std::unique_ptr<ToplevelSource> source_;
    FocusSettler settler_;
};

} // namespace vantrel
