#include "Vantrel/telemetry/macos/ConfigurationStore.h"

#include "Vantrel/telemetry/macos/PropertyCopy.h"

namespace vantrel::macos_source {

PropertyValue ConfigurationStore::value(const char* key)
{
    if (!session)
        session = CFRef<SCDynamicStoreRef>(
            SCDynamicStoreCreate(kCFAllocatorDefault, CFSTR("Vantrel"), nullptr, nullptr));
    const CFRef<CFStringRef> name(CFStringCreateWithCString(kCFAllocatorDefault, key, kCFStringEncodingUTF8));
    if (!session || !name)
        return {PropertyValue::Absent{}};
    const CFRef<CFPropertyListRef> value(SCDynamicStoreCopyValue(session.get(), name.get()));
    return copyProperty(value.get());
}

} // namespace vantrel::macos_source
