#include "Vantrel/limits/LimitsScript.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace vantrel::limits {
namespace {

const std::filesystem::path scripts = VANTREL_FIXTURES "/limits/scripts";

// The fixtures are shell scripts: they start in milliseconds, where Python takes a good part of a second.
std::vector<std::string> shellCommand(const std::string& script)
{
    return {"/bin/sh", (scripts / script).string()};
}

// Every run reaps its child: afterwards this process has none left.
void expectNoChildLeft()
{
    int status = 0;
    EXPECT_EQ(waitpid(-1, &status, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

struct ScriptRun {
    std::optional<nlohmann::json> document;
    int launches = 0;
};

ScriptRun runScript(const std::vector<std::string>& command)
{
    ScriptRun result;
    result.document = runLimitsScript(command, [&result](const ScriptProcess& process) {
        EXPECT_GT(process.pid(), 0);
        ++result.launches;
    });
    expectNoChildLeft();
    return result;
}

class FailingScripts : public testing::TestWithParam<const char*> {};

TEST_P(FailingScripts, YieldNoDocument)
{
    const ScriptRun result = runScript(shellCommand(GetParam()));
    EXPECT_EQ(result.launches, 1);
    EXPECT_EQ(result.document, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(LimitsScript, FailingScripts,
                         testing::Values("exit_one.sh", "array.sh", "number.sh", "string.sh",
                                         "empty_output.sh", "invalid_utf8.sh", "truncated.sh", "killed.sh",
                                         "deeply_nested.sh", "no_such_script.sh"));

TEST(LimitsScript, ObjectWithExitStatusZeroIsTheDocument)
{
    const ScriptRun result = runScript(shellCommand("valid_object.sh"));
    EXPECT_EQ(result.launches, 1);
    EXPECT_EQ(result.document, nlohmann::json::parse(R"({"buckets": [{"id": "codex"}]})"));
}

TEST(LimitsScript, PythonScriptRunsThroughEnv)
{
    const ScriptRun result = runScript({"/usr/bin/env", "python3", (scripts / "valid_object.py").string()});
    EXPECT_EQ(result.document, nlohmann::json::parse(R"({"buckets": [{"id": "codex"}]})"));
}

TEST(LimitsScript, LaunchObserverIsOptional)
{
    EXPECT_EQ(runLimitsScript(shellCommand("valid_object.sh"), {}),
              nlohmann::json::parse(R"({"buckets": [{"id": "codex"}]})"));
    expectNoChildLeft();
}

TEST(LimitsScript, EmptyObjectIsADocumentNotAFailure)
{
    EXPECT_EQ(runScript(shellCommand("empty_object.sh")).document, nlohmann::json::object());
}

// The scripts below report what they found in the credit field of a bucket named after it.
std::string reported(const nlohmann::json& document, const std::string& item)
{
    for (const nlohmann::json& bucket : document.at("buckets")) {
        if (bucket.at("id") == item) {
            return bucket.at("creditBalance").get<std::string>();
        }
    }
    return "(not reported)";
}

TEST(LimitsScript, DiagnosticsOnStandardErrorAreDiscarded)
{
    const ScriptRun result = runScript(shellCommand("diagnostics.sh"));
    ASSERT_TRUE(result.document.has_value());
    EXPECT_EQ(reported(*result.document, "codex"), "/dev/null");
}

TEST(LimitsScript, ArgumentsEnvironmentDirectoryAndStandardInputAreInherited)
{
    setenv("VANTREL_TEST_MARKER", "inherited", 1);
    std::vector<std::string> command = shellCommand("inheritance.sh");
    command.insert(command.end(), {"--live", "--json"});
    const ScriptRun result = runScript(command);
    unsetenv("VANTREL_TEST_MARKER");

    ASSERT_TRUE(result.document.has_value());
    EXPECT_EQ(reported(*result.document, "arguments"), "--live --json");
    EXPECT_EQ(reported(*result.document, "marker"), "inherited");
    EXPECT_EQ(reported(*result.document, "cwd"), std::filesystem::current_path().string());
    EXPECT_EQ(reported(*result.document, "stdin"), std::filesystem::read_symlink("/proc/self/fd/0").string());
    EXPECT_EQ(reported(*result.document, "stderr"), "/dev/null");
}

// Applied, as any valid object is; the padding that nothing reads is already gone from the document.
TEST(LimitsScript, HundredMegabyteObjectIsDecodedWhole)
{
    const ScriptRun result = runScript(shellCommand("hundred_megabytes.sh"));
    EXPECT_EQ(result.document,
              nlohmann::json::parse(R"({"buckets": [{"id": "codex", "creditBalance": "7"}]})"));
}

TEST(LimitsScript, ExecutableThatCannotStartIsNeverReportedLaunched)
{
    const std::string notExecutable = (scripts / "valid_object.sh").string();
    for (const std::string& program : {std::string("/nonexistent/env"), notExecutable}) {
        const ScriptRun result = runScript({program});
        EXPECT_EQ(result.launches, 0);
        EXPECT_EQ(result.document, std::nullopt);
    }
    EXPECT_EQ(runScript({}).document, std::nullopt);
}

// Runs the script on a worker thread, asks for its termination once the script says it is waiting (it
// creates $VANTREL_READY_FILE), and returns what the run gave.
std::optional<nlohmann::json> runAndTerminate(const std::string& script)
{
    const std::filesystem::path ready =
        std::filesystem::path(testing::TempDir()) / ("vantrel-ready-" + script);
    std::filesystem::remove(ready);
    setenv("VANTREL_READY_FILE", ready.c_str(), 1);
    std::promise<ScriptProcess> launched;
    std::future<ScriptProcess> process = launched.get_future();
    std::optional<nlohmann::json> document = nlohmann::json::object();
    std::thread worker([&] {
        document = runLimitsScript(shellCommand(script),
                                   [&launched](const ScriptProcess& child) { launched.set_value(child); });
    });
    const ScriptProcess child = process.get();
    while (!std::filesystem::exists(ready)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    requestTermination(child);
    worker.join();
    unsetenv("VANTREL_READY_FILE");
    expectNoChildLeft();
    return document;
}

TEST(LimitsScript, ScriptThatNeverExitsBlocksUntilItIsTerminated)
{
    EXPECT_EQ(runAndTerminate("never_exits.sh"), std::nullopt);
}

TEST(LimitsScript, TerminationAlsoReachesWhatTheScriptLeftHoldingItsOutput)
{
    EXPECT_EQ(runAndTerminate("leaves_child_holding_output.sh"), std::nullopt);
}

TEST(LimitsScript, RunCutShortByAnExceptionLeavesNoScriptBehind)
{
    const auto throwing = [](const ScriptProcess&) { throw std::runtime_error("observer failed"); };
    EXPECT_THROW(runLimitsScript(shellCommand("never_exits.sh"), throwing), std::runtime_error);
    expectNoChildLeft();
}

// Restores PATH when the test ends.
class ScopedPath {
public:
    explicit ScopedPath(const std::string& path)
    {
        if (const char* previous = std::getenv("PATH")) {
            previous_ = previous;
        }
        setenv("PATH", path.c_str(), 1);
    }
    ~ScopedPath() { setenv("PATH", previous_.c_str(), 1); }
    ScopedPath(const ScopedPath&) = delete;
    ScopedPath& operator=(const ScopedPath&) = delete;
    ScopedPath(ScopedPath&&) = delete;
    ScopedPath& operator=(ScopedPath&&) = delete;

private:
    std::string previous_;
};

TEST(LimitsScript, Python3MissingFromPathIsAFailedRun)
{
    const std::filesystem::path empty = std::filesystem::path(testing::TempDir()) / "vantrel-empty-path";
    std::filesystem::create_directories(empty);
    const ScopedPath path(empty.string());
    const ScriptRun result = runScript(limitsScriptCommand(resourceDirectory()));
    EXPECT_EQ(result.launches, 1);
    EXPECT_EQ(result.document, std::nullopt);
}

} // namespace
} // namespace vantrel::limits
