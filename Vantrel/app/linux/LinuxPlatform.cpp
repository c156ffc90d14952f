#include "Vantrel/app/Platform.h"
#include "Vantrel/app/linux/DesktopEntryNames.h"
#include "Vantrel/app/linux/LinuxTrayHosts.h"
#include "Vantrel/app/linux/ProcfsProcessTable.h"
#include "Vantrel/app/wayland/WaylandSession.h"
#include "Vantrel/app/x11/DisplayCheck.h"
#include "Vantrel/app/x11/X11Desktop.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstdio>

namespace vantrel::platform {

std::optional<std::string> startProblem()
{
    return displayProblem(currentDisplayEnvironment());
}

void prepareApplication()
{
    // The panel places itself and follows the window in front through X11; in a Wayland session that is
    // XWayland, whose DISPLAY was just checked.
    qputenv("QT_QPA_PLATFORM", "xcb");
}

std::unique_ptr<Desktop> createDesktop()
{
    auto desktop = X11Desktop::create();
    if (!desktop) {
        static_cast<void>(std::fputs("vantrel: the X display gives no connection to work with\n", stderr));
        return nullptr;
    }
    return createSessionDesktop(std::move(desktop));
}

std::unique_ptr<TrayHosts> createTrayHosts()
{
    return std::make_unique<LinuxTrayHosts>();
}

IdentificationSources identificationSources()
{
    // Both live as long as the process: the names are kept between lookups, the table holds nothing.
    static DesktopEntryNames names;
    static ProcfsProcessTable processes;
    return {[](const FrontmostWindow& window) { return names.nameFor(window); },
            [](std::int64_t pid) { return inspectProcessTree(pid, processes); }};
}

} // namespace vantrel::platform
