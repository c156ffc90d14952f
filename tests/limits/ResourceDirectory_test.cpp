#include "Vantrel/app/RunningExecutable.h"
#include "Vantrel/limits/LimitsScript.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vantrel::limits {
namespace {

namespace fs = std::filesystem;

// The test executables sit in bin/ of the build tree, beside share/vantrel/ with the script in it.
TEST(ResourceDirectory, FoundBesideTheRunningExecutable)
{
    const fs::path executable = runningExecutable().path;
    const fs::path resources = resourceDirectory();
    EXPECT_EQ(resources, executable.parent_path().parent_path() / "share" / "vantrel");
    EXPECT_TRUE(fs::is_regular_file(resources / "vantrel.py"));
}

TEST(ResourceDirectory, IndependentOfTheWorkingDirectory)
{
    const fs::path before = resourceDirectory();
    const fs::path previous = fs::current_path();
    fs::current_path("/");
    const fs::path after = resourceDirectory();
    fs::current_path(previous);
    EXPECT_EQ(after, before);
}

TEST(ResourceDirectory, InstalledLayoutIsFound)
{
    const fs::path prefix = fs::path(testing::TempDir()) / "vantrel-prefix";
    fs::create_directories(prefix / "share" / "vantrel");
    fs::create_directories(prefix / "bin");
    EXPECT_EQ(resourceDirectoryOf(prefix / "bin" / "vantrel"), prefix / "share" / "vantrel");
}

TEST(ResourceDirectoryDeathTest, MissingDirectoryStopsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(resourceDirectoryOf("/nonexistent/bin/vantrel"),
                 "resource directory /nonexistent/share/vantrel is missing");
}

TEST(ResourceDirectory, ScriptCommandIsExact)
{
    const std::vector<std::string> expected{"/usr/bin/env", "python3",
                                            "/opt/vantrel/share/vantrel/vantrel.py", "--live", "--json"};
    EXPECT_EQ(limitsScriptCommand("/opt/vantrel/share/vantrel"), expected);
}

TEST(ResourceDirectory, DefaultCommandRunsTheShippedScript)
{
    const std::vector<std::string> command = limitsScriptCommand();
    ASSERT_EQ(command.size(), 5U);
    EXPECT_EQ(command[2], (resourceDirectory() / "vantrel.py").string());
}

} // namespace
} // namespace vantrel::limits
