#include "Vantrel/limits/LimitsScript.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <sys/wait.h>
#include <thread>

namespace vantrel::limits {
namespace {

using namespace std::chrono_literals;

const std::filesystem::path scripts = std::filesystem::path(VANTREL_FIXTURES) / "faults" / "scripts";

// The state letter of /proc/<pid>/stat ('R', 'S', 'Z', ...), or 0 once the process is reaped.
char processState(pid_t pid)
{
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text;
    std::getline(stat, text);
    const std::size_t close = text.rfind(')');
    return close == std::string::npos || close + 2 >= text.size() ? '\0' : text[close + 2];
}

std::string commandName(pid_t pid)
{
    std::ifstream comm("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(comm, name);
    return name;
}

// Polls until `condition` holds; false if it never does within a minute, far beyond any healthy run.
template <typename Condition> bool eventually(Condition condition)
{
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(10ms);
    }
    return true;
}

bool hasEnded(pid_t pid)
{
    const char state = processState(pid);
    return state == '\0' || state == 'Z';
}

// A script run on a worker thread, as the application's fetch makes it.
class BackgroundRun {
public:
    explicit BackgroundRun(const std::string& script)
    {
        std::promise<ScriptProcess> launched;
        process_ = launched.get_future();
        result_ = std::async(std::launch::async, [script, launched = std::move(launched)]() mutable {
            return runLimitsScript({"/bin/sh", (scripts / script).string()},
                                   [&launched](const ScriptProcess& child) { launched.set_value(child); });
        });
    }

    ScriptProcess process() { return process_.get(); }
    bool finished() const { return result_.wait_for(0s) == std::future_status::ready; }
    std::optional<nlohmann::json> result() { return result_.get(); }

private:
    std::future<ScriptProcess> process_;
    std::future<std::optional<nlohmann::json>> result_;
};

void expectNoChildLeft()
{
    int status = 0;
    EXPECT_EQ(waitpid(-1, &status, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(ScriptFaults, AScriptThatClosesItsOutputButNeverExitsKeepsTheRunOpenUntilTerminated)
{
    BackgroundRun run("closes_output.sh");
    const ScriptProcess script = run.process();
    // Once it is sleep, the script has printed its document and closed its output: the worker has read
    // to the end and now waits for an exit that does not come.
    ASSERT_TRUE(eventually([&] { return commandName(script.pid()) == "sleep"; }));
    EXPECT_FALSE(run.finished());

    requestTermination(script);
    EXPECT_EQ(run.result(), std::nullopt);
    EXPECT_EQ(processState(script.pid()), '\0');
    expectNoChildLeft();
}

TEST(ScriptFaults, AChildThatKeepsTheOutputOpenIsStoppedWithTheScript)
{
    const std::filesystem::path pidFile = std::filesystem::path(::testing::TempDir()) / "vantrel-holder-pid";
    std::filesystem::remove(pidFile);
    setenv("VANTREL_HOLDER_PID", pidFile.c_str(), 1);
    BackgroundRun run("forks_holder.sh");
    const ScriptProcess script = run.process();
    // The script exits at once, but the run cannot end while its child still holds the output open.
    ASSERT_TRUE(eventually([&] { return processState(script.pid()) == 'Z'; }));
    unsetenv("VANTREL_HOLDER_PID");
    pid_t holder = 0;
    std::ifstream(pidFile) >> holder;
    ASSERT_GT(holder, 0);
    EXPECT_FALSE(run.finished());

    requestTermination(script);
    const bool holderStopped = eventually([&] { return hasEnded(holder); });
    EXPECT_TRUE(holderStopped) << "the child of the script outlived the termination request";
    if (!holderStopped) {
        kill(holder, SIGKILL);
    }
    // The script itself had succeeded; what matters is that the run ends and nothing is left running.
    EXPECT_TRUE(run.result().has_value());
    expectNoChildLeft();
}

} // namespace
} // namespace vantrel::limits
