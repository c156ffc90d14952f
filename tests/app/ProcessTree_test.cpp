#include "Vantrel/app/ProcessTree.h"

#include <gtest/gtest.h>

#include <map>

namespace vantrel {
namespace {

// A machine's processes as the test lays them out; a pid may be listed as a child without existing.
class FakeProcessTable final : public ProcessTable {
public:
    std::map<std::int64_t, ProcessInfo> processes; // with their scripts
    std::map<std::int64_t, std::vector<std::int64_t>> childLists;
    int reads = 0;
    int scriptReads = 0;

    std::optional<ProcessInfo> process(std::int64_t pid) override
    {
        ++reads;
        const auto found = processes.find(pid);
        if (found == processes.end()) {
            return std::nullopt;
        }
        ProcessInfo info = found->second;
        info.script.clear();
        return info;
    }
    std::string script(std::int64_t pid) override
    {
        ++scriptReads;
        const auto found = processes.find(pid);
        return found == processes.end() ? std::string() : found->second.script;
    }
    std::vector<std::int64_t> children(std::int64_t pid) override
    {
        const auto found = childLists.find(pid);
        return found == childLists.end() ? std::vector<std::int64_t>{} : found->second;
    }

    // A process started at `startTime` under `parent`, listed among its children.
    ProcessInfo& add(std::int64_t pid, std::int64_t parent, ProcessInfo info, std::uint64_t startTime = 10)
    {
        info.parent = parent;
        info.startTime = startTime;
        childLists[parent].push_back(pid);
        return processes[pid] = std::move(info);
    }
    ProcessInfo& add(std::int64_t pid, std::int64_t parent, const char* name, std::uint64_t startTime = 10);
};

ProcessInfo program(const char* name, const char* script = "")
{
    ProcessInfo info;
    info.name = name;
    info.script = script;
    return info;
}

ProcessInfo& FakeProcessTable::add(std::int64_t pid, std::int64_t parent, const char* name,
                                   std::uint64_t startTime)
{
    return add(pid, parent, program(name), startTime);
}

struct CliCase {
    const char* description;
    ProcessInfo process;
    bool codex;
};

class CodexCliTest : public testing::TestWithParam<CliCase> {};

TEST_P(CodexCliTest, KnowsTheNativeProgramAndTheNodeLauncher)
{
    EXPECT_EQ(isCodexCli(GetParam().process), GetParam().codex) << GetParam().description;
}

INSTANTIATE_TEST_SUITE_P(
    Programs, CodexCliTest,
    testing::Values(CliCase{"the native program", program("codex"), true},
                    CliCase{"node running the launcher", program("node", "/usr/bin/codex"), true},
                    CliCase{"node running the launcher's script",
                            program("node", "/usr/lib/node_modules/@openai/codex/bin/codex.js"), true},
                    CliCase{"nodejs running the launcher", program("nodejs", "/usr/bin/codex"), true},
                    CliCase{"node running something else", program("node", "/srv/app/server.js"), false},
                    CliCase{"node running a script in a folder named codex",
                            program("node", "/srv/codex/server.js"), false},
                    CliCase{"another program running a script named codex", program("python3", "codex"),
                            false},
                    CliCase{"a name that only starts like it", program("codex-helper"), false},
                    CliCase{"a name in other letter case", program("Codex"), false},
                    CliCase{"a shell", program("bash"), false},
                    CliCase{"nothing known", program(""), false}));

TEST(CodexCli, OnlyAnInterpretersScriptIsNeeded)
{
    EXPECT_TRUE(runsAScript(program("node")));
    EXPECT_TRUE(runsAScript(program("nodejs")));
    EXPECT_FALSE(runsAScript(program("codex")));
    EXPECT_FALSE(runsAScript(program("bash")));
}

TEST(ProcessTree, NoProcessFindsNothing)
{
    FakeProcessTable table;
    EXPECT_EQ(inspectProcessTree(100, table), ProcessFindings{});
}

TEST(ProcessTree, NamesTheWindowsOwnProcess)
{
    FakeProcessTable table;
    table.add(100, 1, "gnome-terminal-");
    EXPECT_EQ(inspectProcessTree(100, table).processName, "gnome-terminal-");
}

TEST(ProcessTree, FindsTheCliAsAChild)
{
    FakeProcessTable table;
    table.add(100, 1, "editor");
    table.add(200, 100, "codex");
    EXPECT_TRUE(inspectProcessTree(100, table).runsCodexCli);
}

TEST(ProcessTree, FindsTheCliAsAGrandchild)
{
    FakeProcessTable table;
    table.add(100, 1, "xterm");
    table.add(200, 100, "bash").leadsTerminalSession = true;
    table.add(300, 200, program("node", "/usr/bin/codex"));
    const ProcessFindings findings = inspectProcessTree(100, table);
    EXPECT_TRUE(findings.runsCodexCli);
    EXPECT_TRUE(findings.isTerminal);
    EXPECT_EQ(table.scriptReads, 1); // node's only
}

TEST(ProcessTree, FindsTheCliInAnyTabOfATerminal)
{
    FakeProcessTable table;
    table.add(100, 1, "konsole");
    table.add(200, 100, "bash").leadsTerminalSession = true;
    table.add(201, 100, "zsh").leadsTerminalSession = true;
    table.add(300, 201, "vim");
    table.add(301, 201, "codex");
    EXPECT_TRUE(inspectProcessTree(100, table).runsCodexCli);
}

TEST(ProcessTree, ACliThatIsNoDescendantDoesNotCount)
{
    FakeProcessTable table;
    table.add(100, 1, "xterm");
    table.add(200, 100, "bash").leadsTerminalSession = true;
    table.add(500, 1, "sshd");
    table.add(600, 500, "codex");
    const ProcessFindings findings = inspectProcessTree(100, table);
    EXPECT_FALSE(findings.runsCodexCli);
    EXPECT_TRUE(findings.isTerminal);
}

TEST(ProcessTree, TheWindowsOwnProcessBeingTheCliIsNoDescendant)
{
    FakeProcessTable table;
    table.add(100, 1, "codex");
    EXPECT_FALSE(inspectProcessTree(100, table).runsCodexCli);
}

TEST(ProcessTree, AWindowWithoutATerminalSessionBelowItIsNoTerminal)
{
    FakeProcessTable table;
    table.add(100, 1, "chromium");
    table.add(200, 100, "chromium");
    table.add(300, 200, "bash").leadsTerminalSession = true; // a grandchild does not make a terminal
    EXPECT_FALSE(inspectProcessTree(100, table).isTerminal);
}

TEST(ProcessTree, AProcessThatEndedWhileTheTreeWasReadIsLeftOut)
{
    FakeProcessTable table;
    table.add(100, 1, "xterm");
    table.childLists[100].push_back(200); // listed, gone before it could be read
    table.add(201, 100, "bash").leadsTerminalSession = true;
    table.add(300, 201, "codex");
    EXPECT_TRUE(inspectProcessTree(100, table).runsCodexCli);
}

TEST(ProcessTree, AReusedProcessIdIsNoChild)
{
    FakeProcessTable table;
    table.add(100, 1, "xterm", 500);
    // Listed under 100 a moment ago; since then that child ended and an older process's child took the id.
    table.add(200, 100, "bash", 500).leadsTerminalSession = true;
    table.processes[200].parent = 7;
    // Claims 100 as its parent, but started before 100 did: it was the child of an earlier process 100.
    table.add(300, 100, "codex", 400);
    const ProcessFindings findings = inspectProcessTree(100, table);
    EXPECT_FALSE(findings.runsCodexCli);
    EXPECT_FALSE(findings.isTerminal);
}

TEST(ProcessTree, ALoopInGarbledParentIdsIsWalkedOnce)
{
    FakeProcessTable table;
    table.add(100, 101, "a");
    table.add(101, 100, "b");
    table.childLists[101].push_back(101); // itself, too
    const ProcessFindings findings = inspectProcessTree(100, table);
    EXPECT_FALSE(findings.runsCodexCli);
    EXPECT_LE(table.reads, 3);
}

TEST(ProcessTree, StopsAtTheLimit)
{
    FakeProcessTable table;
    table.add(1000, 1, "build");
    for (std::int64_t pid = 1001; pid <= 1100; ++pid) {
        table.add(pid, pid - 1, "make");
    }
    table.add(1101, 1100, "codex");
    EXPECT_TRUE(inspectProcessTree(1000, table).runsCodexCli);
    table.reads = 0;
    EXPECT_FALSE(inspectProcessTree(1000, table, 50).runsCodexCli);
    EXPECT_LE(table.reads, 51);
}

} // namespace
} // namespace vantrel
