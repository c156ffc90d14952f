#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace vantrel {

// Cumulative CPU ticks in the kernel's order: user, system, idle, nice. 32-bit, so a wrap-around is a small
// delta.
using TickVector = std::array<std::uint32_t, 4>;
inline constexpr std::size_t idleTicks = 2;

// Element-wise current − previous with unsigned 32-bit wrap-around.
std::array<double, 4> tickDelta(const TickVector& current, const TickVector& previous);

// Busy share of a delta in percent: (total − idle) / total × 100; 0 when nothing moved. Nice counts as busy.
double loadOf(const std::array<double, 4>& delta);

// Per-core loads against the previous per-core ticks; all absent when there is no history or the core count
// changed.
std::vector<std::optional<double>> coreLoads(const std::vector<TickVector>& current,
                                             const std::optional<std::vector<TickVector>>& previous);

} // namespace vantrel
