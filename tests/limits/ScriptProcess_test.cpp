#include "Vantrel/limits/ScriptProcess.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX leaves the declaration to us

namespace vantrel::limits {
namespace {

pid_t spawnSleeper()
{
    pid_t pid = 0;
    std::array<char*, 3> argv{const_cast<char*>("sleep"), const_cast<char*>("600"), nullptr}; // NOLINT
    EXPECT_EQ(posix_spawnp(&pid, "sleep", nullptr, nullptr, argv.data(), environ), 0);
    return pid;
}

int waitForStatus(pid_t pid)
{
    int status = 0;
    EXPECT_EQ(waitpid(pid, &status, 0), pid);
    return status;
}

TEST(ScriptProcess, TerminationRequestEndsTheChildWithSigterm)
{
    const pid_t pid = spawnSleeper();
    const ScriptProcess process(pid);
    EXPECT_EQ(process.pid(), pid);
    requestTermination(process);
    const int status = waitForStatus(pid);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST(ScriptProcess, CopiesOutliveTheOriginal)
{
    const pid_t pid = spawnSleeper();
    std::optional<ScriptProcess> original(std::in_place, pid);
    const ScriptProcess copy = *original;
    original.reset();
    requestTermination(copy);
    const int status = waitForStatus(pid);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST(ScriptProcess, RequestAfterTheChildWasReapedReachesNobody)
{
    const pid_t pid = spawnSleeper();
    const ScriptProcess process(pid);
    kill(pid, SIGKILL);
    waitForStatus(pid);
    // The pid is free for reuse now; the request must go nowhere and must not fail loudly.
    requestTermination(process);
    requestTermination(process);
}

} // namespace
} // namespace vantrel::limits
