#pragma once

#include "Vantrel/telemetry/MemoryUse.h"

#include <cstdint>
#include <optional>

namespace vantrel {

// The page counts that the memory figure reads from host_statistics64(HOST_VM_INFO64), and the call's
// outcome.
struct VmStatisticsReply {
    bool succeeded = false;
    std::uint32_t activeCount = 0;
    std::uint32_t wireCount = 0;
    std::uint32_t compressorPageCount = 0;
};

// Pages of `pageBytes` (vm_kernel_page_size) over `physicalMemory` (hw.memsize, absent when that read
// failed); absent when either read failed.
std::optional<MemoryCounts> memoryCountsFrom(const VmStatisticsReply& reply, std::uint64_t pageBytes,
                                             std::optional<std::uint64_t> physicalMemory);

} // namespace vantrel
