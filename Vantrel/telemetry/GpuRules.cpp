#include "Vantrel/telemetry/GpuRules.h"

#include <cmath>

namespace vantrel {

std::optional<double> busiestUtilisation(std::span<const double> readings)
{
    std::optional<double> busiest;
    for (const double reading : readings) {
        // Values outside 0–100 are driver garbage, not load.
        if (!std::isfinite(reading) || reading < 0 || reading > 100)
            continue;
        if (!busiest || reading > *busiest)
            busiest = reading;
    }
    return busiest;
}

std::optional<std::int64_t> singleCoreCount(std::span<const std::int64_t> counts)
{
    std::optional<std::int64_t> single;
    int plausible = 0;
    for (const std::int64_t count : counts) {
        if (count < 1 || count > 256)
            continue;
        single = count;
        ++plausible;
    }
    if (plausible != 1)
        return std::nullopt;
    return single;
}

} // namespace vantrel
