#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/CompanionApps.h"
#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/PanelGeometry.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"

#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

namespace vantrel {
namespace {

// The views that createPanel() builds; reaching one before it ran is a programming error.
template <typename View> View& built(View* view)
{
    if (view == nullptr) {
        qFatal("vantrel: the panel is used before it was built");
    }
    return *view;
}

bool isShown(const ui::MiniSwitch& control)
{
    return control.state() != ui::MiniSwitch::State::Off;
}

// The height the content needs at the panel's content width (wrapped text is taller when narrow).
int fittingHeight(const QWidget& content)
{
    const int forWidth = content.hasHeightForWidth() ? content.heightForWidth(contentWidth) : -1;
    return forWidth >= 0 ? forWidth : content.sizeHint().height();
}

const QScreen* panelScreen(const QWidget& panel)
{
    if (const QScreen* screen = panel.screen()) {
        return screen;
    }
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        return screen;
    }
    const auto screens = QGuiApplication::screens();
    return screens.isEmpty() ? nullptr : screens.front();
}

// Qt measures and lays out lazily, through events, and a window that is not on screen only when it is
// shown: cached size hints along the way can be stale. So every view and layout of the content forgets
// what it measured before the content is measured...
void forgetMeasurements(QWidget& top)
{
    for (QWidget* view : top.findChildren<QWidget*>()) {
        view->updateGeometry();
    }
    for (QLayout* layout : top.findChildren<QLayout*>()) {
        layout->invalidate();
    }
}

// ...and laid out again from the top down (findChildren lists parents before their children), so the
// views have their final geometry whether the panel is on screen or not.
void layOutSubtree(QWidget& top)
{
    if (QLayout* layout = top.layout()) {
        layout->activate();
    }
    for (const QWidget* child : top.findChildren<QWidget*>()) {
        if (QLayout* layout = child->layout()) {
            layout->activate();
        }
    }
}

} // namespace

void AppDelegate::focusChanged()
{
    frontmost_.identify(services_.desktop->frontmostWindow());
    applyVisibility();
}

void AppDelegate::applyVisibility()
{
    if (!pinnedEverywhere && !isCompanion(frontmost_.current())) {
        built(panel.get()).hide();
        return;
    }
    resize();
    orderFrontRegardless();
}

void AppDelegate::screenChanged()
{
    resize();
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the views the delegate owns
void AppDelegate::resize()
{
    OverlayPanel& window = built(panel.get());
    QWidget& content = built(root);
    QWidget& document = built(canvas);
    QScrollArea& scroller = built(scroll);

    forgetMeasurements(document);
    const int fitting = fittingHeight(content);
    const QScreen* screen = panelScreen(window);
    if (screen == nullptr) {
        return;
    }
    const QRect area = screen->availableGeometry();
    const PanelPlacement placement = placePanel(fitting, {area.x(), area.y(), area.width(), area.height()});
    document.resize(placement.canvasWidth, placement.canvasHeight);
    content.setGeometry(contentSideInset, contentTopInset, placement.canvasWidth - 2 * contentSideInset,
                        fitting);
    const ScreenRect& frame = placement.frame;
    window.place(QRect(frame.x, frame.y, frame.width, frame.height));
    layOutSubtree(window);
    // Every resize shows the first rows; the user scrolls down for the rest.
    scroller.verticalScrollBar()->setValue(0);
}

void AppDelegate::toggleShow()
{
    built(body).setVisible(isShown(*showSwitch));
    resize();
}

void AppDelegate::toggleDetails()
{
    built(details).setVisible(isShown(*detailSwitch));
    resize();
}

void AppDelegate::toggleCores()
{
    // Both blocks follow their own switches, whichever of the two was flipped.
    built(cpuDetail).setVisible(isShown(*cpu->coreSwitch()));
    built(gpuDetail).setVisible(isShown(*gpu->coreSwitch()));
    resize();
}

// NOLINTNEXTLINE(readability-make-member-function-const): it shows the panel the delegate owns
void AppDelegate::orderFrontRegardless()
{
    OverlayPanel& window = built(panel.get());
    if (!window.isVisible()) {
        showHeldSample();
        services_.desktop->prepareToShow(window);
        window.show();
        services_.desktop->didShow(window);
    }
    window.raise();
}

} // namespace vantrel
