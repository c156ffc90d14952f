#pragma once

#include "Vantrel/app/wayland/GnomeFocus.h"
#include "Vantrel/app/wayland/ToplevelSource.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>

#include <cstdint>
#include <memory>
#include <string>

class QDBusMessage;

namespace vantrel {

// The focused window as Vantrel's GNOME Shell extension tells it on the session bus. The source first asks
// the shell's version (the advice on what to enable names the extension for it), then the focused window
// whenever the extension's name gets an owner (at the start, when the extension is enabled, when the shell
// restarts), and follows the extension's FocusedWindowChanged signal from then on. While the name has no
// owner, or its owner answers nothing understood or nothing in time, the source tells nothing.
class GnomeFocusSource : public ToplevelSource {
    Q_OBJECT

public:
    // Nothing when there is no session bus.
    static std::unique_ptr<GnomeFocusSource> connectTo(const QDBusConnection& bus);

    std::optional<FrontmostWindow> frontmost() const override { return frontmost_; }
    FrontmostReach reach() const override { return reach_; }

private:
    explicit GnomeFocusSource(const QDBusConnection& bus);
    // Connected by name, as QtDBus connects signals, with the message whatever its arguments.
    Q_SLOT void focusedWindowChanged(const QDBusMessage& message);
    void askForShellVersion();
    void followExtension();
    void askForFocusedWindow();
    void ownerChanged(const QString& owner);
    void apply(gnome::FocusAnswer answer);

    QDBusConnection bus_;
    QDBusServiceWatcher owner_;
    std::string shellVersion_;
    std::optional<FrontmostWindow> frontmost_;
    FrontmostReach reach_{FrontmostReach::State::pending, MissingSource::gnomeExtension, {}};
    // Counts the questions for the focused window: an answer overtaken by a later question is stale.
    std::uint64_t question_ = 0;
};

} // namespace vantrel
