#include "Vantrel/telemetry/SystemSampler.h"

#include <gtest/gtest.h>

#include "tests/telemetry/FixtureTree.h"
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace vantrel {
namespace {

using vantrel::testing::FixtureTree;

const std::filesystem::path faults = std::filesystem::path(VANTREL_FIXTURES) / "faults";
constexpr const char* unavailable = "Rychlost aktivního síťového rozhraní není dostupná.";
constexpr const char* noCapacity = "eth0: systém neudává kapacitu linky. Procento nelze určit.";

// A sampler on a writable copy of the machine fixture, with a clock that moves 2 s per sample.
struct Machine {
    FixtureTree tree{"machine"};
    std::shared_ptr<double> clock = std::make_shared<double>(100.0);
    SystemSampler sampler{platform()};

    PlatformSource platform() const
    {
        PlatformOptions options;
        options.root = tree.root();
        options.uptime = [clock = clock] { return *clock; };
        options.loadGpuDriverLibraries = false;
        return PlatformSource(options);
    }

    SampleRecord sample()
    {
        *clock += 2;
        return sampler.sample();
    }

    // Puts the faulty file of `kind` in place of the real one; "vanished" removes it.
    void breakFile(const std::string& kind, const std::string& file) const
    {
        if (kind == "vanished") {
            tree.remove(file);
            return;
        }
        std::filesystem::copy_file(faults / kind / file, tree.root() / file,
                                   std::filesystem::copy_options::overwrite_existing);
    }

    void restoreFile(const std::string& file) const
    {
        std::filesystem::copy_file(FixtureTree::source("machine") / file, tree.root() / file,
                                   std::filesystem::copy_options::overwrite_existing);
    }
};

// What the record shows while one kernel file is broken.
enum class Shows {
    CpuButNoCores,  // the machine line is whole, a core line is not
    NoCpuNoCores,   // nothing of /proc/stat can be used
    NoRam,          // /proc/meminfo cannot be used
    NoInterface,    // no primary interface: the unavailable text
    NoLinkCapacity, // counters fine, speed unknown
};

struct ReaderFault {
    const char* kind;
    const char* file;
    Shows shows;
};

void PrintTo(const ReaderFault& fault, std::ostream* out)
{
    *out << fault.kind << " " << fault.file;
}

class ReaderFaults : public ::testing::TestWithParam<ReaderFault> {};

TEST_P(ReaderFaults, TheFigureIsAbsentNeverWrongAndComesBackWithTheFile)
{
    const ReaderFault fault = GetParam();
    Machine machine;
    // A file deleted on disk stays readable through a descriptor already open, unlike one under /sys, so a
    // vanished file is shown gone before its first read; the others break between two good samples.
    const bool vanished = std::string_view(fault.kind) == "vanished";
    if (vanished) {
        machine.breakFile(fault.kind, fault.file);
    }
    machine.sample();
    if (!vanished) {
        machine.breakFile(fault.kind, fault.file);
    }
    const SampleRecord broken = machine.sample();

    switch (fault.shows) {
    case Shows::CpuButNoCores:
        EXPECT_EQ(broken.cpu, 0.0);
        EXPECT_TRUE(broken.cpuCores.empty());
        break;
    case Shows::NoCpuNoCores:
        EXPECT_EQ(broken.cpu, std::nullopt);
        EXPECT_TRUE(broken.cpuCores.empty());
        break;
    case Shows::NoRam:
        EXPECT_EQ(broken.ram, std::nullopt);
        break;
    case Shows::NoInterface:
        EXPECT_EQ(broken.network, std::nullopt);
        EXPECT_EQ(broken.networkExplanation, unavailable);
        break;
    case Shows::NoLinkCapacity:
        EXPECT_EQ(broken.network, std::nullopt);
        EXPECT_EQ(broken.networkExplanation, noCapacity);
        break;
    }
    // The other figures are untouched by a fault that is not theirs.
    if (fault.shows != Shows::NoRam) {
        EXPECT_EQ(broken.ram, 15.0);
    }
    if (fault.shows != Shows::NoCpuNoCores && fault.shows != Shows::CpuButNoCores) {
        EXPECT_EQ(broken.cpuCores, (std::vector<std::optional<double>>{0.0, 0.0}));
    }

    machine.restoreFile(fault.file);
    machine.sample();
    const SampleRecord recovered = machine.sample();
    EXPECT_EQ(recovered.cpu, 0.0);
    EXPECT_EQ(recovered.cpuCores, (std::vector<std::optional<double>>{0.0, 0.0}));
    EXPECT_EQ(recovered.ram, 15.0);
    EXPECT_EQ(recovered.network, 0.0);
}

constexpr const char* stat = "proc/stat";
constexpr const char* meminfo = "proc/meminfo";
constexpr const char* route = "proc/net/route";
constexpr const char* received = "sys/class/net/eth0/statistics/rx_bytes";
constexpr const char* speed = "sys/class/net/eth0/speed";

INSTANTIATE_TEST_SUITE_P(Kernel, ReaderFaults,
                         ::testing::Values(ReaderFault{"vanished", stat, Shows::NoCpuNoCores},
                                           ReaderFault{"empty", stat, Shows::NoCpuNoCores},
                                           ReaderFault{"truncated", stat, Shows::CpuButNoCores},
                                           ReaderFault{"beyond-64-bits", stat, Shows::CpuButNoCores},
                                           ReaderFault{"vanished", meminfo, Shows::NoRam},
                                           ReaderFault{"empty", meminfo, Shows::NoRam},
                                           ReaderFault{"truncated", meminfo, Shows::NoRam},
                                           ReaderFault{"beyond-64-bits", meminfo, Shows::NoRam},
                                           ReaderFault{"sums-beyond-64-bits", meminfo, Shows::NoRam},
                                           ReaderFault{"vanished", route, Shows::NoInterface},
                                           ReaderFault{"empty", route, Shows::NoInterface},
                                           ReaderFault{"truncated", route, Shows::NoInterface},
                                           ReaderFault{"beyond-64-bits", route, Shows::NoInterface},
                                           ReaderFault{"vanished", received, Shows::NoInterface},
                                           ReaderFault{"empty", received, Shows::NoInterface},
                                           ReaderFault{"beyond-64-bits", received, Shows::NoInterface},
                                           ReaderFault{"vanished", speed, Shows::NoLinkCapacity},
                                           ReaderFault{"empty", speed, Shows::NoLinkCapacity},
                                           ReaderFault{"beyond-64-bits", speed, Shows::NoLinkCapacity}));

TEST(ReaderFaults, CoreCountChangesGiveOneAllAbsentSampleOfTheNewCountEachWay)
{
    Machine machine;
    machine.sample();
    std::filesystem::copy_file(FixtureTree::source("stat-128-cores") / stat, machine.tree.root() / stat,
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(machine.sample().cpuCores, std::vector<std::optional<double>>(128));
    const SampleRecord grown = machine.sample();
    ASSERT_EQ(grown.cpuCores.size(), 128U);
    EXPECT_EQ(grown.cpuCores.back(), 0.0);

    machine.restoreFile(stat);
    EXPECT_EQ(machine.sample().cpuCores, std::vector<std::optional<double>>(2));
    EXPECT_EQ(machine.sample().cpuCores, (std::vector<std::optional<double>>{0.0, 0.0}));
}

} // namespace
} // namespace vantrel
