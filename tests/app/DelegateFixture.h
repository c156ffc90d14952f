#pragma once

#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/TrayHosts.h"

#include <QColor>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace vantrel::testing {

// A desktop whose window in front the test chooses; it counts the panel's trips on screen.
class FakeDesktop : public Desktop {
public:
    std::optional<FrontmostWindow> frontmost;
    FrontmostReach reach;
    bool compositor = true;
    int preparedToShow = 0;
    int shown = 0;

    std::optional<FrontmostWindow> frontmostWindow() override { return frontmost; }
    FrontmostReach frontmostReach() override { return reach; }
    bool hasCompositor() override { return compositor; }
    void prepareToShow(QWidget& /*window*/) override { ++preparedToShow; }
    void didShow(QWidget& /*window*/) override { ++shown; }

    // The user switches to another application (or to none), and the desktop says so.
    void switchTo(std::optional<FrontmostWindow> window);
    // What the desktop can tell changes (an extension enabled or disabled), and the desktop says so.
    void reachBecomes(FrontmostReach newReach);
};

// Tray hosts that come and go as the test says; unknown until it first says.
class FakeTrayHosts : public TrayHosts {
public:
    std::optional<TrayHostFacts> hosts;

    std::optional<TrayHostFacts> facts() override { return hosts; }
    void change(TrayHostFacts now);
};

FrontmostWindow windowOfClass(const char* windowClass);
// A window of this class whose process has this id.
FrontmostWindow windowOfProcess(const char* windowClass, std::int64_t pid);

// Processes events until the condition holds; false if it still does not after a generous while.
bool waitUntil(const std::function<bool()>& condition);

QColor textColour(const QWidget& widget);

// A delegate with a fake desktop (whose desktop entries and processes the test chooses), an empty
// telemetry tree (every reading absent), four processors, a fixed clock and time zone, and a limits
// script of the test's own in a temporary resource directory.
class DelegateFixture : public ::testing::Test {
protected:
    static constexpr double startTime = 1'700'000'000.0; // 2023-11-14 22:13:20 UTC

    DelegateFixture();
    ~DelegateFixture() override;

    AppServices services();
    AppDelegate& delegate();
    // Tray item and panel, as the start-up builds them, without timers or a limits run.
    AppDelegate& withPanel();
    // The same, on screen, as with Codex in front.
    AppDelegate& withShownPanel();
    // The limits script: a Python program of the test's own.
    void writeLimitsScript(const std::string& python);
    // A script that prints this text and exits with this status.
    void writeLimitsOutput(const std::string& output, int exitStatus = 0);
    QString resourcePath(const char* name) const;

    FakeDesktop desktop;
    FakeTrayHosts trayHosts;
    bool followTrayHosts = false; // without, the tray item is made at once, as where nothing tells of hosts
    std::map<std::string, std::string> entryNames;     // app_id or class → desktop entry's name
    std::map<std::int64_t, ProcessFindings> processes; // pid → what its process tree tells
    int processInspections = 0;
    QTemporaryDir resources;
    QTemporaryDir emptyRoot;
    double now = startTime;
    int processors = 4;
    std::string telemetryRoot;
    std::vector<std::string> notices; // the lines the delegate printed for the user

private:
    std::unique_ptr<AppDelegate> delegate_;
};

} // namespace vantrel::testing
