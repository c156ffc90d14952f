#include "Vantrel/telemetry/InterfaceList.h"

#include <cstring>
#include <limits>

namespace vantrel {
namespace {

using namespace interface_list_layout;

template <typename T> T readAt(std::span<const std::byte> buffer, std::size_t offset)
{
    T value{};
    std::memcpy(&value, buffer.data() + offset, sizeof value);
    return value;
}

} // namespace

std::optional<InterfaceCounters> findInterfaceCounters(std::span<const std::byte> buffer,
                                                       std::uint16_t interfaceIndex)
{
    std::size_t offset = 0;
    while (offset + shortHeaderSize <= buffer.size()) {
        const auto length = readAt<std::uint16_t>(buffer, offset + lengthOffset);
        if (length == 0)
            break;
        const std::size_t next = offset + length;
        if (next > buffer.size())
            break;
        if (length >= recordSize && readAt<std::uint8_t>(buffer, offset + typeOffset) == interfaceInfo2 &&
            readAt<std::uint16_t>(buffer, offset + indexOffset) == interfaceIndex)
            return InterfaceCounters{readAt<std::uint64_t>(buffer, offset + receivedOffset),
                                     readAt<std::uint64_t>(buffer, offset + sentOffset),
                                     readAt<std::uint64_t>(buffer, offset + speedOffset)};
        offset = next;
    }
    return std::nullopt;
}

std::optional<InterfaceSample> interfaceSampleFrom(const std::string& name, unsigned int index,
                                                   std::optional<std::span<const std::byte>> buffer)
{
    // ifm_index is 16 bits wide: a larger index matches no message.
    if (index == 0 || index > std::numeric_limits<std::uint16_t>::max() || !buffer)
        return std::nullopt;
    const auto counters = findInterfaceCounters(*buffer, static_cast<std::uint16_t>(index));
    if (!counters)
        return std::nullopt;
    return InterfaceSample{name, counters->received, counters->sent, counters->speed};
}

} // namespace vantrel
