#include "Vantrel/telemetry/HostMemory.h"

namespace vantrel {

std::optional<MemoryCounts> memoryCountsFrom(const VmStatisticsReply& reply, std::uint64_t pageBytes,
                                             std::optional<std::uint64_t> physicalMemory)
{
    if (!reply.succeeded || !physicalMemory)
        return std::nullopt;
    // Inactive, speculative, purgeable and free pages are not in use: they are not counted.
    return MemoryCounts{reply.activeCount, reply.wireCount, reply.compressorPageCount, pageBytes,
                        *physicalMemory};
}

} // namespace vantrel
