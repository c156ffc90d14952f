#pragma once

#include "Vantrel/telemetry/macos/OwnedHandle.h"

#include <IOKit/IOKitLib.h>

namespace vantrel::macos_source {

// One I/O Kit object: a service or an iterator.
using IOObject = OwnedHandle<io_object_t, IOObjectRelease>;

} // namespace vantrel::macos_source
