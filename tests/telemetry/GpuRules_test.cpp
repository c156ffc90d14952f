#include "Vantrel/telemetry/GpuRules.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace vantrel {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(GpuRules, GarbageReadingsContributeNothing)
{
    for (const double garbage : {150.0, -1.0, nan, infinity, -infinity, 100.5}) {
        const std::vector<double> only{garbage};
        EXPECT_FALSE(busiestUtilisation(only).has_value()) << garbage;
        const std::vector<double> withGood{garbage, 30.0};
        EXPECT_EQ(busiestUtilisation(withGood), 30.0) << garbage;
    }
}

TEST(GpuRules, TheBusiestAcceleratorIsShown)
{
    const std::vector<double> readings{12.0, 40.0};
    EXPECT_EQ(busiestUtilisation(readings), 40.0);
    const std::vector<double> reversed{40.0, 12.0};
    EXPECT_EQ(busiestUtilisation(reversed), 40.0);
}

TEST(GpuRules, BoundsAreReadings)
{
    const std::vector<double> bounds{0.0, 100.0};
    EXPECT_EQ(busiestUtilisation(bounds), 100.0);
    const std::vector<double> zero{0.0};
    EXPECT_EQ(busiestUtilisation(zero), 0.0);
}

TEST(GpuRules, OfEqualMaximaTheFirstIsKept)
{
    // −0 and +0 compare equal but can be told apart by their sign.
    const std::vector<double> negativeFirst{-0.0, 0.0};
    EXPECT_TRUE(std::signbit(*busiestUtilisation(negativeFirst)));
    const std::vector<double> positiveFirst{0.0, -0.0};
    EXPECT_FALSE(std::signbit(*busiestUtilisation(positiveFirst)));
}

TEST(GpuRules, NoReadingsIsAbsent)
{
    EXPECT_FALSE(busiestUtilisation({}).has_value());
}

TEST(GpuRules, CoreCountOutsideOneTo256IsIgnored)
{
    struct Case {
        std::vector<std::int64_t> counts;
        std::optional<std::int64_t> expected;
    };
    const std::vector<Case> cases{
        {{0}, std::nullopt},
        {{257}, std::nullopt},
        {{256}, 256},
        {{1}, 1},
        {{-5}, std::nullopt},
        {{0, 10}, 10},
        {{257, 16, 0}, 16},
        {{}, std::nullopt},
        {{10, 16}, std::nullopt},
        {{10, 10}, std::nullopt},
        {{10, 300, 16}, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(singleCoreCount(c.counts), c.expected) << ::testing::PrintToString(c.counts);
}

} // namespace
} // namespace vantrel
