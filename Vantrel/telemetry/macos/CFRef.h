#pragma once

#include "Vantrel/telemetry/macos/OwnedHandle.h"

#include <CoreFoundation/CoreFoundation.h>

namespace vantrel::macos_source {

// One CoreFoundation reference, the result of a Create or Copy function.
template <typename Ref> using CFRef = OwnedHandle<Ref, CFRelease>;

} // namespace vantrel::macos_source
