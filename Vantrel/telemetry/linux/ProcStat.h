#pragma once

#include "Vantrel/telemetry/PlatformSource.h"

#include <string_view>

namespace vantrel::linux_source {

// The "cpu" and "cpuN" lines of /proc/stat as tick vectors: user = user; nice = nice;
// system = system + irq + softirq + steal; idle = idle + iowait (guest time is already inside user and nice).
// Each counter keeps its low 32 bits. A malformed line, or a last line cut short before its line feed,
// makes its part absent.
CpuTicks parseProcStat(std::string_view text);

} // namespace vantrel::linux_source
