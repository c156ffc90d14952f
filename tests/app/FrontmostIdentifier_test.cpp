#include "Vantrel/app/FrontmostIdentifier.h"

#include <gtest/gtest.h>

#include <map>

namespace vantrel {
namespace {

class FrontmostIdentifierTest : public testing::Test {
protected:
    FrontmostIdentifier identifier{{[this](const FrontmostWindow& window) -> std::optional<std::string> {
                                        ++entryLookups;
                                        const auto found = entries.find(window.appId);
                                        return found == entries.end() ? std::nullopt
                                                                      : std::optional(found->second);
                                    },
                                    [this](std::int64_t pid) {
                                        ++inspections;
                                        return processes[pid];
                                    }}};
    std::map<std::string, std::string> entries{{"org.gnome.Terminal", "Terminál"}, {"codex", "Codex"}};
    std::map<std::int64_t, ProcessFindings> processes;
    int entryLookups = 0;
    int inspections = 0;
};

FrontmostWindow window(const char* appId, std::optional<std::int64_t> pid = std::nullopt)
{
    FrontmostWindow result;
    result.appId = appId;
    result.pid = pid;
    return result;
}

TEST_F(FrontmostIdentifierTest, NoWindowIsNoApplication)
{
    EXPECT_FALSE(identifier.identify(std::nullopt));
    EXPECT_EQ(inspections, 0);
}

TEST_F(FrontmostIdentifierTest, TakesTheEntrysNameAndTheProcessFindings)
{
    processes[40] = {"codex-desktop", false, false};
    const auto& application = identifier.identify(window("codex", 40));
    ASSERT_TRUE(application);
    EXPECT_EQ(application->name, "Codex");
    EXPECT_EQ(application->appId, "codex");
    EXPECT_EQ(application->processName, "codex-desktop");
    EXPECT_FALSE(application->runsCodexCli);
}

TEST_F(FrontmostIdentifierTest, ANameTheDesktopGivesNeedsNoEntry)
{
    FrontmostWindow named = window("com.openai.codex");
    named.localizedName = "Codex";
    EXPECT_EQ(identifier.identify(named)->name, "Codex");
    EXPECT_EQ(entryLookups, 0);
}

TEST_F(FrontmostIdentifierTest, WithoutAProcessIdNoProcessIsRead)
{
    EXPECT_FALSE(identifier.identify(window("codex"))->runsCodexCli);
    EXPECT_EQ(inspections, 0);
}

TEST_F(FrontmostIdentifierTest, OwnWindowsAreNotInspected)
{
    FrontmostWindow own = window("Vantrel", 10);
    own.ownProcess = true;
    EXPECT_TRUE(identifier.identify(own)->ownProcess);
    EXPECT_EQ(inspections, 0);
}

TEST_F(FrontmostIdentifierTest, WorksWithoutPlatformLookups)
{
    FrontmostIdentifier bare({});
    const auto& application = bare.identify(window("Codex", 40));
    EXPECT_EQ(application->name, std::nullopt);
    EXPECT_EQ(application->appId, "Codex");
    EXPECT_FALSE(bare.recheckTerminal());
}

TEST_F(FrontmostIdentifierTest, RechecksOnlyATerminal)
{
    processes[40] = {"gnome-terminal-", false, true};
    processes[50] = {"firefox", false, false};
    identifier.identify(window("org.gnome.Terminal", 40));
    EXPECT_FALSE(identifier.recheckTerminal());
    processes[40].runsCodexCli = true;
    EXPECT_TRUE(identifier.recheckTerminal());
    EXPECT_TRUE(identifier.current()->runsCodexCli);
    EXPECT_FALSE(identifier.recheckTerminal());
    processes[40].runsCodexCli = false;
    EXPECT_TRUE(identifier.recheckTerminal());
    EXPECT_FALSE(identifier.current()->runsCodexCli);
    EXPECT_EQ(inspections, 5);

    identifier.identify(window("firefox", 50));
    EXPECT_FALSE(identifier.recheckTerminal());
    identifier.identify(std::nullopt);
    EXPECT_FALSE(identifier.recheckTerminal());
    EXPECT_EQ(inspections, 6);
}

} // namespace
} // namespace vantrel
