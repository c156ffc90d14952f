#include "Vantrel/telemetry/macos/AcceleratorRegistry.h"

#include "Vantrel/telemetry/AcceleratorProperties.h"
#include "Vantrel/telemetry/macos/CFRef.h"
#include "Vantrel/telemetry/macos/IOObject.h"
#include "Vantrel/telemetry/macos/PropertyCopy.h"

#include <IOKit/IOKitLib.h>

namespace vantrel::macos_source {

std::vector<PropertyValue> acceleratorProperties(const char* name)
{
    std::vector<PropertyValue> properties;
    const CFRef<CFStringRef> key(CFStringCreateWithCString(kCFAllocatorDefault, name, kCFStringEncodingUTF8));
    if (!key)
        return properties;
    io_iterator_t found = IO_OBJECT_NULL;
    // The matching dictionary is consumed by the call, whatever its outcome.
    if (IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching(acceleratorClass), &found) !=
        KERN_SUCCESS)
        return properties;
    const IOObject iterator(found);
    while (const IOObject service{IOIteratorNext(iterator.get())}) {
        const CFRef<CFTypeRef> value(
            IORegistryEntryCreateCFProperty(service.get(), key.get(), kCFAllocatorDefault, 0));
        properties.push_back(copyProperty(value.get()));
    }
    return properties;
}

} // namespace vantrel::macos_source
