#pragma once

#include "Vantrel/telemetry/SampleRecord.h"

#include <string>

namespace vantrel {

// The record as pretty-printed JSON: one member per line, keys sorted in every object, "/" written as "\/",
// non-finite numbers as null. No trailing line feed.
std::string sampleRecordJson(const SampleRecord& record);

} // namespace vantrel
