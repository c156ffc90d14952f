#include "DelegateFixture.h"

#include "Vantrel/app/StatusItem.h"
#include "Vantrel/ui/Palette.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTimer>
#include <QWidget>

namespace vantrel::testing {

void FakeDesktop::switchTo(std::optional<FrontmostWindow> window)
{
    frontmost = std::move(window);
    emit frontmostChanged();
}

void FakeDesktop::reachBecomes(FrontmostReach newReach)
{
    reach = std::move(newReach);
    emit frontmostReachChanged();
}

void FakeTrayHosts::change(TrayHostFacts now)
{
    hosts = now;
    emit changed();
}

FrontmostWindow windowOfClass(const char* windowClass)
{
    FrontmostWindow window;
    window.appId = windowClass;
    return window;
}

FrontmostWindow windowOfProcess(const char* windowClass, std::int64_t pid)
{
    FrontmostWindow window = windowOfClass(windowClass);
    window.pid = pid;
    return window;
}

bool waitUntil(const std::function<bool()>& condition)
{
    // A ceiling for a stuck test, not a speed requirement.
    QDeadlineTimer deadline(30000);
    // Sleeps in the event loop between looks, rather than spinning beside the scripts under test.
    QTimer poll;
    poll.start(10);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

QColor textColour(const QWidget& widget)
{
    return ui::textColor(&widget);
}

DelegateFixture::DelegateFixture() : telemetryRoot(emptyRoot.path().toStdString())
{
    writeLimitsOutput("{}");
}

DelegateFixture::~DelegateFixture()
{
    if (delegate_) {
        // A script still running is stopped, as quitting would.
        delegate_->applicationWillTerminate();
    }
}

AppServices DelegateFixture::services()
{
    AppServices result;
    result.desktop = &desktop;
    result.trayHosts = followTrayHosts ? &trayHosts : nullptr;
    result.identification.entryName = [this](const FrontmostWindow& window) -> std::optional<std::string> {
        const auto found = entryNames.find(window.appId);
        return found == entryNames.end() ? std::nullopt : std::optional(found->second);
    };
    result.identification.inspectProcesses = [this](std::int64_t pid) {
        ++processInspections;
        const auto found = processes.find(pid);
        return found == processes.end() ? ProcessFindings{} : found->second;
    };
    result.telemetry.root = telemetryRoot;
    result.telemetry.loadGpuDriverLibraries = false;
    result.activeProcessorCount = [this] { return processors; };
    result.resourceDirectory = [this] { return std::filesystem::path(resources.path().toStdString()); };
    result.usageContext = [this] { return limits::UsageContext{now, "UTC", "cs_CZ", "počítač"}; };
    result.now = [this] { return now; };
    result.notice = [this](const std::string& line) { notices.push_back(line); };
    return result;
}

AppDelegate& DelegateFixture::delegate()
{
    if (!delegate_) {
        delegate_ = std::make_unique<AppDelegate>(services());
    }
    return *delegate_;
}

AppDelegate& DelegateFixture::withPanel()
{
    AppDelegate& built = delegate();
    built.createStatusItem();
    built.createPanel();
    return built;
}

AppDelegate& DelegateFixture::withShownPanel()
{
    AppDelegate& built = withPanel();
    desktop.frontmost = windowOfClass("Codex");
    built.focusChanged();
    QCoreApplication::processEvents();
    return built;
}

void DelegateFixture::writeLimitsScript(const std::string& python)
{
    QFile script(resourcePath("vantrel.py"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
    script.write(python.data(), static_cast<qint64>(python.size()));
}

void DelegateFixture::writeLimitsOutput(const std::string& output, int exitStatus)
{
    QFile text(resourcePath("output.txt"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly | QIODevice::Truncate));
    text.write(output.data(), static_cast<qint64>(output.size()));
    text.close();
    writeLimitsScript("import pathlib, sys\n"
                      "sys.stdout.write((pathlib.Path(__file__).parent / 'output.txt').read_text())\n"
                      "sys.exit(" +
                      std::to_string(exitStatus) + ")\n");
}

QString DelegateFixture::resourcePath(const char* name) const
{
    return resources.filePath(QString::fromLatin1(name));
}

} // namespace vantrel::testing
