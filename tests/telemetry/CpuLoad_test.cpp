#include "Vantrel/telemetry/CpuLoad.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

TEST(CpuLoad, DeltaWrapsAroundLikeAnUnsigned32BitCounter)
{
    const auto delta = tickDelta({5, 0, 0, 0}, {4294967290U, 0, 0, 0});
    EXPECT_EQ(delta[0], 11.0);
}

TEST(CpuLoad, BackwardsCounterGivesAHugeDelta)
{
    const auto delta = tickDelta({0, 0, 10, 0}, {0, 0, 11, 0});
    EXPECT_EQ(delta[2], 4294967295.0);
}

TEST(CpuLoad, LoadIsBusyShareWithNiceCountingAsBusy)
{
    struct Case {
        TickVector previous, current;
        double load;
    };
    const std::vector<Case> cases{
        {{100, 50, 800, 50}, {160, 80, 900, 60}, 50.0}, // deltas 60, 30, 100, 10 over 200
        {{0, 0, 0, 0}, {0, 0, 0, 10}, 100.0},           // nice only
        {{0, 0, 0, 0}, {0, 0, 10, 0}, 0.0},             // idle only
        {{7, 7, 7, 7}, {7, 7, 7, 7}, 0.0},              // nothing moved
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(loadOf(tickDelta(c.current, c.previous)), c.load);
}

TEST(CpuLoad, CoresWithoutHistoryAreAllAbsent)
{
    const std::vector<TickVector> eight(8, TickVector{1, 2, 3, 4});
    const auto loads = coreLoads(eight, std::nullopt);
    ASSERT_EQ(loads.size(), 8U);
    for (const auto& load : loads)
        EXPECT_FALSE(load.has_value());
}

TEST(CpuLoad, CoresAgainstHistoryAreNumbersAndAStillCoreIsZero)
{
    const std::vector<TickVector> previous{{100, 50, 800, 50}, {1, 1, 1, 1}};
    const std::vector<TickVector> current{{160, 80, 900, 60}, {1, 1, 1, 1}};
    const auto loads = coreLoads(current, previous);
    ASSERT_EQ(loads.size(), 2U);
    EXPECT_EQ(loads[0], 50.0);
    EXPECT_EQ(loads[1], 0.0);
}

TEST(CpuLoad, ChangedCoreCountGivesAllAbsentOfTheNewCount)
{
    const std::vector<TickVector> four(4, TickVector{1, 1, 1, 1});
    const std::vector<TickVector> six(6, TickVector{2, 2, 2, 2});
    const auto loads = coreLoads(six, four);
    ASSERT_EQ(loads.size(), 6U);
    for (const auto& load : loads)
        EXPECT_FALSE(load.has_value());
}

} // namespace
} // namespace vantrel
