#include "Vantrel/app/wayland/WaylandSession.h"

#include "Vantrel/app/SessionChoice.h"
#include "Vantrel/app/wayland/ForeignToplevelSource.h"
#include "Vantrel/app/wayland/GnomeFocusSource.h"
#include "Vantrel/app/wayland/PlasmaWindowSource.h"
#include "Vantrel/app/wayland/SilentSource.h"
#include "Vantrel/app/wayland/SwayIpcSource.h"
#include "Vantrel/app/wayland/WaylandDesktop.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QtGlobal>

namespace vantrel {
namespace {

std::string environment(const char* name)
{
    return qEnvironmentVariable(name).toStdString();
}

std::unique_ptr<ToplevelSource> connectSource(FrontmostSource kind, const SessionFacts& facts,
                                              WaylandConnection* connection)
{
    switch (kind) {
    case FrontmostSource::swayIpc:
        return SwayIpcSource::connectTo(facts.swaySocket);
    case FrontmostSource::wlrForeignToplevel:
        return connection != nullptr ? ForeignToplevelSource::create(*connection) : nullptr;
    case FrontmostSource::kdeWindowManagement:
        return connection != nullptr ? PlasmaWindowSource::create(*connection) : nullptr;
    case FrontmostSource::gnomeExtension:
        return GnomeFocusSource::connectTo(QDBusConnection::sessionBus());
    case FrontmostSource::x11: // the X11 desktop itself, which serves when no source connects
        break;
    }
    return nullptr;
}

} // namespace

std::unique_ptr<Desktop> createSessionDesktop(std::unique_ptr<X11Desktop> x11)
{
    SessionFacts facts{
        environment("WAYLAND_DISPLAY"), environment("XDG_CURRENT_DESKTOP"), environment("SWAYSOCK"), {}};
    // Without WAYLAND_DISPLAY libwayland would try "wayland-0" all the same.
    auto connection = facts.waylandDisplay.empty() ? nullptr : WaylandConnection::connect();
    if (connection) {
        facts.globals = connection->interfaces();
    }
    if (panelMustBeUnmanaged(facts)) {
        x11->keepPanelUnmanaged();
    }
    for (const FrontmostSource kind : frontmostSources(facts)) {
        if (auto source = connectSource(kind, facts, connection.get())) {
            return std::make_unique<WaylandDesktop>(std::move(x11), std::move(connection), std::move(source));
        }
    }
    if (facts.waylandDisplay.empty()) {
        return x11;
    }
    return std::make_unique<WaylandDesktop>(std::move(x11), nullptr,
                                            std::make_unique<SilentSource>(missingSourceIn(facts)));
}

} // namespace vantrel
