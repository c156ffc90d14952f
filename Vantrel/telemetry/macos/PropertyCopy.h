#pragma once

#include "Vantrel/telemetry/PropertyValue.h"

#include <CoreFoundation/CoreFoundation.h>

namespace vantrel::macos_source {

// A plain copy of a CoreFoundation property value (null: absent); the rules read the copy.
PropertyValue copyProperty(CFTypeRef value);

} // namespace vantrel::macos_source
