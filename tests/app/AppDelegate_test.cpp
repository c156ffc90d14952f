#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/StatusItem.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QTimer>

#include "DelegateFixture.h"

namespace vantrel::testing {
namespace {

class AppDelegateTest : public DelegateFixture {};

TEST_F(AppDelegateTest, ConstructionMakesTheRowsSwitchesAndLabelsButNoViews)
{
    const AppDelegate& app = delegate();
    EXPECT_EQ(app.panel, nullptr);
    EXPECT_EQ(app.statusItem, nullptr);
    EXPECT_EQ(app.root, nullptr);
    EXPECT_EQ(app.body, nullptr);
    EXPECT_EQ(app.details, nullptr);
    EXPECT_EQ(app.cpuDetail, nullptr);
    EXPECT_EQ(app.gpuDetail, nullptr);
    EXPECT_TRUE(app.cpuRows.empty());
    EXPECT_TRUE(app.gpuRows.empty());
    EXPECT_EQ(app.scroll, nullptr);
    EXPECT_EQ(app.canvas, nullptr);
    EXPECT_NE(app.showSwitch, nullptr);
    EXPECT_NE(app.detailSwitch, nullptr);
    EXPECT_EQ(app.quota->label()->text(), QString::fromUtf8("Zbývá · krátkodobý limit"));
    EXPECT_EQ(app.network->label()->text(), QString::fromUtf8("Síť"));
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: načítání…"));
    EXPECT_EQ(app.creditLabel->text(), QString::fromUtf8("Tokeny: API neposkytuje"));
    EXPECT_EQ(app.telemetryTimer, nullptr);
    EXPECT_EQ(app.usageTimer, nullptr);
    EXPECT_FALSE(app.isFetching);
    EXPECT_FALSE(app.pinnedEverywhere);
    EXPECT_EQ(app.lastUsage, std::nullopt);
    EXPECT_FALSE(app.lastFetchFailed);
    EXPECT_FALSE(app.usageProcess.has_value());
}

TEST_F(AppDelegateTest, LaunchingBuildsEverythingAndStartsBothTimers)
{
    AppDelegate& app = delegate();
    app.applicationDidFinishLaunching();
    EXPECT_NE(app.statusItem, nullptr);
    EXPECT_NE(app.panel, nullptr);
    ASSERT_NE(app.telemetryTimer, nullptr);
    ASSERT_NE(app.usageTimer, nullptr);
    EXPECT_TRUE(app.telemetryTimer->isActive());
    EXPECT_EQ(app.telemetryTimer->interval(), 2000);
    EXPECT_FALSE(app.telemetryTimer->isSingleShot());
    EXPECT_TRUE(app.usageTimer->isActive());
    EXPECT_EQ(app.usageTimer->interval(), 60000);
    EXPECT_FALSE(app.usageTimer->isSingleShot());
}

TEST_F(AppDelegateTest, RightAfterLaunchTheFiguresAreShownAndALimitsRunIsInFlight)
{
    telemetryRoot = "/";
    desktop.frontmost = windowOfClass("Codex");
    AppDelegate& app = delegate();
    app.applicationDidFinishLaunching();
    ASSERT_TRUE(app.panel->isVisible());
    EXPECT_NE(app.ram->value()->text(), QString::fromUtf8("—"));
    EXPECT_TRUE(app.isFetching);
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("API nevrátilo limity účtu")); // the script's "{}"
}

TEST_F(AppDelegateTest, NeitherTimerFiresAtOnce)
{
    writeLimitsScript(
        "import pathlib\n"
        "with open(pathlib.Path(__file__).parent / 'runs.txt', 'a') as runs: runs.write('run\\n')\n"
        "print('{}')\n");
    AppDelegate& app = delegate();
    app.applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    QCoreApplication::processEvents();
    QFile runs(resourcePath("runs.txt"));
    ASSERT_TRUE(runs.open(QIODevice::ReadOnly));
    EXPECT_EQ(runs.readAll(), QByteArray("run\n")); // the launch's own run, no timed one
    EXPECT_GT(app.telemetryTimer->remainingTime(), 0);
    EXPECT_GT(app.usageTimer->remainingTime(), 0);
}

TEST_F(AppDelegateTest, ClosingTheLastWindowDoesNotQuit)
{
    delegate().applicationDidFinishLaunching();
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
}

TEST_F(AppDelegateTest, TerminatingStopsTheTimersAndAsksTheScriptToStop)
{
    writeLimitsScript("import time\ntime.sleep(600)\n");
    AppDelegate& app = delegate();
    app.applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return app.usageProcess.has_value(); }));
    app.applicationWillTerminate();
    EXPECT_FALSE(app.telemetryTimer->isActive());
    EXPECT_FALSE(app.usageTimer->isActive());
    // The script ends on the request (a signal, so the run reads as failed); nothing waited for it.
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    EXPECT_TRUE(app.lastFetchFailed);
}

TEST_F(AppDelegateTest, TerminatingWithoutAnyRunOnlyStopsTheTimers)
{
    AppDelegate& app = delegate();
    app.applicationWillTerminate(); // before launching: nothing to stop
    app.applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    ASSERT_FALSE(app.usageProcess.has_value());
    app.applicationWillTerminate();
    EXPECT_FALSE(app.telemetryTimer->isActive());
    EXPECT_FALSE(app.usageTimer->isActive());
}

TEST_F(AppDelegateTest, AResultForADelegateThatIsGoneIsDropped)
{
    writeLimitsScript("import time\ntime.sleep(0.3)\nprint('{}')\n");
    {
        AppDelegate doomed(services());
        doomed.createStatusItem();
        doomed.createPanel();
        doomed.fetchUsage();
    }
    // The worker still finishes and posts; nothing may reach the destroyed delegate.
    const QDeadlineTimer afterTheScript(1500);
    EXPECT_TRUE(waitUntil([&] { return afterTheScript.hasExpired(); }));
}

} // namespace
} // namespace vantrel::testing
