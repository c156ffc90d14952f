#include "Vantrel/app/linux/ProcfsProcessTable.h"

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

namespace vantrel {
namespace {

using namespace std::string_literals;

std::string fixture(const char* name)
{
    return std::string(VANTREL_FIXTURES "/app/proc/") + name;
}

ProcessFindings inspect(const char* tree, std::int64_t root)
{
    ProcfsProcessTable table(fixture(tree));
    return inspectProcessTree(root, table);
}

constexpr auto shellStat = "201 (bash) S 100 201 201 34817 -1 4194560 100 0 0 0 5 3 0 0 20 0 1 0 1200 10000";

TEST(ProcStat, TakesTheNameParentSessionAndStartTime)
{
    const auto process = parseProcStat(shellStat, 201);
    ASSERT_TRUE(process);
    EXPECT_EQ(process->name, "bash");
    EXPECT_EQ(process->parent, 100);
    EXPECT_EQ(process->startTime, 1200U);
    EXPECT_TRUE(process->leadsTerminalSession);
}

TEST(ProcStat, ASessionLeaderWithoutATerminalOrAMemberOfAnotherSessionLeadsNoTerminalSession)
{
    EXPECT_FALSE(parseProcStat("201 (sshd) S 1 201 201 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 1200", 201)
                     ->leadsTerminalSession);
    EXPECT_FALSE(parseProcStat("202 (vim) S 201 202 201 34817 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 1200", 202)
                     ->leadsTerminalSession);
}

TEST(ProcStat, TheNameEndsAtTheLastParenthesis)
{
    const auto process = parseProcStat("7 (a) b (c)) S 1 7 7 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 99", 7);
    ASSERT_TRUE(process);
    EXPECT_EQ(process->name, "a) b (c)");
    EXPECT_EQ(process->parent, 1);
    EXPECT_EQ(process->startTime, 99U);
}

TEST(ProcStat, AnythingElseIsNoProcess)
{
    for (const char* text : {"", "201 bash S 100", "201 (bash", "201 bash) S 100 201 201 34817",
                             "201 (bash) S 100 201 201 34817 -1 4194560", // cut before the start time
                             "201 (bash) S x 201 201 34817 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 1200",
                             "201 (bash) S 100 201 201 34817 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 -5"}) {
        EXPECT_FALSE(parseProcStat(text, 201)) << text;
    }
}

TEST(Cmdline, GivesTheSecondArgument)
{
    EXPECT_EQ(scriptArgument("node\0/usr/bin/codex\0--yolo\0"s), "/usr/bin/codex");
    EXPECT_EQ(scriptArgument("node\0/usr/bin/codex"s), "/usr/bin/codex");
    EXPECT_EQ(scriptArgument("bash\0"s), "");
    EXPECT_EQ(scriptArgument("bash"s), "");
    EXPECT_EQ(scriptArgument(""s), "");
}

TEST(ProcfsProcessTable, ReadsAProcessAndItsScript)
{
    ProcfsProcessTable table(fixture("terminal"));
    const auto node = table.process(300);
    ASSERT_TRUE(node);
    EXPECT_EQ(node->name, "node");
    EXPECT_EQ(node->parent, 201);
    EXPECT_EQ(node->script, "");
    EXPECT_EQ(table.script(300), "/usr/local/bin/codex");
    EXPECT_FALSE(table.process(999));
    EXPECT_EQ(table.script(999), "");
}

TEST(ProcfsProcessTable, ChildrenComeFromEveryThreadsList)
{
    ProcfsProcessTable table(fixture("terminal"));
    EXPECT_EQ(table.children(100), (std::vector<std::int64_t>{200, 201}));
    EXPECT_EQ(table.children(200), std::vector<std::int64_t>{});
    EXPECT_EQ(table.children(999), std::vector<std::int64_t>{});
}

TEST(ProcfsProcessTable, WithoutChildrenListsTheParentIdsAreSearched)
{
    ProcfsProcessTable table(fixture("without-children-lists"));
    EXPECT_EQ(table.children(100), (std::vector<std::int64_t>{200, 201}));
    EXPECT_EQ(table.children(300), std::vector<std::int64_t>{301});
}

TEST(ProcfsProcessTable, FindsTheCliInASecondTab)
{
    const ProcessFindings findings = inspect("terminal", 100);
    EXPECT_EQ(findings.processName, "gnome-terminal-");
    EXPECT_TRUE(findings.runsCodexCli);
    EXPECT_TRUE(findings.isTerminal);
    EXPECT_EQ(inspect("without-children-lists", 100), findings);
}

TEST(ProcfsProcessTable, AShellWithoutTheCliIsATerminalWithoutCodex)
{
    const ProcessFindings findings = inspect("terminal", 200);
    EXPECT_EQ(findings.processName, "bash");
    EXPECT_FALSE(findings.runsCodexCli);
    EXPECT_FALSE(findings.isTerminal);
}

TEST(ProcfsProcessTable, AChildThatIsGoneIsSkipped)
{
    EXPECT_TRUE(inspect("vanishing", 100).runsCodexCli);
}

TEST(ProcfsProcessTable, StaleListsAndReusedIdsAreNoChildren)
{
    ProcfsProcessTable table(fixture("reused"));
    EXPECT_EQ(table.children(100), (std::vector<std::int64_t>{200, 201}));
    EXPECT_FALSE(inspect("reused", 100).runsCodexCli);
}

TEST(ProcfsProcessTable, ALoopEnds)
{
    const ProcessFindings findings = inspect("loop", 400);
    EXPECT_EQ(findings.processName, "a");
    EXPECT_FALSE(findings.runsCodexCli);
}

TEST(ProcfsProcessTable, OddNamesAndGarbledStatLines)
{
    ProcfsProcessTable table(fixture("odd"));
    ASSERT_TRUE(table.process(500));
    EXPECT_EQ(table.process(500)->name, "my (odd) name");
    EXPECT_EQ(table.script(500), "");
    EXPECT_FALSE(table.process(501));
    EXPECT_EQ(inspect("odd", 501), ProcessFindings{});
}

TEST(ProcfsProcessTable, ReadsThisVeryProcess)
{
    ProcfsProcessTable table;
    const auto self = table.process(getpid());
    ASSERT_TRUE(self);
    EXPECT_EQ(self->parent, getppid());
    EXPECT_FALSE(self->name.empty());
}

} // namespace
} // namespace vantrel
