#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantrel {

// One complete telemetry reading. Absent means unavailable, never zero; JSON prints it as null.
struct SampleRecord {
    std::optional<double> cpu;
    std::optional<double> ram;
    std::optional<double> gpu;
    std::optional<double> network;
    std::string networkExplanation;
    // One element per logical core; empty when the per-core counters could not be read at all.
    std::vector<std::optional<double>> cpuCores;
    std::optional<std::int64_t> gpuCoreCount;
    // Always false: no platform offers per-GPU-core utilisation.
    bool gpuPerCoreAvailable = false;
};

} // namespace vantrel
