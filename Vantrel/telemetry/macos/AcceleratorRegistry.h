#pragma once

#include "Vantrel/telemetry/PropertyValue.h"

#include <vector>

namespace vantrel::macos_source {

// One copy of the registry property `name` per accelerator service, in the registry's order (absent where a
// service has none); no accelerators when the registry cannot be asked.
std::vector<PropertyValue> acceleratorProperties(const char* name);

} // namespace vantrel::macos_source
