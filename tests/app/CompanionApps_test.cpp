#include "Vantrel/app/CompanionApps.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

struct NameCase {
    const char* name;
    bool companion;
};

class CompanionNameTest : public testing::TestWithParam<NameCase> {};

TEST_P(CompanionNameTest, MatchesExactlyAndCaseSensitively)
{
    EXPECT_EQ(isCompanionName(GetParam().name), GetParam().companion) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(Names, CompanionNameTest,
                         testing::Values(NameCase{"Codex", true}, NameCase{"ChatGPT", true},
                                         NameCase{"Vantrel", true}, NameCase{"Vantrel Solvane", true},
                                         NameCase{"codex", false}, NameCase{"CODEX", false},
                                         NameCase{"chatgpt", false}, NameCase{"Codex Beta", false},
                                         NameCase{"ChatGPT Desktop", false}, NameCase{" Codex", false},
                                         NameCase{"Codex ", false}, NameCase{"Cod", false},
                                         NameCase{"vantrel", false}, NameCase{"Vantrel Solvane ", false},
                                         NameCase{"xterm", false}, NameCase{"", false}));

TEST(CompanionNames, AreTheFourNamesInOrder)
{
    ASSERT_EQ(companionAppNames.size(), 4U);
    EXPECT_EQ(companionAppNames[0], "Codex");
    EXPECT_EQ(companionAppNames[1], "ChatGPT");
    EXPECT_EQ(companionAppNames[2], "Vantrel");
    EXPECT_EQ(companionAppNames[3], "Vantrel Solvane");
}

struct WindowCase {
    const char* description;
    FrontmostWindow window;
    bool companion;
};

class CompanionWindowTest : public testing::TestWithParam<WindowCase> {};

TEST_P(CompanionWindowTest, LooksAtTheClassAndTheProcessName)
{
    EXPECT_EQ(isCompanion(GetParam().window), GetParam().companion) << GetParam().description;
}

INSTANTIATE_TEST_SUITE_P(
    Windows, CompanionWindowTest,
    testing::Values(WindowCase{"class Codex", {"Codex", "codex-desktop", false}, true},
                    WindowCase{"Electron class, process Codex", {"Electron", "Codex", false}, true},
                    WindowCase{"class ChatGPT", {"ChatGPT", "", false}, true},
                    WindowCase{"lower-case class and process", {"codex", "codex", false}, false},
                    WindowCase{"words added", {"Codex Beta", "Codex Beta", false}, false},
                    WindowCase{"a terminal", {"XTerm", "xterm", false}, false},
                    WindowCase{"nothing known", {"", "", false}, false},
                    WindowCase{"a window of this program", {"whatever", "vantrel", true}, true}));

TEST(CompanionWindow, NoWindowInFrontIsNoCompanion)
{
    EXPECT_FALSE(isCompanion(std::nullopt));
}

} // namespace
} // namespace vantrel
