#include "Vantrel/telemetry/MemoryUse.h"

namespace vantrel {

std::optional<double> ramPercent(const MemoryCounts& counts)
{
    if (counts.totalBytes == 0)
        return std::nullopt;
    const std::uint64_t used = counts.active + counts.wired + counts.compressed;
    return static_cast<double>(used) * static_cast<double>(counts.unitBytes) /
           static_cast<double>(counts.totalBytes) * 100;
}

} // namespace vantrel
