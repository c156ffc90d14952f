#include "Vantrel/telemetry/HostCpuLoad.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace vantrel {
namespace {

// The kernel's PROCESSOR_CPU_LOAD_INFO array: four integer_t per processor, in CPU_STATE order (user, system,
// idle, nice).
std::vector<std::int32_t> loadInfoArray(const std::vector<TickVector>& processors)
{
    std::vector<std::int32_t> integers;
    for (const TickVector& ticks : processors)
        for (const std::uint32_t tick : ticks)
            integers.push_back(static_cast<std::int32_t>(tick));
    return integers;
}

ProcessorLoadReply replyOf(std::uint32_t processorCount, const std::vector<std::int32_t>& array)
{
    return {true, processorCount, array.data(), array.size()};
}

TEST(HostCpuLoad, MachineTicksAreTheFourCountersOfASuccessfulCall)
{
    const HostCpuLoadReply reply{true, 4, {160, 80, 900, 60}};
    EXPECT_EQ(machineTicksFrom(reply), (TickVector{160, 80, 900, 60}));
}

TEST(HostCpuLoad, MachineTicksOfAFailedOrShortCallAreAbsent)
{
    struct Case {
        HostCpuLoadReply reply;
        const char* what;
    };
    const std::vector<Case> cases{
        {{false, 4, {1, 2, 3, 4}}, "failed"},
        {{true, 3, {1, 2, 3, 4}}, "three counters"},
        {{true, 0, {}}, "no counters"},
    };
    for (const auto& c : cases)
        EXPECT_FALSE(machineTicksFrom(c.reply).has_value()) << c.what;
}

TEST(HostCpuLoad, CoreTicksFollowTheKernelsProcessorOrder)
{
    const std::vector<TickVector> processors{{100, 50, 800, 50}, {1, 2, 3, 4}, {9, 8, 7, 6}};
    const auto array = loadInfoArray(processors);
    EXPECT_EQ(coreTicksFrom(replyOf(3, array)), processors);
}

TEST(HostCpuLoad, CountersAboveTheSignedRangeStayUnsigned)
{
    const std::vector<std::int32_t> array{-6, 0, -1, 2147483647};
    EXPECT_EQ(coreTicksFrom(replyOf(1, array)),
              (std::vector<TickVector>{{4294967290U, 0, 4294967295U, 2147483647U}}));
}

TEST(HostCpuLoad, AnArrayLongerThanNeededIsReadForTheReportedProcessorsOnly)
{
    const std::vector<std::int32_t> array{1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(coreTicksFrom(replyOf(2, array)), (std::vector<TickVector>{{1, 2, 3, 4}, {5, 6, 7, 8}}));
}

TEST(HostCpuLoad, CoreTicksOfAFailedCallNoArrayOrAShortArrayAreAbsent)
{
    const std::vector<std::int32_t> eightCores(32, 1);
    const std::vector<std::int32_t> oneShort(31, 1);
    struct Case {
        ProcessorLoadReply reply;
        const char* what;
    };
    const std::vector<Case> cases{
        {{false, 8, eightCores.data(), eightCores.size()}, "failed"},
        {{true, 8, nullptr, 32}, "no array"},
        {{true, 8, oneShort.data(), oneShort.size()}, "31 integers for 8 processors"},
        {{true, 1, eightCores.data(), 0}, "empty array"},
        // A count whose product with 4 wraps in 32 bits must still need more than the array holds.
        {{true, 0x4000'0000U, eightCores.data(), eightCores.size()}, "2^30 processors"},
        {{true, 0xFFFF'FFFFU, eightCores.data(), eightCores.size()}, "2^32 − 1 processors"},
    };
    for (const auto& c : cases)
        EXPECT_FALSE(coreTicksFrom(c.reply).has_value()) << c.what;
}

TEST(HostCpuLoad, NoProcessorsIsAnEmptyList)
{
    const std::vector<std::int32_t> array{1, 2, 3, 4};
    const auto cores = coreTicksFrom(replyOf(0, array));
    ASSERT_TRUE(cores.has_value());
    EXPECT_TRUE(cores->empty());
}

TEST(HostCpuLoad, EightCoresGiveAbsentLoadsFirstThenNumbers)
{
    const std::vector<TickVector> before(8, TickVector{100, 50, 800, 50});
    const std::vector<TickVector> after(8, TickVector{160, 80, 900, 60});
    const auto first = coreTicksFrom(replyOf(8, loadInfoArray(before)));
    ASSERT_TRUE(first.has_value());
    const auto firstLoads = coreLoads(*first, std::nullopt);
    ASSERT_EQ(firstLoads.size(), 8U);
    for (const auto& load : firstLoads)
        EXPECT_FALSE(load.has_value());

    const auto second = coreTicksFrom(replyOf(8, loadInfoArray(after)));
    ASSERT_TRUE(second.has_value());
    const auto secondLoads = coreLoads(*second, first);
    ASSERT_EQ(secondLoads.size(), 8U);
    for (const auto& load : secondLoads)
        EXPECT_EQ(load, 50.0);
}

} // namespace
} // namespace vantrel
