#include "Vantrel/telemetry/linux/GpuSysfs.h"

#include <gtest/gtest.h>

#include "tests/telemetry/FixtureTree.h"

namespace vantrel::linux_source {
namespace {

using vantrel::testing::FixtureTree;

std::string drmClass(const std::filesystem::path& root)
{
    return (root / "sys/class/drm").string();
}

std::string topologyNodes(const std::filesystem::path& root)
{
    return (root / "sys/class/kfd/kfd/topology/nodes").string();
}

TEST(GpuSysfs, EveryCardInOrderButNoConnectorOrRenderNode)
{
    EXPECT_EQ(drmBusyPercents(drmClass(FixtureTree::source("drm-cards"))),
              (std::vector<double>{12, 40, 150}));
}

TEST(GpuSysfs, UnreadableNumbersAreSkippedAndRangeIsLeftToTheRules)
{
    EXPECT_EQ(drmBusyPercents(drmClass(FixtureTree::source("drm-garbage"))), (std::vector<double>{-1}));
}

TEST(GpuSysfs, CardsAreOrderedByNumber)
{
    FixtureTree tree;
    tree.write("sys/class/drm/card10/device/gpu_busy_percent", "10\n");
    tree.write("sys/class/drm/card2/device/gpu_busy_percent", "2\n");
    EXPECT_EQ(drmBusyPercents(drmClass(tree.root())), (std::vector<double>{2, 10}));
}

TEST(GpuSysfs, NoDrmIsNoReading)
{
    EXPECT_TRUE(drmBusyPercents(drmClass(FixtureTree::source("machine"))).empty());
    EXPECT_TRUE(drmBusyPercents(drmClass("/nonexistent-vantrel-root")).empty());
}

TEST(GpuSysfs, ComputeUnitsPerGpuNode)
{
    EXPECT_EQ(amdComputeUnits(topologyNodes(FixtureTree::source("kfd-one-gpu"))),
              (std::vector<std::int64_t>{60}));
    EXPECT_EQ(amdComputeUnits(topologyNodes(FixtureTree::source("kfd-two-gpus"))),
              (std::vector<std::int64_t>{10, 16}));
    EXPECT_TRUE(amdComputeUnits(topologyNodes(FixtureTree::source("machine"))).empty());
}

TEST(GpuSysfs, NodeWithoutSimdsPerUnitReportsNothing)
{
    FixtureTree tree;
    tree.write("sys/class/kfd/kfd/topology/nodes/1/properties", "simd_count 40\nsimd_per_cu 0\n");
    tree.write("sys/class/kfd/kfd/topology/nodes/2/properties", "simd_count 40\n");
    EXPECT_TRUE(amdComputeUnits(topologyNodes(tree.root())).empty());
}

} // namespace
} // namespace vantrel::linux_source
