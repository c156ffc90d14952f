#include "Vantrel/telemetry/HostCpuLoad.h"

#include <span>

namespace vantrel {

std::optional<TickVector> machineTicksFrom(const HostCpuLoadReply& reply)
{
    if (!reply.succeeded || reply.count < reply.ticks.size())
        return std::nullopt;
    return reply.ticks;
}

std::optional<std::vector<TickVector>> coreTicksFrom(const ProcessorLoadReply& reply)
{
    if (!reply.succeeded || reply.array == nullptr)
        return std::nullopt;
    constexpr std::size_t perProcessor = std::tuple_size_v<TickVector>;
    // In 64 bits, so no processor count can wrap the product past the array's length.
    if (reply.length < std::uint64_t{reply.processorCount} * perProcessor)
        return std::nullopt;
    const std::span<const std::int32_t> integers(reply.array, reply.length);
    std::vector<TickVector> cores(reply.processorCount);
    for (std::size_t processor = 0; processor < cores.size(); ++processor)
        for (std::size_t state = 0; state < perProcessor; ++state)
            // The kernel's counters are unsigned; the array only types them as integer_t.
            cores[processor][state] = static_cast<std::uint32_t>(integers[processor * perProcessor + state]);
    return cores;
}

} // namespace vantrel
