#include "Vantrel/telemetry/linux/Nvml.h"

#include <gtest/gtest.h>

namespace vantrel::linux_source {
namespace {

TEST(Nvml, MultiprocessorsFollowTheCoresOfEachComputeCapability)
{
    EXPECT_EQ(multiprocessorsFromCores(16896, 9, 0), 132);  // H100 SXM
    EXPECT_EQ(multiprocessorsFromCores(16384, 8, 9), 128);  // RTX 4090
    EXPECT_EQ(multiprocessorsFromCores(8704, 8, 6), 68);    // RTX 3080
    EXPECT_EQ(multiprocessorsFromCores(6912, 8, 0), 108);   // A100: 64 cores each
    EXPECT_EQ(multiprocessorsFromCores(2560, 7, 5), 40);    // T4
    EXPECT_EQ(multiprocessorsFromCores(5120, 7, 0), 80);    // V100
    EXPECT_EQ(multiprocessorsFromCores(3584, 6, 0), 56);    // P100
    EXPECT_EQ(multiprocessorsFromCores(2560, 6, 1), 20);    // GTX 1080
    EXPECT_EQ(multiprocessorsFromCores(2048, 5, 2), 16);    // GTX 980
    EXPECT_EQ(multiprocessorsFromCores(2496, 3, 7), 13);    // one GPU of a K80
    EXPECT_EQ(multiprocessorsFromCores(21760, 12, 0), 170); // RTX 5090
}

TEST(Nvml, AnUnknownCapabilityOrACountThatDoesNotDivideGivesNothing)
{
    EXPECT_EQ(multiprocessorsFromCores(16896, 2, 0), std::nullopt);
    EXPECT_EQ(multiprocessorsFromCores(16896, 9, 9), std::nullopt);
    EXPECT_EQ(multiprocessorsFromCores(16896, -1, 0), std::nullopt);
    EXPECT_EQ(multiprocessorsFromCores(100, 9, 0), std::nullopt);
    EXPECT_EQ(multiprocessorsFromCores(0, 9, 0), std::nullopt);
}

} // namespace
} // namespace vantrel::linux_source
