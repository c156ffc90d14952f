#include "Vantrel/app/WindowIdentity.h"

#include <gtest/gtest.h>

#include <string>

namespace vantrel {
namespace {

using namespace std::string_literals;

struct WmClassCase {
    std::string property;
    std::string windowClass;
};

class WmClassTest : public testing::TestWithParam<WmClassCase> {};

TEST_P(WmClassTest, TakesTheSecondString)
{
    EXPECT_EQ(windowClassFromWmClass(GetParam().property), GetParam().windowClass);
}

INSTANTIATE_TEST_SUITE_P(Properties, WmClassTest,
                         testing::Values(WmClassCase{"codex\0Codex\0"s, "Codex"},
                                         WmClassCase{"xterm\0XTerm\0"s, "XTerm"},
                                         WmClassCase{"chat\0Codex Beta\0"s, "Codex Beta"},
                                         WmClassCase{"codex\0Codex"s, "Codex"}, // no final NUL
                                         WmClassCase{"codex\0"s, ""},           // instance only
                                         WmClassCase{"codex"s, ""}, WmClassCase{""s, ""},
                                         WmClassCase{"\0\0"s, ""}));

TEST(ProcessName, IsTheCommLineWithoutItsLineFeed)
{
    EXPECT_EQ(processNameFromComm("Codex\n"), "Codex");
    EXPECT_EQ(processNameFromComm("Codex"), "Codex");
    EXPECT_EQ(processNameFromComm("Codex Beta\n"), "Codex Beta");
    EXPECT_EQ(processNameFromComm(""), "");
}

TEST(ProcessName, IsReadFromTheProcTree)
{
    const std::filesystem::path proc = VANTREL_FIXTURES "/app/proc";
    EXPECT_EQ(readProcessName(4242, proc), "Codex");
    EXPECT_EQ(readProcessName(77, proc), "codex-long-name");
}

TEST(ProcessName, IsEmptyForAProcessThatCannotBeRead)
{
    const std::filesystem::path proc = VANTREL_FIXTURES "/app/proc";
    EXPECT_EQ(readProcessName(99999, proc), "");
    EXPECT_EQ(readProcessName(0, proc), "");
    EXPECT_EQ(readProcessName(-1, proc), "");
}

} // namespace
} // namespace vantrel
