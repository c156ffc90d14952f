#include "Vantrel/telemetry/AcceleratorProperties.h"
#include "Vantrel/telemetry/GpuRules.h"

#include <gtest/gtest.h>

#include "tests/telemetry/Properties.h"
#include <limits>
#include <vector>

namespace vantrel {
namespace {

using namespace testing;

PropertyValue statisticsWith(PropertyValue utilisation)
{
    return dictionary({{"Tiler Utilization %", integer(5)}, {deviceUtilisationKey, std::move(utilisation)}});
}

// What the sampler does with the accelerators' "PerformanceStatistics": read each, keep the readings, show
// the busiest plausible one.
std::optional<double> gpuOf(const std::vector<PropertyValue>& accelerators)
{
    std::vector<double> readings;
    for (const PropertyValue& statistics : accelerators)
        if (const auto reading = acceleratorUtilisation(statistics))
            readings.push_back(*reading);
    return busiestUtilisation(readings);
}

std::optional<std::int64_t> coreCountOf(const std::vector<PropertyValue>& accelerators)
{
    std::vector<std::int64_t> counts;
    for (const PropertyValue& property : accelerators)
        if (const auto count = acceleratorCoreCount(property))
            counts.push_back(*count);
    return singleCoreCount(counts);
}

TEST(AcceleratorProperties, UtilisationIsTheNumberUnderDeviceUtilization)
{
    EXPECT_EQ(acceleratorUtilisation(statisticsWith(integer(37))), 37.0);
    EXPECT_EQ(acceleratorUtilisation(statisticsWith(real(37.5))), 37.5);
    // Unfiltered here: the range rule belongs to the maximum.
    EXPECT_EQ(acceleratorUtilisation(statisticsWith(integer(150))), 150.0);
}

TEST(AcceleratorProperties, StatisticsWithoutAReadableUtilisationGiveNone)
{
    struct Case {
        PropertyValue statistics;
        const char* what;
    };
    const std::vector<Case> cases{
        {absent(), "no PerformanceStatistics"},
        {text("busy"), "PerformanceStatistics holding text"},
        {integer(40), "PerformanceStatistics holding a number"},
        {otherKind(), "PerformanceStatistics of another kind"},
        {dictionary({{"Renderer Utilization %", integer(40)}}), "no Device Utilization %"},
        {statisticsWith(text("40")), "Device Utilization % holding text"},
        {statisticsWith(otherKind()), "Device Utilization % of another kind"},
        {statisticsWith(dictionary({})), "Device Utilization % holding a dictionary"},
        {withOtherKey(statisticsWith(integer(40)), integer(3)), "a key that is not text"},
    };
    for (const auto& c : cases)
        EXPECT_FALSE(acceleratorUtilisation(c.statistics).has_value()) << c.what;
}

TEST(AcceleratorProperties, GarbageUtilisationContributesNothing)
{
    for (const PropertyValue& garbage :
         {integer(150), integer(-1), real(std::numeric_limits<double>::quiet_NaN()),
          real(std::numeric_limits<double>::infinity())}) {
        EXPECT_FALSE(gpuOf({statisticsWith(garbage)}).has_value());
        EXPECT_EQ(gpuOf({statisticsWith(garbage), statisticsWith(integer(30))}), 30.0);
    }
}

TEST(AcceleratorProperties, TheBusiestOfTwoAcceleratorsIsShown)
{
    EXPECT_EQ(gpuOf({statisticsWith(integer(12)), statisticsWith(integer(40))}), 40.0);
}

TEST(AcceleratorProperties, AcceleratorsWithoutStatisticsAreIgnored)
{
    EXPECT_EQ(gpuOf({absent(), text("busy"), statisticsWith(integer(12))}), 12.0);
    EXPECT_FALSE(gpuOf({absent(), text("busy")}).has_value());
    EXPECT_FALSE(gpuOf({}).has_value());
}

TEST(AcceleratorProperties, CoreCountIsTheIntegerValueOfANumber)
{
    EXPECT_EQ(acceleratorCoreCount(integer(10)), 10);
    EXPECT_EQ(acceleratorCoreCount(real(16.0)), 16);
    EXPECT_FALSE(acceleratorCoreCount(absent()).has_value());
    EXPECT_FALSE(acceleratorCoreCount(text("10")).has_value());
    EXPECT_FALSE(acceleratorCoreCount(otherKind()).has_value());
    EXPECT_FALSE(acceleratorCoreCount(dictionary({{"count", integer(10)}})).has_value());
}

TEST(AcceleratorProperties, CoreCountOnlyFromExactlyOnePlausibleAccelerator)
{
    struct Case {
        std::vector<PropertyValue> accelerators;
        std::optional<std::int64_t> expected;
        const char* what;
    };
    const std::vector<Case> cases{
        {{integer(0)}, std::nullopt, "0"},
        {{integer(257)}, std::nullopt, "257"},
        {{integer(256)}, 256, "256"},
        {{integer(10), integer(16)}, std::nullopt, "two accelerators counting"},
        {{integer(10), absent()}, 10, "one accelerator without a count"},
        {{text("10"), integer(16)}, 16, "one count as text"},
        {{integer(0), integer(16)}, 16, "one implausible count"},
        {{}, std::nullopt, "no accelerator"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(coreCountOf(c.accelerators), c.expected) << c.what;
}

} // namespace
} // namespace vantrel
