#pragma once

#include <cstdint>
#include <string>

namespace vantrel {

// Cumulative counters of one network interface.
struct InterfaceSample {
    std::string name;
    std::uint64_t received = 0; // bytes since the interface came up
    std::uint64_t sent = 0;     // bytes since the interface came up
    std::uint64_t speed = 0;    // link speed in bits per second; 0 when the driver gives none
};

} // namespace vantrel
