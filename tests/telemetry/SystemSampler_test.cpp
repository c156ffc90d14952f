#include "Vantrel/telemetry/SampleJson.h"
#include "Vantrel/telemetry/SystemSampler.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/telemetry/FixtureTree.h"
#include <memory>

namespace vantrel {
namespace {

using testing::FixtureTree;

const std::string statBefore = "cpu  100 0 50 800 0 0 0 0 0 0\n"
                               "cpu0 50 0 25 400 0 0 0 0 0 0\n"
                               "cpu1 50 0 25 400 0 0 0 0 0 0\n"
                               "intr 1\n";
// Machine: 60 user + 40 system busy of 200; core 0: 30 busy of 100; core 1 did not move.
const std::string statAfter = "cpu  160 0 90 900 0 0 0 0 0 0\n"
                              "cpu0 80 0 25 470 0 0 0 0 0 0\n"
                              "cpu1 50 0 25 400 0 0 0 0 0 0\n"
                              "intr 1\n";

// A sampler on a fixture tree with a clock the test moves.
struct Sampling {
    FixtureTree tree;
    std::shared_ptr<double> clock = std::make_shared<double>(100.0);
    std::unique_ptr<SystemSampler> sampler;

    explicit Sampling(std::string_view fixture = "machine") : tree(fixture) { restart(); }

    void restart()
    {
        PlatformOptions options;
        options.root = tree.root();
        options.uptime = [clock = clock] { return *clock; };
        options.loadGpuDriverLibraries = false;
        sampler = std::make_unique<SystemSampler>(PlatformSource(options));
    }
};

TEST(SystemSampler, FirstCallHasNoLoadFiguresButMemory)
{
    Sampling sampling;
    const SampleRecord record = sampling.sampler->sample();
    EXPECT_FALSE(record.cpu.has_value());
    ASSERT_EQ(record.cpuCores.size(), 2U);
    EXPECT_FALSE(record.cpuCores[0].has_value());
    EXPECT_FALSE(record.cpuCores[1].has_value());
    EXPECT_FALSE(record.network.has_value());
    EXPECT_EQ(record.networkExplanation, "První vzorek: eth0, 1000 Mb/s.");
    // (2 000 000 active + 200 000 wired + 200 000 zswap) kB of 16 000 000 kB.
    ASSERT_TRUE(record.ram.has_value());
    EXPECT_DOUBLE_EQ(*record.ram, 15.0);
}

TEST(SystemSampler, SecondCallMeasuresTheInterval)
{
    Sampling sampling;
    sampling.tree.write("proc/stat", statBefore);
    sampling.sampler->sample();
    sampling.tree.write("proc/stat", statAfter);
    sampling.tree.write("sys/class/net/eth0/statistics/rx_bytes",
                        std::to_string(1'000'000 + 25'000'000) + "\n");
    *sampling.clock += 2.0;
    const SampleRecord record = sampling.sampler->sample();
    EXPECT_EQ(record.cpu, 50.0);
    ASSERT_EQ(record.cpuCores.size(), 2U);
    EXPECT_EQ(record.cpuCores[0], 30.0);
    EXPECT_EQ(record.cpuCores[1], 0.0);
    ASSERT_TRUE(record.network.has_value());
    EXPECT_DOUBLE_EQ(*record.network, 10.0);
    EXPECT_EQ(record.networkExplanation,
              "eth0: 1000 Mb/s. Vytížení = vyšší z příjmu a odesílání / rychlost linky; "
              "nejde o rychlost internetového tarifu.");
}

TEST(SystemSampler, IdenticalCountersGiveZeroNotAbsent)
{
    Sampling sampling;
    sampling.sampler->sample();
    *sampling.clock += 1.0;
    const SampleRecord record = sampling.sampler->sample();
    EXPECT_EQ(record.cpu, 0.0);
    EXPECT_EQ(record.cpuCores, (std::vector<std::optional<double>>{0.0, 0.0}));
    EXPECT_EQ(record.network, 0.0);
}

TEST(SystemSampler, UptimeAtConstructionIsTheFirstReference)
{
    Sampling sampling;
    // Constructed at 100 s; sampled in the same instant: no interval, so the first-sample text.
    sampling.sampler->sample();
    const SampleRecord sameInstant = sampling.sampler->sample();
    EXPECT_FALSE(sameInstant.network.has_value());
    EXPECT_EQ(sameInstant.networkExplanation, "První vzorek: eth0, 1000 Mb/s.");
}

TEST(SystemSampler, FailedTickReadKeepsTheHistory)
{
    Sampling sampling;
    sampling.tree.write("proc/stat", statBefore);
    sampling.sampler->sample();
    sampling.tree.write("proc/stat", "unreadable\n");
    const SampleRecord failed = sampling.sampler->sample();
    EXPECT_FALSE(failed.cpu.has_value());
    EXPECT_TRUE(failed.cpuCores.empty());
    sampling.tree.write("proc/stat", statAfter);
    const SampleRecord recovered = sampling.sampler->sample();
    EXPECT_EQ(recovered.cpu, 50.0);
    EXPECT_EQ(recovered.cpuCores[0], 30.0);
}

TEST(SystemSampler, ChangedCoreCountGivesOneAllAbsentRecordOfTheNewCount)
{
    Sampling sampling;
    sampling.sampler->sample();
    const std::string threeCores = "cpu  1 0 1 10 0 0 0 0 0 0\ncpu0 1 0 1 10 0 0 0 0 0 0\n"
                                   "cpu1 1 0 1 10 0 0 0 0 0 0\ncpu2 1 0 1 10 0 0 0 0 0 0\n";
    sampling.tree.write("proc/stat", threeCores);
    const SampleRecord changed = sampling.sampler->sample();
    EXPECT_EQ(changed.cpuCores, (std::vector<std::optional<double>>(3)));
    const SampleRecord next = sampling.sampler->sample();
    EXPECT_EQ(next.cpuCores, (std::vector<std::optional<double>>{0.0, 0.0, 0.0}));
}

TEST(SystemSampler, GpuIsTheBusiestCardAndAbsentWithoutOne)
{
    Sampling plain;
    EXPECT_FALSE(plain.sampler->sample().gpu.has_value());

    Sampling withCards;
    std::filesystem::copy(FixtureTree::source("drm-cards"), withCards.tree.root(),
                          std::filesystem::copy_options::recursive);
    withCards.restart();
    // 12 and 40 from cards; 150 is garbage; the connector entry and the render node are not cards.
    EXPECT_EQ(withCards.sampler->sample().gpu, 40.0);
}

TEST(SystemSampler, GpuCoreCountOnlyForExactlyOneAccelerator)
{
    Sampling none;
    EXPECT_FALSE(none.sampler->gpuCoreCount().has_value());

    Sampling one;
    std::filesystem::copy(FixtureTree::source("kfd-one-gpu"), one.tree.root(),
                          std::filesystem::copy_options::recursive);
    one.restart();
    EXPECT_EQ(one.sampler->gpuCoreCount(), 60);
    EXPECT_EQ(one.sampler->sample().gpuCoreCount, 60);

    Sampling two;
    std::filesystem::copy(FixtureTree::source("kfd-two-gpus"), two.tree.root(),
                          std::filesystem::copy_options::recursive);
    two.restart();
    EXPECT_FALSE(two.sampler->gpuCoreCount().has_value());
}

TEST(SystemSampler, EverythingMissingStillGivesTheEightKeys)
{
    Sampling nothing("");
    for (int call = 0; call < 2; ++call) {
        *nothing.clock += 2.0;
        const SampleRecord record = nothing.sampler->sample();
        EXPECT_FALSE(record.cpu || record.ram || record.gpu || record.network || record.gpuCoreCount);
        EXPECT_TRUE(record.cpuCores.empty());
        EXPECT_FALSE(record.gpuPerCoreAvailable);
        EXPECT_EQ(record.networkExplanation, "Rychlost aktivního síťového rozhraní není dostupná.");
        const auto json = nlohmann::json::parse(sampleRecordJson(record));
        std::vector<std::string> keys;
        for (const auto& [key, value] : json.items())
            keys.push_back(key);
        EXPECT_EQ(keys,
                  (std::vector<std::string>{"cpu", "cpuCores", "gpu", "gpuCoreCount", "gpuPerCoreAvailable",
                                            "network", "networkExplanation", "ram"}));
    }
}

TEST(SystemSampler, GpuPerCoreIsNeverAvailable)
{
    Sampling sampling;
    for (int call = 0; call < 3; ++call) {
        *sampling.clock += 1.0;
        EXPECT_FALSE(sampling.sampler->sample().gpuPerCoreAvailable);
    }
}

TEST(SystemSampler, Ipv6DefaultRouteWhenThereIsNoIpv4One)
{
    Sampling sampling("ipv6-only");
    EXPECT_EQ(sampling.sampler->sample().networkExplanation, "První vzorek: wlan0, 866 Mb/s.");
}

TEST(SystemSampler, InterfaceThatDisappearsAndComesBackStartsOver)
{
    Sampling sampling;
    const std::string routes = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n"
                               "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\n";
    sampling.sampler->sample();
    sampling.tree.write("proc/net/route", "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n");
    *sampling.clock += 1.0;
    const SampleRecord gone = sampling.sampler->sample();
    EXPECT_FALSE(gone.network.has_value());
    EXPECT_EQ(gone.networkExplanation, "Rychlost aktivního síťového rozhraní není dostupná.");
    sampling.tree.write("proc/net/route", routes);
    *sampling.clock += 1.0;
    const SampleRecord back = sampling.sampler->sample();
    EXPECT_FALSE(back.network.has_value());
    EXPECT_EQ(back.networkExplanation, "První vzorek: eth0, 1000 Mb/s.");
    *sampling.clock += 1.0;
    EXPECT_EQ(sampling.sampler->sample().network, 0.0);
}

TEST(SystemSampler, CountersThatWentBackGiveOneFirstSampleThenFigures)
{
    Sampling sampling;
    sampling.sampler->sample();
    sampling.tree.write("sys/class/net/eth0/statistics/rx_bytes", "10\n");
    *sampling.clock += 1.0;
    const SampleRecord reset = sampling.sampler->sample();
    EXPECT_FALSE(reset.network.has_value());
    EXPECT_EQ(reset.networkExplanation, "První vzorek: eth0, 1000 Mb/s.");
    sampling.tree.write("sys/class/net/eth0/statistics/rx_bytes", "125000010\n");
    *sampling.clock += 1.0;
    EXPECT_EQ(sampling.sampler->sample().network, 100.0);
}

} // namespace
} // namespace vantrel
