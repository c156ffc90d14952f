#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace vantrel {

// The busiest accelerator: readings outside 0–100 or not finite are dropped; of equal maxima the first is
// kept.
std::optional<double> busiestUtilisation(std::span<const double> readings);

// The core count only when exactly one accelerator reports a plausible one (1–256); never a guess among
// several.
std::optional<std::int64_t> singleCoreCount(std::span<const std::int64_t> counts);

} // namespace vantrel
