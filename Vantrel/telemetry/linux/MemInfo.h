#pragma once

#include "Vantrel/telemetry/MemoryUse.h"

#include <optional>
#include <string_view>

namespace vantrel::linux_source {

// /proc/meminfo (kB) as memory counts: active = Active; wired = Unevictable + SUnreclaim + KernelStack +
// PageTables; compressed = Zswap (0 when the kernel has no such line); total = MemTotal.
// Absent when MemTotal is 0, any other needed line is missing, malformed or cut short (the last line
// without its line feed), or a sum does not fit in 64 bits.
std::optional<MemoryCounts> parseMemInfo(std::string_view text);

} // namespace vantrel::linux_source
