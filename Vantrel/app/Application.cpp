#include "Vantrel/app/Application.h"

#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/MemoryPolicy.h"
#include "Vantrel/app/Platform.h"
#include "Vantrel/app/QuitOnSignals.h"
#include "Vantrel/app/TrayHosts.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>

namespace vantrel {

int runApplication(int argc, char** argv)
{
    if (const auto problem = platform::startProblem()) {
        static_cast<void>(std::fprintf(stderr, "%s\n", problem->c_str()));
        return 1;
    }
    keepLargeBlocksMapped();
    platform::prepareApplication();
    // The window class of every window is "Vantrel", one of the names the panel stays up for.
    QApplication::setApplicationName(QStringLiteral("Vantrel"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantrel Solvane"));
    QApplication application(argc, argv);

    const auto desktop = platform::createDesktop();
    if (!desktop) {
        return 1;
    }
    const auto trayHosts = platform::createTrayHosts();
    const QuitOnSignals quitOnSignals;
    AppDelegate delegate(productionServices(*desktop, trayHosts.get()));
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &AppDelegate::applicationWillTerminate);
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    return QApplication::exec();
}

} // namespace vantrel
