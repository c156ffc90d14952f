#include "Vantrel/app/wayland/ToplevelTracker.h"

#include <gtest/gtest.h>

#include <array>

namespace vantrel {
namespace {

constexpr std::array<std::uint32_t, 1> activated{ToplevelTracker::activatedState};
constexpr std::array<std::uint32_t, 2> maximizedAndActivated{0, ToplevelTracker::activatedState};
constexpr std::array<std::uint32_t, 1> minimized{1};
constexpr std::array<std::uint32_t, 0> plain{};

// A toplevel announced with its app_id and state, as a compositor sends a new one.
void announce(ToplevelTracker& tracker, ToplevelTracker::Handle handle, const char* appId,
              std::span<const std::uint32_t> states)
{
    tracker.created(handle);
    tracker.appIdChanged(handle, appId);
    tracker.stateChanged(handle, states);
    tracker.done(handle);
}

TEST(ToplevelTracker, NothingIsActivatedAtFirst)
{
    const ToplevelTracker tracker;
    EXPECT_EQ(tracker.activatedAppId(), std::nullopt);
}

TEST(ToplevelTracker, TellsTheActivatedToplevelOnceDone)
{
    ToplevelTracker tracker;
    tracker.created(1);
    tracker.appIdChanged(1, "codex");
    tracker.stateChanged(1, activated);
    EXPECT_EQ(tracker.activatedAppId(), std::nullopt) << "pending until done";
    EXPECT_TRUE(tracker.done(1));
    EXPECT_EQ(tracker.activatedAppId(), "codex");
}

TEST(ToplevelTracker, ActivationAmongOtherStatesCounts)
{
    ToplevelTracker tracker;
    announce(tracker, 1, "codex", maximizedAndActivated);
    EXPECT_EQ(tracker.activatedAppId(), "codex");
}

TEST(ToplevelTracker, FollowsTheFocusFromOneToplevelToAnother)
{
    ToplevelTracker tracker;
    announce(tracker, 1, "codex", activated);
    announce(tracker, 2, "firefox", plain);
    tracker.stateChanged(1, plain);
    EXPECT_TRUE(tracker.done(1));
    EXPECT_EQ(tracker.activatedAppId(), std::nullopt) << "between the two events";
    tracker.stateChanged(2, activated);
    EXPECT_TRUE(tracker.done(2));
    EXPECT_EQ(tracker.activatedAppId(), "firefox");
}

TEST(ToplevelTracker, TheNewcomerWinsWhenTheOldOneIsNotYetDeactivated)
{
    ToplevelTracker tracker;
    announce(tracker, 1, "codex", activated);
    announce(tracker, 2, "chatgpt", activated);
    EXPECT_EQ(tracker.activatedAppId(), "chatgpt");
    tracker.stateChanged(1, plain);
    EXPECT_FALSE(tracker.done(1));
    EXPECT_EQ(tracker.activatedAppId(), "chatgpt");
}

TEST(ToplevelTracker, SwitchingBetweenTwoWindowsOfOneApplicationIsNoChange)
{
    ToplevelTracker tracker;
    announce(tracker, 1, "codex", activated);
    announce(tracker, 2, "codex", plain);
    tracker.stateChanged(2, activated);
    EXPECT_FALSE(tracker.done(2));
    tracker.stateChanged(1, plain);
    EXPECT_FALSE(tracker.done(1));
    EXPECT_EQ(tracker.activatedAppId(), "codex");
}

TEST(ToplevelTracker, AnAppIdSetLateIsTold)
{
    ToplevelTracker tracker;
    tracker.created(1);
    tracker.stateChanged(1, activated);
    EXPECT_TRUE(tracker.done(1));
    EXPECT_EQ(tracker.activatedAppId(), "") << "activated, but not yet named";
    tracker.appIdChanged(1, "codex");
    EXPECT_TRUE(tracker.done(1));
    EXPECT_EQ(tracker.activatedAppId(), "codex");
}

TEST(ToplevelTracker, ClosingTheActivatedToplevelLeavesNothingActivated)
{
    ToplevelTracker tracker;
    announce(tracker, 1, "codex", activated);
    announce(tracker, 2, "firefox", minimized);
    EXPECT_TRUE(tracker.closed(1));
    EXPECT_EQ(tracker.activatedAppId(), std::nullopt);
    EXPECT_FALSE(tracker.closed(2));
}

TEST(ToplevelTracker, AToplevelClosedBeforeItIsDoneNeverCounts)
{
    ToplevelTracker tracker;
    tracker.created(1);
    tracker.appIdChanged(1, "codex");
    tracker.stateChanged(1, activated);
    EXPECT_FALSE(tracker.closed(1));
    EXPECT_FALSE(tracker.done(1));
    EXPECT_EQ(tracker.activatedAppId(), std::nullopt);
}

TEST(ToplevelTracker, EventsForUnknownHandlesAreIgnored)
{
    ToplevelTracker tracker;
    tracker.appIdChanged(9, "codex");
    tracker.stateChanged(9, activated);
    EXPECT_FALSE(tracker.done(9));
    EXPECT_FALSE(tracker.closed(9));
    EXPECT_EQ(tracker.activatedAppId(), std::nullopt);
}

TEST(ToplevelTracker, ClearingForgetsEverything)
{
    ToplevelTracker tracker;
    announce(tracker, 1, "codex", activated);
    EXPECT_TRUE(tracker.clear());
    EXPECT_EQ(tracker.activatedAppId(), std::nullopt);
    EXPECT_FALSE(tracker.clear());
}

} // namespace
} // namespace vantrel
