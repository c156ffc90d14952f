#include "Vantrel/app/wayland/PlasmaWindowTracker.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

constexpr std::uint32_t active = PlasmaWindowTracker::activeState;
constexpr std::uint32_t plain = 0;
// Closeable, minimizable and maximizable, as KWin tells an ordinary window.
constexpr std::uint32_t ordinary = (1U << 8U) | (1U << 9U) | (1U << 10U);

// A window announced as KWin sends a new one: its identity and state, then the end of its initial state.
void announce(PlasmaWindowTracker& tracker, PlasmaWindowTracker::Handle handle, const char* appId,
              std::uint32_t pid, std::uint32_t flags, const char* resourceName = "")
{
    tracker.created(handle);
    tracker.appIdChanged(handle, appId);
    tracker.resourceNameChanged(handle, resourceName);
    tracker.pidChanged(handle, pid);
    tracker.stateChanged(handle, flags);
    tracker.initialStateDone(handle);
}

FrontmostWindow window(const char* appId, std::optional<std::int64_t> pid, const char* instance = "")
{
    FrontmostWindow frontmost;
    frontmost.appId = appId;
    frontmost.instanceName = instance;
    frontmost.pid = pid;
    return frontmost;
}

TEST(PlasmaWindowTracker, NothingIsActiveAtFirst)
{
    const PlasmaWindowTracker tracker;
    EXPECT_EQ(tracker.activeWindow(), std::nullopt);
}

TEST(PlasmaWindowTracker, TellsTheActiveWindowOnceItsInitialStateIsDone)
{
    PlasmaWindowTracker tracker;
    tracker.created(1);
    EXPECT_FALSE(tracker.appIdChanged(1, "codex"));
    EXPECT_FALSE(tracker.pidChanged(1, 4242));
    EXPECT_FALSE(tracker.stateChanged(1, active | ordinary));
    EXPECT_EQ(tracker.activeWindow(), std::nullopt) << "pending until the initial state is done";
    EXPECT_TRUE(tracker.initialStateDone(1));
    EXPECT_EQ(tracker.activeWindow(), window("codex", 4242));
}

TEST(PlasmaWindowTracker, AnX11WindowBringsItsResourceName)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 77, active, "codex-desktop");
    EXPECT_EQ(tracker.activeWindow(), window("codex", 77, "codex-desktop"));
}

TEST(PlasmaWindowTracker, AProcessKWinCouldNotLearnIsNone)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 0, active);
    EXPECT_EQ(tracker.activeWindow(), window("codex", std::nullopt));
}

TEST(PlasmaWindowTracker, OnlyTheActiveBitCounts)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 1, ordinary | (1U << 4U) | (1U << 31U));
    EXPECT_EQ(tracker.activeWindow(), std::nullopt);
    EXPECT_TRUE(tracker.stateChanged(1, ordinary | active));
    EXPECT_EQ(tracker.activeWindow(), window("codex", 1));
}

TEST(PlasmaWindowTracker, FollowsTheFocusFromOneWindowToAnother)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 10, active);
    announce(tracker, 2, "org.kde.dolphin", 20, plain);
    EXPECT_TRUE(tracker.stateChanged(1, plain));
    EXPECT_EQ(tracker.activeWindow(), std::nullopt) << "between the two events";
    EXPECT_TRUE(tracker.stateChanged(2, active));
    EXPECT_EQ(tracker.activeWindow(), window("org.kde.dolphin", 20));
}

TEST(PlasmaWindowTracker, TheNewcomerWinsWhenTheOldOneIsNotYetDeactivated)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 10, active);
    announce(tracker, 2, "chatgpt", 20, active);
    EXPECT_EQ(tracker.activeWindow(), window("chatgpt", 20));
    EXPECT_FALSE(tracker.stateChanged(1, plain));
    EXPECT_EQ(tracker.activeWindow(), window("chatgpt", 20));
}

TEST(PlasmaWindowTracker, AWindowActiveAgainCountsAsTheLatest)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 10, active);
    announce(tracker, 2, "chatgpt", 20, active);
    tracker.stateChanged(1, plain);
    EXPECT_TRUE(tracker.stateChanged(1, active));
    EXPECT_EQ(tracker.activeWindow(), window("codex", 10));
}

TEST(PlasmaWindowTracker, TheActiveWindowChangingItsAppIdIsAChange)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "", 10, active);
    EXPECT_TRUE(tracker.appIdChanged(1, "codex"));
    EXPECT_EQ(tracker.activeWindow(), window("codex", 10));
    EXPECT_FALSE(tracker.appIdChanged(1, "codex")) << "the same again";
}

TEST(PlasmaWindowTracker, ChangesOfAWindowBehindAreNoChange)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 10, active);
    announce(tracker, 2, "org.kde.dolphin", 20, plain);
    EXPECT_FALSE(tracker.appIdChanged(2, "org.kde.konsole"));
    EXPECT_FALSE(tracker.pidChanged(2, 30));
    EXPECT_FALSE(tracker.resourceNameChanged(2, "konsole"));
    EXPECT_FALSE(tracker.stateChanged(2, ordinary));
}

TEST(PlasmaWindowTracker, TheActiveWindowUnmappedLeavesNothingInFront)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "org.kde.dolphin", 20, plain);
    announce(tracker, 2, "codex", 10, active);
    EXPECT_TRUE(tracker.unmapped(2));
    EXPECT_EQ(tracker.activeWindow(), std::nullopt);
    EXPECT_FALSE(tracker.unmapped(1));
}

TEST(PlasmaWindowTracker, AWindowUnmappedBeforeItsInitialStateIsForgotten)
{
    // KWin answers a request for a window that has just closed with "unmapped", then its initial state.
    PlasmaWindowTracker tracker;
    tracker.created(1);
    tracker.appIdChanged(1, "codex");
    tracker.stateChanged(1, active);
    EXPECT_FALSE(tracker.unmapped(1));
    EXPECT_FALSE(tracker.initialStateDone(1));
    EXPECT_EQ(tracker.activeWindow(), std::nullopt);
}

TEST(PlasmaWindowTracker, EventsForUnknownWindowsAreIgnored)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 10, active);
    EXPECT_FALSE(tracker.appIdChanged(9, "chatgpt"));
    EXPECT_FALSE(tracker.stateChanged(9, active));
    EXPECT_FALSE(tracker.pidChanged(9, 99));
    EXPECT_FALSE(tracker.resourceNameChanged(9, "x"));
    EXPECT_FALSE(tracker.initialStateDone(9));
    EXPECT_FALSE(tracker.unmapped(9));
    EXPECT_EQ(tracker.activeWindow(), window("codex", 10));
}

TEST(PlasmaWindowTracker, ClearingForgetsEveryWindow)
{
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 10, active);
    EXPECT_TRUE(tracker.clear());
    EXPECT_EQ(tracker.activeWindow(), std::nullopt);
    EXPECT_FALSE(tracker.clear());
}

TEST(PlasmaWindowTracker, AHandleAnnouncedAgainStartsAfresh)
{
    // The client reuses a freed proxy's address for a later window.
    PlasmaWindowTracker tracker;
    announce(tracker, 1, "codex", 10, active);
    tracker.unmapped(1);
    tracker.created(1);
    EXPECT_EQ(tracker.activeWindow(), std::nullopt);
    tracker.appIdChanged(1, "org.kde.dolphin");
    tracker.initialStateDone(1);
    EXPECT_EQ(tracker.activeWindow(), std::nullopt);
}

} // namespace
} // namespace vantrel
