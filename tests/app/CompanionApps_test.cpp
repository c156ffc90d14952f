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

FrontmostApplication named(const char* name)
{
    FrontmostApplication application;
    application.name = name;
    return application;
}

FrontmostApplication unnamed(const char* appId, const char* processName)
{
    FrontmostApplication application;
    application.appId = appId;
    application.processName = processName;
    return application;
}

FrontmostApplication withFlags(FrontmostApplication application, bool ownProcess, bool runsCodexCli)
{
    application.ownProcess = ownProcess;
    application.runsCodexCli = runsCodexCli;
    return application;
}

struct ApplicationCase {
    const char* description;
    FrontmostApplication application;
    bool companion;
};

class CompanionApplicationTest : public testing::TestWithParam<ApplicationCase> {};

TEST_P(CompanionApplicationTest, ComparesTheNameUsersSeeOrElseTheClassAndProcess)
{
    EXPECT_EQ(isCompanion(GetParam().application), GetParam().companion) << GetParam().description;
}

INSTANTIATE_TEST_SUITE_P(
    Applications, CompanionApplicationTest,
    testing::Values(
        ApplicationCase{"entry named Codex", named("Codex"), true},
        ApplicationCase{"entry named ChatGPT", named("ChatGPT"), true},
        ApplicationCase{"entry named Vantrel Solvane", named("Vantrel Solvane"), true},
        ApplicationCase{"entry name in other letter case", named("codex"), false},
        ApplicationCase{"entry name with words added", named("Codex Beta"), false},
        ApplicationCase{"an entry's name wins over a listed class",
                        [] {
                            FrontmostApplication application = named("Terminál");
                            application.appId = "Codex";
                            application.processName = "Codex";
                            return application;
                        }(),
                        false},
        ApplicationCase{"no entry: class Codex", unnamed("Codex", "codex-desktop"), true},
        ApplicationCase{"no entry: Electron class, process Codex", unnamed("Electron", "Codex"), true},
        ApplicationCase{"no entry: class ChatGPT", unnamed("ChatGPT", ""), true},
        ApplicationCase{"no entry: lower-case class and process", unnamed("codex", "codex"), false},
        ApplicationCase{"no entry: words added", unnamed("Codex Beta", "Codex Beta"), false},
        ApplicationCase{"no entry: a terminal", unnamed("XTerm", "xterm"), false},
        ApplicationCase{"nothing known", unnamed("", ""), false},
        ApplicationCase{"a window of this program", withFlags(unnamed("whatever", "vantrel"), true, false),
                        true},
        ApplicationCase{"a terminal running the Codex CLI", withFlags(named("Terminál"), false, true), true},
        ApplicationCase{"an unnamed terminal running the Codex CLI",
                        withFlags(unnamed("XTerm", "xterm"), false, true), true}));

TEST(CompanionApplication, NoWindowInFrontIsNoCompanion)
{
    EXPECT_FALSE(isCompanion(std::nullopt));
}

} // namespace
} // namespace vantrel
