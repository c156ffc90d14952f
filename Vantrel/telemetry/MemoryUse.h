#pragma once

#include <cstdint>
#include <optional>

namespace vantrel {

// Memory counts in units of `unitBytes` (pages of the kernel's page size, or kilobytes).
struct MemoryCounts {
    std::uint64_t active = 0;
    std::uint64_t wired = 0;
    std::uint64_t compressed = 0;
    std::uint64_t unitBytes = 0;
    std::uint64_t totalBytes = 0; // physical memory
};

// (active + wired + compressed) × unit / total × 100, unclamped; absent when the total is 0.
std::optional<double> ramPercent(const MemoryCounts& counts);

} // namespace vantrel
