#include "Vantrel/app/RunningExecutable.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vantrel {
namespace {

namespace fs = std::filesystem;

TEST(RunningExecutable, IsThisTestFreeOfSymbolicLinks)
{
    const ExecutableLookup executable = runningExecutable();
    ASSERT_TRUE(executable.error.empty()) << executable.error;
    EXPECT_EQ(fs::path(executable.path).filename(), "RunningExecutable_test");
    EXPECT_TRUE(fs::path(executable.path).is_absolute());
    EXPECT_EQ(fs::canonical(executable.path), fs::path(executable.path));
}

TEST(RunningExecutable, IndependentOfTheWorkingDirectory)
{
    const std::string before = runningExecutable().path;
    const fs::path previous = fs::current_path();
    fs::current_path("/");
    const std::string after = runningExecutable().path;
    fs::current_path(previous);
    EXPECT_EQ(after, before);
}

} // namespace
} // namespace vantrel
