#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vantrel {

struct InterfaceCounters {
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    std::uint64_t speed = 0;
};

// Walks a BSD routing interface list (if_msghdr2 messages in host byte order) for the RTM_IFINFO2 record of
// `interfaceIndex`. Any length that is 0 or runs past the end stops the walk safely.
std::optional<InterfaceCounters> findInterfaceCounters(std::span<const std::byte> buffer,
                                                       std::uint16_t interfaceIndex);

} // namespace vantrel
