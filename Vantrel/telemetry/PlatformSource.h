#pragma once

#include "Vantrel/telemetry/CpuLoad.h"
#include "Vantrel/telemetry/InterfaceSample.h"
#include "Vantrel/telemetry/MemoryUse.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vantrel {

// Raw CPU tick counters of one read: the whole machine and each logical core in the kernel's order.
// An absent member could not be read.
struct CpuTicks {
    std::optional<TickVector> machine;
    std::optional<std::vector<TickVector>> cores;
};

struct PlatformOptions {
    std::filesystem::path root =
        "/";                        // prefix of every kernel file read, so tests can point at a fixture tree
    std::function<double()> uptime; // seconds on a monotonic clock; empty = the system's
    bool loadGpuDriverLibraries = true;
};

// The operating system's raw numbers, and nothing else: every rule that turns them into figures is portable.
// One implementation per operating system, chosen by the build.
class PlatformSource {
public:
    explicit PlatformSource(PlatformOptions options = {});
    ~PlatformSource();
    PlatformSource(PlatformSource&&) noexcept;
    PlatformSource& operator=(PlatformSource&&) noexcept;
    PlatformSource(const PlatformSource&) = delete;
    PlatformSource& operator=(const PlatformSource&) = delete;

    CpuTicks cpuTicks();
    std::optional<MemoryCounts> memory();
    // One utilisation percent per accelerator that reports one, unfiltered.
    std::vector<double> gpuUtilisations();
    // One core count per accelerator whose driver reports one, unfiltered.
    std::vector<std::int64_t> gpuCoreCounts();
    std::optional<InterfaceSample> primaryInterface();
    double uptimeSeconds();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace vantrel
