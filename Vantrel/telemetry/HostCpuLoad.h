#pragma once

#include "Vantrel/telemetry/CpuLoad.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace vantrel {

// host_statistics(HOST_CPU_LOAD_INFO) as the Mach host hands it back: the call's outcome, the count it
// returned (in 32-bit words) and the record's cpu_ticks in CPU_STATE order (user, system, idle, nice).
struct HostCpuLoadReply {
    bool succeeded = false;
    std::uint32_t count = 0;
    TickVector ticks{};
};

// host_processor_info(PROCESSOR_CPU_LOAD_INFO) as the Mach host hands it back: the processor count and the
// kernel's array of 32-bit integers, four per processor in CPU_STATE order, with its length in integers.
struct ProcessorLoadReply {
    bool succeeded = false;
    std::uint32_t processorCount = 0;
    const std::int32_t* array = nullptr;
    std::size_t length = 0;
};

// The whole machine's ticks; absent when the call failed or returned fewer than four counters.
std::optional<TickVector> machineTicksFrom(const HostCpuLoadReply& reply);

// One tick vector per processor in the kernel's order; absent when the call failed, gave no array, or the
// array holds fewer than four integers per processor.
std::optional<std::vector<TickVector>> coreTicksFrom(const ProcessorLoadReply& reply);

} // namespace vantrel
