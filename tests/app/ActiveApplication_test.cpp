#include "Vantrel/app/ActiveApplication.h"
#include "Vantrel/app/CompanionApps.h"
#include "Vantrel/app/FrontmostIdentifier.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

constexpr std::int64_t ownPid = 500;

// Whether the panel stays up for the application in front, as on macOS: the desktop names the application
// and there are no further lookups.
bool showsFor(const std::optional<ActiveApplication>& active)
{
    FrontmostIdentifier identifier(IdentificationSources{});
    return isCompanion(identifier.identify(frontmostWindowOf(active, ownPid)));
}

TEST(ActiveApplication, TheNameIsTakenAsItIs)
{
    const auto window = frontmostWindowOf(ActiveApplication{"Codex", 77}, ownPid);
    ASSERT_TRUE(window.has_value());
    EXPECT_EQ(window->localizedName, "Codex");
    EXPECT_EQ(window->pid, 77);
    EXPECT_FALSE(window->ownProcess);
    EXPECT_TRUE(window->appId.empty());
    EXPECT_TRUE(window->instanceName.empty());
}

TEST(ActiveApplication, WithoutANameItCountsByTheEmptyName)
{
    const auto window = frontmostWindowOf(ActiveApplication{std::nullopt, 77}, ownPid);
    ASSERT_TRUE(window.has_value());
    EXPECT_EQ(window->localizedName, "");
}

TEST(ActiveApplication, NoApplicationInFrontIsNoWindow)
{
    EXPECT_FALSE(frontmostWindowOf(std::nullopt, ownPid).has_value());
}

TEST(ActiveApplication, ThePanelStaysUpForListedNamesOnly)
{
    struct Case {
        std::optional<ActiveApplication> active;
        bool shown;
        const char* what;
    };
    const std::vector<Case> cases{
        {ActiveApplication{"Codex", 77}, true, "Codex"},
        {ActiveApplication{"ChatGPT", 77}, true, "ChatGPT"},
        {ActiveApplication{"Vantrel", 77}, true, "our short name"},
        {ActiveApplication{"Vantrel Solvane", 77}, true, "our full name"},
        {ActiveApplication{"codex", 77}, false, "other letter case"},
        {ActiveApplication{"CHATGPT", 77}, false, "other letter case"},
        {ActiveApplication{"Codex Beta", 77}, false, "words added"},
        {ActiveApplication{"Safari", 77}, false, "any other name"},
        {ActiveApplication{"", 77}, false, "an empty name"},
        {ActiveApplication{std::nullopt, 77}, false, "no name"},
        {std::nullopt, false, "no application in front"},
        // Started outside its bundle, the program is named after its executable, "vantrel".
        {ActiveApplication{"vantrel", ownPid}, true, "this very program, whatever its name"},
        {ActiveApplication{std::nullopt, ownPid}, true, "this very program without a name"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(showsFor(c.active), c.shown) << c.what;
}

} // namespace
} // namespace vantrel
