#pragma once

#include "Vantrel/telemetry/PropertyValue.h"

#include <cstdint>
#include <optional>

namespace vantrel {

// The I/O registry's accelerator services and the properties read from each.
inline constexpr const char* acceleratorClass = "IOAccelerator";
inline constexpr const char* performanceStatisticsProperty = "PerformanceStatistics";
inline constexpr const char* deviceUtilisationKey = "Device Utilization %";
inline constexpr const char* gpuCoreCountProperty = "gpu-core-count";

// "Device Utilization %" of an accelerator's "PerformanceStatistics", when that is a dictionary with text
// keys and the entry a number. Unfiltered: the range rule is busiestUtilisation's.
std::optional<double> acceleratorUtilisation(const PropertyValue& performanceStatistics);

// The integer value of an accelerator's "gpu-core-count" when it is a number. Unfiltered: the range rule is
// singleCoreCount's.
std::optional<std::int64_t> acceleratorCoreCount(const PropertyValue& gpuCoreCount);

} // namespace vantrel
