#include "Vantrel/app/AppDelegate.h"

#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/app/MainThreadQueue.h"
#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/StatusItem.h"
#include "Vantrel/app/TrayHosts.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/Palette.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QTimer>

#include <chrono>

namespace vantrel {
namespace {

using namespace std::chrono_literals;
constexpr auto telemetryInterval = 2000ms;
constexpr auto usageInterval = 60000ms;

std::unique_ptr<ui::MeterRow> makeRow(const char* label, bool remaining, const QColor& tint)
{
    return std::make_unique<ui::MeterRow>(QString::fromUtf8(label), remaining, tint);
}

} // namespace

AppDelegate::AppDelegate(AppServices services, QObject* parent)
    : QObject(parent), sampler(PlatformSource(services.telemetry)),
      showSwitch(std::make_unique<ui::MiniSwitch>()), detailSwitch(std::make_unique<ui::MiniSwitch>()),
      quota(makeRow("Zbývá · krátkodobý limit", true, ui::Palette::quota())),
      weekly(makeRow("Zbývá · dlouhodobý limit", true, ui::Palette::weekly())),
      cpu(makeRow("CPU", false, ui::Palette::cpu())), ram(makeRow("RAM", false, ui::Palette::ram())),
      gpu(makeRow("GPU", false, ui::Palette::gpu())), network(makeRow("Síť", false, ui::Palette::network())),
      updated(std::make_unique<ElidingLabel>(QString::fromUtf8("Limity: načítání…"))),
      creditLabel(std::make_unique<QLabel>(QString::fromUtf8("Tokeny: API neposkytuje"))),
      services_(std::move(services)), frontmost_(services_.identification),
      mainThread_(std::make_shared<MainThreadQueue>(this))
{
    createMenuEntries();
}

AppDelegate::~AppDelegate()
{
    mainThread_->close();
}

void AppDelegate::applicationDidFinishLaunching()
{
    // An accessory application: the panel is a tool window that skips the taskbar (OverlayPanel and
    // Desktop::prepareToShow), the tray item and the panel's own menu are the only handles, and closing a
    // window never quits.
    qApp->setQuitOnLastWindowClosed(false);
    if (services_.trayHosts != nullptr) {
        connect(services_.trayHosts, &TrayHosts::changed, this, &AppDelegate::trayHostsChanged);
        trayHostsChanged();
    } else {
        createStatusItem();
    }
    createPanel();
    sample();
    fetchUsage();

    // Owned by the delegate and connected with it as context: a tick never reaches a delegate that is gone.
    telemetryTimer = std::make_unique<QTimer>();
    telemetryTimer->setInterval(telemetryInterval);
    connect(telemetryTimer.get(), &QTimer::timeout, this, &AppDelegate::sample);
    telemetryTimer->start();
    usageTimer = std::make_unique<QTimer>();
    usageTimer->setInterval(usageInterval);
    connect(usageTimer.get(), &QTimer::timeout, this, &AppDelegate::fetchUsage);
    usageTimer->start();

    connect(services_.desktop, &Desktop::frontmostChanged, this, &AppDelegate::focusChanged);
    connect(services_.desktop, &Desktop::frontmostReachChanged, this, &AppDelegate::followReach);
    connect(qApp, &QGuiApplication::screenAdded, this, [this](const QScreen* screen) {
        watchScreen(screen);
        screenChanged();
    });
    connect(qApp, &QGuiApplication::screenRemoved, this, &AppDelegate::screenChanged);
    connect(qApp, &QGuiApplication::primaryScreenChanged, this, &AppDelegate::screenChanged);
    for (const QScreen* screen : QGuiApplication::screens()) {
        watchScreen(screen);
    }
    followReach();
    focusChanged();
}

void AppDelegate::applicationWillTerminate()
{
    if (telemetryTimer) {
        telemetryTimer->stop();
    }
    if (usageTimer) {
        usageTimer->stop();
    }
    if (usageProcess) {
        limits::requestTermination(*usageProcess);
    }
}

void AppDelegate::refresh()
{
    fetchUsage();
}

void AppDelegate::quit()
{
    QCoreApplication::quit();
}

// NOLINTNEXTLINE(readability-make-member-function-const): it connects the delegate's own slots
void AppDelegate::watchScreen(const QScreen* screen)
{
    connect(screen, &QScreen::geometryChanged, this, &AppDelegate::screenChanged);
    connect(screen, &QScreen::availableGeometryChanged, this, &AppDelegate::screenChanged);
}

} // namespace vantrel
