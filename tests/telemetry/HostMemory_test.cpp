#include "Vantrel/telemetry/HostMemory.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

TEST(HostMemory, ActiveWiredAndCompressedPagesOfTheKernelsPageSize)
{
    const VmStatisticsReply reply{true, 100'000, 50'000, 50'000};
    const auto counts = memoryCountsFrom(reply, 16'384, 17'179'869'184ULL);
    ASSERT_TRUE(counts.has_value());
    EXPECT_EQ(counts->active, 100'000U);
    EXPECT_EQ(counts->wired, 50'000U);
    EXPECT_EQ(counts->compressed, 50'000U);
    EXPECT_EQ(counts->unitBytes, 16'384U);
    EXPECT_EQ(counts->totalBytes, 17'179'869'184U);
    EXPECT_EQ(ramPercent(*counts), 19.073486328125);
}

TEST(HostMemory, FullCountsDoNotOverflow)
{
    constexpr std::uint32_t most = 0xFFFF'FFFFU;
    const auto counts = memoryCountsFrom({true, most, most, most}, 16'384, 1ULL << 40);
    ASSERT_TRUE(counts.has_value());
    EXPECT_DOUBLE_EQ(*ramPercent(*counts), 3.0 * most * 16'384 / (1ULL << 40) * 100);
}

TEST(HostMemory, AFailedReadIsAbsent)
{
    struct Case {
        VmStatisticsReply reply;
        std::optional<std::uint64_t> physicalMemory;
        const char* what;
    };
    const std::vector<Case> cases{
        {{false, 1, 1, 1}, 17'179'869'184ULL, "host_statistics64 failed"},
        {{true, 1, 1, 1}, std::nullopt, "hw.memsize failed"},
    };
    for (const auto& c : cases)
        EXPECT_FALSE(memoryCountsFrom(c.reply, 16'384, c.physicalMemory).has_value()) << c.what;
}

TEST(HostMemory, NoPhysicalMemoryGivesNoFigure)
{
    const auto counts = memoryCountsFrom({true, 1, 1, 1}, 16'384, 0);
    ASSERT_TRUE(counts.has_value());
    EXPECT_FALSE(ramPercent(*counts).has_value());
}

} // namespace
} // namespace vantrel
