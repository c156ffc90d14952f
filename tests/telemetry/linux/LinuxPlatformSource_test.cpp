#include "Vantrel/telemetry/PlatformSource.h"

#include <gtest/gtest.h>

#include "tests/telemetry/FixtureTree.h"

namespace vantrel {
namespace {

using testing::FixtureTree;

PlatformSource sourceAt(const std::filesystem::path& root)
{
    PlatformOptions options;
    options.root = root;
    options.uptime = [] { return 42.5; };
    options.loadGpuDriverLibraries = false;
    return PlatformSource(options);
}

TEST(LinuxPlatformSource, ReadsTheMachineFixture)
{
    PlatformSource source = sourceAt(FixtureTree::source("machine"));
    const CpuTicks ticks = source.cpuTicks();
    EXPECT_EQ(ticks.machine, (TickVector{4074, 4101 + 139, 43441 + 366, 0}));
    ASSERT_TRUE(ticks.cores.has_value());
    EXPECT_EQ(ticks.cores->size(), 2U);
    const auto memory = source.memory();
    ASSERT_TRUE(memory.has_value());
    EXPECT_EQ(memory->totalBytes, 16'000'000ULL * 1024);
    const auto link = source.primaryInterface();
    ASSERT_TRUE(link.has_value());
    EXPECT_EQ(link->name, "eth0");
    EXPECT_EQ(link->received, 1'000'000U);
    EXPECT_EQ(link->sent, 500'000U);
    EXPECT_EQ(link->speed, 1'000'000'000U);
    EXPECT_EQ(source.uptimeSeconds(), 42.5);
    EXPECT_TRUE(source.gpuUtilisations().empty());
    EXPECT_TRUE(source.gpuCoreCounts().empty());
}

TEST(LinuxPlatformSource, UnknownLinkSpeedIsZero)
{
    for (const char* fixture : {"speed-negative", "speed-zero", "speed-missing", "speed-garbage"}) {
        PlatformSource source = sourceAt(FixtureTree::source(fixture));
        const auto link = source.primaryInterface();
        ASSERT_TRUE(link.has_value()) << fixture;
        EXPECT_EQ(link->speed, 0U) << fixture;
        EXPECT_EQ(link->received, 1'000'000U) << fixture;
    }
}

TEST(LinuxPlatformSource, MissingFilesAreAbsentNotZero)
{
    EXPECT_FALSE(sourceAt(FixtureTree::source("statistics-missing")).primaryInterface().has_value());
    EXPECT_FALSE(sourceAt(FixtureTree::source("no-default-route")).primaryInterface().has_value());
    PlatformSource empty = sourceAt("/nonexistent-vantrel-root");
    EXPECT_FALSE(empty.cpuTicks().machine.has_value());
    EXPECT_FALSE(empty.cpuTicks().cores.has_value());
    EXPECT_FALSE(empty.memory().has_value());
    EXPECT_FALSE(empty.primaryInterface().has_value());
}

TEST(LinuxPlatformSource, MemoryTotalMustBeThere)
{
    EXPECT_FALSE(sourceAt(FixtureTree::source("meminfo-zero-total")).memory().has_value());
    EXPECT_FALSE(sourceAt(FixtureTree::source("meminfo-no-total")).memory().has_value());
    const auto noZswap = sourceAt(FixtureTree::source("meminfo-no-zswap")).memory();
    ASSERT_TRUE(noZswap.has_value());
    EXPECT_EQ(noZswap->compressed, 0U);
}

TEST(LinuxPlatformSource, PrimaryInterfaceFollowsTheDefaultRoute)
{
    FixtureTree tree("machine");
    PlatformSource source = sourceAt(tree.root());
    EXPECT_EQ(source.primaryInterface()->name, "eth0");
    tree.write("sys/class/net/wlan0/statistics/rx_bytes", "7\n");
    tree.write("sys/class/net/wlan0/statistics/tx_bytes", "8\n");
    tree.write("sys/class/net/wlan0/speed", "300\n");
    tree.write("proc/net/route", "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n"
                                 "wlan0\t00000000\t0100A8C0\t0003\t0\t0\t600\t00000000\n");
    const auto link = source.primaryInterface();
    ASSERT_TRUE(link.has_value());
    EXPECT_EQ(link->name, "wlan0");
    EXPECT_EQ(link->received, 7U);
    EXPECT_EQ(link->speed, 300'000'000U);
}

TEST(LinuxPlatformSource, Ipv6RouteWhenNoIpv4Default)
{
    const auto link = sourceAt(FixtureTree::source("ipv6-only")).primaryInterface();
    ASSERT_TRUE(link.has_value());
    EXPECT_EQ(link->name, "wlan0");
    EXPECT_EQ(link->speed, 866'000'000U);
}

TEST(LinuxPlatformSource, GpuReadingsFromSysfs)
{
    EXPECT_EQ(sourceAt(FixtureTree::source("drm-cards")).gpuUtilisations(),
              (std::vector<double>{12, 40, 150}));
    EXPECT_EQ(sourceAt(FixtureTree::source("kfd-one-gpu")).gpuCoreCounts(), (std::vector<std::int64_t>{60}));
}

TEST(LinuxPlatformSource, SystemClockIsMonotonicSeconds)
{
    PlatformOptions options;
    options.loadGpuDriverLibraries = false;
    PlatformSource source(options);
    const double first = source.uptimeSeconds();
    EXPECT_GT(first, 0.0);
    EXPECT_GE(source.uptimeSeconds(), first);
}

TEST(LinuxPlatformSource, ThisMachineReadsWithoutCrashing)
{
    PlatformSource source;
    EXPECT_TRUE(source.cpuTicks().machine.has_value());
    EXPECT_TRUE(source.memory().has_value());
    source.gpuUtilisations();
    source.gpuCoreCounts();
    source.primaryInterface();
}

} // namespace
} // namespace vantrel
