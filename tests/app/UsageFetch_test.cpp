#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/Palette.h"
#include "Vantrel/ui/PastelBar.h"

#include <QFile>
#include <QLabel>
#include <QTemporaryDir>

#include <nlohmann/json.hpp>

#include "DelegateFixture.h"
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vantrel::testing {
namespace {

const char* const sharedTip = "Sdílený limit účtu Codex, ne tokeny této konverzace.";

nlohmann::json fullDocument()
{
    return nlohmann::json::parse(R"({
        "observedAt": 1700000000,
        "buckets": [
            {"id": "other", "windows": [{"slot": "primary", "windowDurationMins": 60, "remainingPercent": 1}]},
            {"id": "codex", "creditBalance": "12,50 $", "spendControlReached": false,
             "windows": [
                {"slot": "primary", "windowDurationMins": 300, "remainingPercent": 64, "resetsAt": 1700003600},
                {"slot": "secondary", "windowDurationMins": 10080, "remainingPercent": 12}
             ]}
        ]})");
}

class UsageFetchTest : public DelegateFixture {
protected:
    AppDelegate& fetchedWith(const std::string& output, int exitStatus = 0)
    {
        writeLimitsOutput(output, exitStatus);
        AppDelegate& app = withPanel();
        app.fetchUsage();
        EXPECT_TRUE(waitUntil([&] { return !app.isFetching; }));
        return app;
    }

    int runCount() const
    {
        QFile runs(resourcePath("runs.txt"));
        if (!runs.open(QIODevice::ReadOnly)) {
            return 0;
        }
        return static_cast<int>(runs.readAll().count('\n'));
    }

    // A script that records its run, then waits until the test lets it go (or forever).
    void writeWaitingScript()
    {
        writeLimitsScript("import os, pathlib, sys, time\n"
                          "here = pathlib.Path(__file__).parent\n"
                          "with open(here / 'runs.txt', 'a') as runs: runs.write(f'{os.getpid()}\\n')\n"
                          "while not (here / 'release').exists(): time.sleep(0.05)\n"
                          "print('{}')\n");
    }

    void release() { QFile(resourcePath("release")).open(QIODevice::WriteOnly); }
};

TEST_F(UsageFetchTest, ADocumentFillsTheRowsTheCreditAndTheStatusLine)
{
    AppDelegate& app = withPanel();
    app.lastFetchFailed = true;
    app.applyUsage(fullDocument());
    EXPECT_EQ(app.quota->label()->text(), QString::fromUtf8("Zbývá · 5 h"));
    EXPECT_EQ(app.quota->value()->text(), QString::fromUtf8("64 %"));
    EXPECT_EQ(app.quota->toolTip(),
              QString::fromUtf8(sharedTip) + QString::fromUtf8(" Obnova: 14. 11. 23:13 UTC"));
    EXPECT_EQ(app.weekly->label()->text(), QString::fromUtf8("Zbývá · týden"));
    EXPECT_EQ(app.weekly->value()->text(), QString::fromUtf8("12 %"));
    EXPECT_EQ(textColour(*app.weekly->value()), ui::SystemColor::systemOrange()); // 12 < 15 remaining
    EXPECT_EQ(app.weekly->toolTip(), QString::fromUtf8(sharedTip));
    EXPECT_EQ(app.creditLabel->text(), QString::fromUtf8("Kredity: 12,50 $ · tokeny: API neposkytuje"));
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity 22:13 · počítač každé 2 s"));
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::secondaryLabel());
    EXPECT_EQ(app.lastUsage, 1'700'000'000.0);
    EXPECT_FALSE(app.lastFetchFailed);
}

TEST_F(UsageFetchTest, ASpendStopTurnsTheStatusLineOrange)
{
    AppDelegate& app = withPanel();
    app.applyUsage(nlohmann::json::parse(
        R"({"buckets": [{"id": "codex", "spendControlReached": false, "limitReached": true}]})"));
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Účet hlásí omezení čerpání"));
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::systemOrange());
    EXPECT_EQ(app.creditLabel->text(), QString::fromUtf8("Kredity / tokeny: API neposkytuje zůstatek"));
    EXPECT_EQ(app.quota->label()->text(), QString::fromUtf8("Zbývá · krátkodobý limit"));
}

TEST_F(UsageFetchTest, APendingResetShowsTheRowUnavailable)
{
    AppDelegate& app = withPanel();
    app.applyUsage(nlohmann::json::parse(R"({"buckets": [{"id": "codex", "windows": [
        {"slot": "primary", "resetPending": true, "remainingPercent": 40}]}]})"));
    EXPECT_EQ(app.quota->value()->text(), QString::fromUtf8("—"));
    EXPECT_TRUE(app.quota->toolTip().endsWith(QString::fromUtf8(" Čeká se na nový stav po obnově.")));
    EXPECT_DOUBLE_EQ(app.quota->progress()->alphaValue(), ui::MeterRow::dimmedAlpha);
}

TEST_F(UsageFetchTest, ADocumentWithoutBucketsKeepsCaptionsCreditAndFailureFlag)
{
    AppDelegate& app = withPanel();
    app.applyUsage(fullDocument());
    ui::setTextColor(app.updated.get(), ui::SystemColor::systemOrange());
    app.lastFetchFailed = true;
    app.applyUsage(nlohmann::json::parse(R"({"buckets": ["not an object"]})"));
    EXPECT_EQ(app.quota->label()->text(), QString::fromUtf8("Zbývá · 5 h"));
    EXPECT_EQ(app.weekly->label()->text(), QString::fromUtf8("Zbývá · týden"));
    EXPECT_EQ(app.quota->value()->text(), QString::fromUtf8("—"));
    EXPECT_EQ(app.quota->toolTip(), QString::fromUtf8("Údaj není dostupný."));
    EXPECT_EQ(app.weekly->toolTip(), QString::fromUtf8("Údaj není dostupný."));
    EXPECT_EQ(app.creditLabel->text(), QString::fromUtf8("Kredity: 12,50 $ · tokeny: API neposkytuje"));
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("API nevrátilo limity účtu"));
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::systemOrange()); // colour left as it was
    EXPECT_EQ(app.lastUsage, std::nullopt);
    EXPECT_TRUE(app.lastFetchFailed);
}

TEST_F(UsageFetchTest, TheFirstFailureSaysLimitsAreUnavailable)
{
    AppDelegate& app = withPanel();
    app.finishFetch(std::nullopt);
    EXPECT_TRUE(app.lastFetchFailed);
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity nejsou dostupné · místní výkon funguje"));
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::systemOrange());
    // The staleness rule has no age to tell without limits: the text stays.
    app.showSample(SampleRecord{});
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity nejsou dostupné · místní výkon funguje"));
}

TEST_F(UsageFetchTest, AFailureAfterASuccessSaysTheDataIsOldAndThenHowOld)
{
    AppDelegate& app = withPanel();
    app.applyUsage(fullDocument());
    now = 1'700'000'000.0 + 200;
    app.finishFetch(std::nullopt);
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: starší údaj · nelze obnovit"));
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::systemOrange());
    EXPECT_EQ(app.quota->value()->text(), QString::fromUtf8("64 %")); // rows keep the last document
    EXPECT_EQ(app.creditLabel->text(), QString::fromUtf8("Kredity: 12,50 $ · tokeny: API neposkytuje"));
    app.showSample(SampleRecord{});
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: starší údaj (3 min) · nelze obnovit"));
}

TEST_F(UsageFetchTest, TheResultClearsTheRunState)
{
    AppDelegate& app = fetchedWith("{}");
    EXPECT_FALSE(app.isFetching);
    EXPECT_FALSE(app.usageProcess.has_value());
}

TEST_F(UsageFetchTest, AnEmptyObjectIsNoFailure)
{
    const AppDelegate& app = fetchedWith("{}");
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("API nevrátilo limity účtu"));
    EXPECT_FALSE(app.lastFetchFailed);
}

TEST_F(UsageFetchTest, DiagnosticsOnStandardErrorAreIgnored)
{
    writeLimitsScript("import sys\n"
                      "print('warning: something odd', file=sys.stderr)\n"
                      "print('{\"observedAt\": 1700000000, \"buckets\": [{\"id\": \"codex\", \"windows\": "
                      "[{\"slot\": \"primary\", \"remainingPercent\": 55}]}]}')\n");
    AppDelegate& app = withPanel();
    app.fetchUsage();
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    EXPECT_EQ(app.quota->value()->text(), QString::fromUtf8("55 %"));
    EXPECT_FALSE(app.lastFetchFailed);
}

struct FailureCase {
    const char* description;
    std::string output;
    int exitStatus;
};

class FailedRunTest : public UsageFetchTest, public ::testing::WithParamInterface<FailureCase> {};

TEST_P(FailedRunTest, EndsInTheFailureDisplay)
{
    const AppDelegate& app = fetchedWith(GetParam().output, GetParam().exitStatus);
    EXPECT_TRUE(app.lastFetchFailed) << GetParam().description;
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity nejsou dostupné · místní výkon funguje"));
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::systemOrange());
    EXPECT_EQ(app.quota->label()->text(), QString::fromUtf8("Zbývá · krátkodobý limit"));
}

INSTANTIATE_TEST_SUITE_P(Outputs, FailedRunTest,
                         ::testing::Values(FailureCase{"valid object, exit 1", R"({"buckets": []})", 1},
                                           FailureCase{"an array", "[]", 0}, FailureCase{"a number", "42", 0},
                                           FailureCase{"a string", "\"x\"", 0}, FailureCase{"nothing", "", 0},
                                           FailureCase{"invalid UTF-8", "{\"a\": \"\xff\xfe\"}", 0},
                                           FailureCase{"a truncated object", R"({"buckets": [{"id": "co)",
                                                       0}));

TEST_F(UsageFetchTest, AMissingScriptIsAFailure)
{
    AppDelegate& app = withPanel();
    QFile::remove(resourcePath("vantrel.py"));
    app.fetchUsage();
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    EXPECT_TRUE(app.lastFetchFailed);
}

TEST_F(UsageFetchTest, ASecondCallWhileTheScriptRunsStartsNothing)
{
    writeWaitingScript();
    AppDelegate& app = withPanel();
    app.fetchUsage();
    ASSERT_TRUE(waitUntil([&] { return app.usageProcess.has_value() && runCount() == 1; }));
    app.fetchUsage();
    app.refresh();
    release();
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    EXPECT_EQ(runCount(), 1);
    // Once the run is over, the next call starts one.
    app.fetchUsage();
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    EXPECT_EQ(runCount(), 2);
}

TEST_F(UsageFetchTest, AScriptThatNeverEndsBlocksFurtherRunsUntilQuitStopsIt)
{
    writeWaitingScript();
    AppDelegate& app = withPanel();
    app.fetchUsage();
    ASSERT_TRUE(waitUntil([&] { return app.usageProcess.has_value() && runCount() == 1; }));
    app.fetchUsage();
    EXPECT_TRUE(app.isFetching);
    app.applicationWillTerminate();
    // Terminated by the signal, the run ends as a failure, and no second script ever started.
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    EXPECT_TRUE(app.lastFetchFailed);
    EXPECT_EQ(runCount(), 1);
}

struct Misbehaviour {
    const char* description;
    const char* python; // after a prelude that records the script's pid in pids.txt
    bool ends;          // the run ends by itself (then in the failure display)
};

class MisbehavingScriptTest : public UsageFetchTest, public ::testing::WithParamInterface<Misbehaviour> {
protected:
    std::vector<pid_t> recordedPids() const
    {
        std::ifstream file(resourcePath("pids.txt").toStdString());
        std::vector<pid_t> pids;
        for (pid_t pid = 0; file >> pid;) {
            pids.push_back(pid);
        }
        return pids;
    }

    // Ended, or a zombie waiting for whoever inherited it: either way no longer running.
    static bool isRunning(pid_t pid)
    {
        std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
        std::string text;
        std::getline(stat, text);
        const std::size_t close = text.rfind(')');
        return close != std::string::npos && close + 2 < text.size() && text[close + 2] != 'Z';
    }

    // A copy of a machine's kernel files, whose memory figure the test changes while the script runs.
    void rewriteActiveMemory(const std::string& kilobytes)
    {
        const std::filesystem::path meminfo =
            std::filesystem::path(tree.path().toStdString()) / "proc" / "meminfo";
        std::stringstream text;
        text << std::ifstream(meminfo).rdbuf();
        std::string content = text.str();
        const std::size_t line = content.find("Active:");
        content.replace(line, content.find('\n', line) - line, "Active:          " + kilobytes + " kB");
        std::ofstream(meminfo, std::ios::trunc) << content;
    }

    QTemporaryDir tree;
};

TEST_P(MisbehavingScriptTest, TheTicksGoOnAndQuittingLeavesNothingRunning)
{
    std::filesystem::copy(std::filesystem::path(VANTREL_FIXTURES) / "telemetry" / "machine",
                          tree.path().toStdString(), std::filesystem::copy_options::recursive);
    telemetryRoot = tree.path().toStdString();
    writeLimitsScript(std::string("import os, pathlib, signal, subprocess, sys, time\n"
                                  "pids = open(pathlib.Path(__file__).parent / 'pids.txt', 'a')\n"
                                  "pids.write(f'{os.getpid()}\\n'); pids.flush()\n") +
                      GetParam().python);
    desktop.frontmost = windowOfClass("Codex");
    AppDelegate& app = delegate();
    app.applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return !recordedPids().empty(); }));
    EXPECT_EQ(app.ram->value()->text(), QString::fromUtf8("15 %"));

    // (6 000 000 active + 200 000 wired + 200 000 compressed) kB of 16 000 000 kB, at the next tick.
    rewriteActiveMemory("6000000");
    EXPECT_TRUE(waitUntil([&] { return app.ram->value()->text() == QString::fromUtf8("40 %"); }))
        << GetParam().description;
    if (GetParam().ends) {
        ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
        EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity nejsou dostupné · místní výkon funguje"));
    } else {
        EXPECT_TRUE(app.isFetching) << GetParam().description;
        EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: načítání…"));
    }

    app.applicationWillTerminate();
    ASSERT_TRUE(waitUntil([&] { return !app.isFetching; }));
    for (const pid_t pid : recordedPids()) {
        EXPECT_TRUE(waitUntil([&] { return !isRunning(pid); })) << GetParam().description << ": " << pid;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, MisbehavingScriptTest,
    ::testing::Values(
        Misbehaviour{"never ends", "time.sleep(3600)\n", false},
        Misbehaviour{"closes its output and never exits",
                     "print('{}', flush=True)\nos.close(1)\ntime.sleep(3600)\n", false},
        Misbehaviour{
            "leaves a child holding its output",
            "child = subprocess.Popen(['sleep', '3600'])\npids.write(f'{child.pid}\\n'); pids.flush()\n"
            "print('{}')\n",
            false},
        Misbehaviour{"killed by a signal", "os.kill(os.getpid(), signal.SIGKILL)\n", true}));

} // namespace
} // namespace vantrel::testing
