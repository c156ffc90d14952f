#pragma once

#include "Vantrel/telemetry/InterfaceSample.h"
#include "Vantrel/telemetry/NetworkUtilisation.h"
#include "Vantrel/telemetry/PlatformSource.h"
#include "Vantrel/telemetry/SampleRecord.h"

#include <optional>
#include <vector>

namespace vantrel {

// Measures the machine. Load figures (CPU, per core, network) are deltas against the previous call, so a
// fresh sampler reports them as unavailable. Used from one thread only.
class SystemSampler {
public:
    SystemSampler(); // the operating system's own counters
    explicit SystemSampler(PlatformSource platform);

    SampleRecord sample();
    std::optional<std::int64_t> gpuCoreCount();

private:
    NetworkReading network();
    std::optional<double> cpu(const std::optional<TickVector>& current);
    std::vector<std::optional<double>> cpuCores(const std::optional<std::vector<TickVector>>& current);

    PlatformSource source;
    std::optional<TickVector> previousCPU;
    std::optional<std::vector<TickVector>> previousCores;
    std::optional<InterfaceSample> previousNetwork;
    double previousTime; // uptime of the last network reading
};

} // namespace vantrel
