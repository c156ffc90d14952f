#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/ReachAdvice.h"
#include "Vantrel/app/StatusItem.h"

#include <QAction>

#include "DelegateFixture.h"

namespace vantrel::testing {
namespace {

using State = FrontmostReach::State;

const FrontmostReach tells{};
const FrontmostReach pending{State::pending, MissingSource::gnomeExtension, {}};
const FrontmostReach noExtension{State::tellsNothing, MissingSource::gnomeExtension, "43.9"};

class PinFollowsReachTest : public DelegateFixture {
protected:
    // Started as the program starts, with an unrelated window in front.
    AppDelegate& started(const FrontmostReach& reach)
    {
        desktop.reach = reach;
        desktop.frontmost = windowOfClass("xterm");
        AppDelegate& app = delegate();
        app.applicationDidFinishLaunching();
        return app;
    }

    QAction& everywhere() { return *delegate().statusItem->menu().actions().at(2); }

    void expectPinned(bool pinned)
    {
        EXPECT_EQ(delegate().pinnedEverywhere, pinned);
        EXPECT_EQ(everywhere().isChecked(), pinned);
        EXPECT_EQ(delegate().panel->isVisible(), pinned);
    }
};

TEST_F(PinFollowsReachTest, WhereTheDesktopTellsItStartsUnpinnedAndSaysNothing)
{
    started(tells);
    expectPinned(false);
    EXPECT_TRUE(notices.empty());
}

TEST_F(PinFollowsReachTest, WhereNothingTellsItStartsPinnedWithTheCheckMarkAndSaysWhatToEnableOnce)
{
    started(noExtension);
    expectPinned(true);
    ASSERT_EQ(notices.size(), 1U);
    EXPECT_EQ(notices.front(), reachAdvice(noExtension, true));
    EXPECT_NE(notices.front().find("gnome-extensions enable vantrel-focus-gnome43@vantrel.github.io"),
              std::string::npos);
    desktop.switchTo(windowOfClass("Firefox"));
    desktop.reachBecomes(noExtension);
    expectPinned(true);
    EXPECT_EQ(notices.size(), 1U);
}

TEST_F(PinFollowsReachTest, WaitsForTheFirstAnswerBeforePinning)
{
    started(pending);
    expectPinned(false);
    EXPECT_TRUE(notices.empty());
    desktop.reachBecomes(noExtension);
    expectPinned(true);
    EXPECT_EQ(notices.size(), 1U);
}

TEST_F(PinFollowsReachTest, AnExtensionEnabledLaterLiftsVantrelsOwnPin)
{
    started(noExtension);
    desktop.reachBecomes(tells);
    expectPinned(false);
    ASSERT_EQ(notices.size(), 2U);
    EXPECT_EQ(notices.back(), "vantrel: the window in front is told now, so the panel is no longer pinned");
    desktop.switchTo(windowOfClass("Codex"));
    EXPECT_TRUE(delegate().panel->isVisible());
}

TEST_F(PinFollowsReachTest, AnExtensionDisabledLaterPinsAgainWithoutRepeatingTheAdvice)
{
    started(tells);
    desktop.reachBecomes(noExtension);
    expectPinned(true);
    desktop.reachBecomes(tells);
    desktop.reachBecomes(noExtension);
    expectPinned(true);
    ASSERT_EQ(notices.size(), 3U);
    EXPECT_EQ(notices.at(0), reachAdvice(noExtension, true));
    EXPECT_EQ(notices.at(2),
              "vantrel: nothing tells which window is in front any more, so the panel is pinned "
              "until something does");
}

TEST_F(PinFollowsReachTest, AnUnpinFromTheMenuStandsWhateverTheDesktopTellsLater)
{
    started(noExtension);
    everywhere().trigger();
    expectPinned(false);
    desktop.reachBecomes(tells);
    desktop.reachBecomes(noExtension);
    expectPinned(false);
    EXPECT_EQ(notices.size(), 1U);
}

TEST_F(PinFollowsReachTest, APinFromTheMenuStandsOnceTheDesktopTells)
{
    started(noExtension);
    everywhere().trigger();
    everywhere().trigger();
    desktop.reachBecomes(tells);
    expectPinned(true);
}

TEST_F(PinFollowsReachTest, APinChosenBeforeNothingTellsIsTheUsersToo)
{
    started(tells);
    everywhere().trigger();
    desktop.reachBecomes(noExtension);
    desktop.reachBecomes(tells);
    expectPinned(true);
    ASSERT_EQ(notices.size(), 1U);
    EXPECT_EQ(notices.front(), reachAdvice(noExtension, true));
}

} // namespace
} // namespace vantrel::testing
