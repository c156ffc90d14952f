#include "Vantrel/app/macos/MacDesktop.h"

#include <QCoreApplication>
#include <QWidget>

namespace vantrel {

MacDesktop::MacDesktop() : activations_([this] { emit frontmostChanged(); })
{}

std::optional<FrontmostWindow> MacDesktop::frontmostWindow()
{
    return frontmostWindowOf(appkit::frontmostApplication(), QCoreApplication::applicationPid());
}

bool MacDesktop::hasCompositor()
{
    return true;
}

void MacDesktop::prepareToShow(QWidget& window)
{
    // Qt hides a tool window whenever the application is not active, which an accessory application
    // almost never is.
    window.setAttribute(Qt::WA_MacAlwaysShowToolWindow);
}

void MacDesktop::didShow(QWidget& window)
{
    appkit::floatOnEverySpace(window.winId());
}

} // namespace vantrel
