#include "Vantrel/app/Application.h"

#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/DisplayCheck.h"
#include "Vantrel/app/MemoryPolicy.h"
#include "Vantrel/app/QuitOnSignals.h"
#include "Vantrel/app/X11Desktop.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>

namespace vantrel {

int runApplication(int argc, char** argv)
{
    if (const auto problem = displayProblem(currentDisplayEnvironment())) {
        static_cast<void>(std::fprintf(stderr, "%s\n", problem->c_str()));
        return 1;
    }
    keepLargeBlocksMapped();
    // The panel places itself and follows the window in front through X11; in a Wayland session that
    // is XWayland, whose DISPLAY was just checked.
    qputenv("QT_QPA_PLATFORM", "xcb");
    // The window class of every window is "Vantrel", one of the names the panel stays up for.
    QApplication::setApplicationName(QStringLiteral("Vantrel"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantrel Solvane"));
    QApplication application(argc, argv);

    const auto desktop = X11Desktop::create();
    if (!desktop) {
        static_cast<void>(std::fputs("vantrel: the X display gives no connection to work with\n", stderr));
        return 1;
    }
    const QuitOnSignals quitOnSignals;
    AppDelegate delegate(productionServices(*desktop));
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &AppDelegate::applicationWillTerminate);
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    return QApplication::exec();
}

} // namespace vantrel
