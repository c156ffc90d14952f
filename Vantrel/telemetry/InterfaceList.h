#pragma once

#include "Vantrel/telemetry/InterfaceSample.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vantrel {

struct InterfaceCounters {
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    std::uint64_t speed = 0;
};

// Where the walk reads the kernel's if_msghdr2 (the macOS source pins each against the system's headers).
namespace interface_list_layout {
inline constexpr std::size_t lengthOffset = 0;      // ifm_msglen, 16-bit
inline constexpr std::size_t typeOffset = 3;        // ifm_type, 8-bit
inline constexpr std::size_t indexOffset = 12;      // ifm_index, 16-bit
inline constexpr std::size_t speedOffset = 48;      // ifm_data.ifi_baudrate, 64-bit
inline constexpr std::size_t receivedOffset = 96;   // ifm_data.ifi_ibytes, 64-bit
inline constexpr std::size_t sentOffset = 104;      // ifm_data.ifi_obytes, 64-bit
inline constexpr std::size_t shortHeaderSize = 112; // if_msghdr: the least a message can be
inline constexpr std::size_t recordSize = 160;      // if_msghdr2
inline constexpr std::uint8_t interfaceInfo2 = 18;  // RTM_IFINFO2
} // namespace interface_list_layout

// Walks a BSD routing interface list (if_msghdr2 messages in host byte order) for the RTM_IFINFO2 record of
// `interfaceIndex`. Any length that is 0 or runs past the end stops the walk safely.
std::optional<InterfaceCounters> findInterfaceCounters(std::span<const std::byte> buffer,
                                                       std::uint16_t interfaceIndex);

// The counters of interface `name`, whose index (if_nametoindex) is `index`, from the list `buffer`
// (NET_RT_IFLIST2; absent when the sysctl failed). Absent for index 0 (no such interface), an index no
// message can hold, no list, or no record of the interface.
std::optional<InterfaceSample> interfaceSampleFrom(const std::string& name, unsigned int index,
                                                   std::optional<std::span<const std::byte>> buffer);

} // namespace vantrel
