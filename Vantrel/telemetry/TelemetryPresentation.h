#pragma once

#include "Vantrel/telemetry/SampleRecord.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vantrel {

// What one meter row shows: an absent value is drawn as unavailable, an absent tooltip gets the row's
// fallback.
struct RowReading {
    std::optional<double> value;
    std::optional<std::string> tooltip;
};

struct TelemetryPresentation {
    // Set when the record has per-core figures and their number differs from the current per-core rows.
    std::optional<std::size_t> rebuildCoreGridWith;
    // One per per-core row (after a rebuild, if any), in core order.
    std::vector<RowReading> cores;
    RowReading cpu, ram, gpu, network;
};

TelemetryPresentation presentSample(const SampleRecord& record, std::size_t coreRowCount);

// The limits staleness line: absent = leave it as it is; otherwise the text to show in orange.
std::optional<std::string> stalenessWarning(std::optional<double> lastUsageSeconds, bool lastFetchFailed,
                                            double nowSeconds);

} // namespace vantrel
