#include "Vantrel/telemetry/MemoryUse.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(MemoryUse, ActiveWiredAndCompressedPagesOverPhysicalMemory)
{
    const MemoryCounts pages{100'000, 50'000, 50'000, 16'384, 17'179'869'184};
    EXPECT_EQ(ramPercent(pages), 19.073486328125);
}

TEST(MemoryUse, KilobyteCountsGiveTheSameShare)
{
    const MemoryCounts kilobytes{2'000'000, 200'000, 200'000, 1024, 16'000'000ULL * 1024};
    EXPECT_DOUBLE_EQ(*ramPercent(kilobytes), 15.0);
}

TEST(MemoryUse, EachPartMovesTheFigure)
{
    EXPECT_EQ(ramPercent({1, 0, 0, 1, 100}), 1.0);
    EXPECT_EQ(ramPercent({0, 1, 0, 1, 100}), 1.0);
    EXPECT_EQ(ramPercent({0, 0, 1, 1, 100}), 1.0);
}

TEST(MemoryUse, IsNotClamped)
{
    EXPECT_EQ(ramPercent({300, 0, 0, 1, 100}), 300.0);
}

TEST(MemoryUse, NoPhysicalMemoryIsAbsent)
{
    EXPECT_FALSE(ramPercent({1, 1, 1, 4096, 0}).has_value());
}

} // namespace
} // namespace vantrel
