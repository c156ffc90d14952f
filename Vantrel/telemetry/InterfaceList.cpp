#include "Vantrel/telemetry/InterfaceList.h"

#include <cstring>

namespace vantrel {
namespace {

// Offsets of the fields read from the kernel's if_msghdr2.
constexpr std::size_t lengthOffset = 0;
constexpr std::size_t typeOffset = 3;
constexpr std::size_t indexOffset = 12;
constexpr std::size_t speedOffset = 48;
constexpr std::size_t receivedOffset = 96;
constexpr std::size_t sentOffset = 104;
constexpr std::size_t shortHeaderSize = 112; // if_msghdr: the least a message can be
constexpr std::size_t recordSize = 160;      // if_msghdr2
constexpr std::uint8_t interfaceInfo2 = 18;  // RTM_IFINFO2

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

} // namespace vantrel
