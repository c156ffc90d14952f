#pragma once

#include "Vantrel/telemetry/PropertyValue.h"
#include "Vantrel/telemetry/macos/CFRef.h"

#include <SystemConfiguration/SCDynamicStore.h>

namespace vantrel::macos_source {

// A session with the system configuration store, opened on first use and again after a failed open.
class ConfigurationStore {
public:
    // A copy of the value under `key`; absent when there is none or no session.
    PropertyValue value(const char* key);

private:
    CFRef<SCDynamicStoreRef> session;
};

} // namespace vantrel::macos_source
