#include "Vantrel/telemetry/macos/PropertyCopy.h"

#include <string>
#include <vector>

namespace vantrel::macos_source {
namespace {

PropertyValue copyNumber(CFNumberRef number)
{
    if (CFNumberIsFloatType(number)) {
        double real = 0;
        CFNumberGetValue(number, kCFNumberDoubleType, &real);
        return {real};
    }
    std::int64_t integer = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &integer);
    return {integer};
}

PropertyValue copyText(CFStringRef string)
{
    const CFIndex capacity =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::string utf8(static_cast<std::size_t>(capacity), '\0');
    if (!CFStringGetCString(string, utf8.data(), capacity, kCFStringEncodingUTF8))
        return {PropertyValue::OtherKind{}};
    utf8.resize(std::char_traits<char>::length(utf8.c_str()));
    return {std::move(utf8)};
}

PropertyValue copyDictionary(CFDictionaryRef dictionary)
{
    const CFIndex count = CFDictionaryGetCount(dictionary);
    std::vector<const void*> keys(static_cast<std::size_t>(count));
    std::vector<const void*> values(static_cast<std::size_t>(count));
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    PropertyValue::Dictionary entries;
    entries.reserve(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i)
        entries.push_back({copyProperty(keys[i]), copyProperty(values[i])});
    return {std::move(entries)};
}

} // namespace

PropertyValue copyProperty(CFTypeRef value)
{
    if (value == nullptr)
        return {PropertyValue::Absent{}};
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFNumberGetTypeID())
        return copyNumber(static_cast<CFNumberRef>(value));
    if (type == CFStringGetTypeID())
        return copyText(static_cast<CFStringRef>(value));
    if (type == CFDictionaryGetTypeID())
        return copyDictionary(static_cast<CFDictionaryRef>(value));
    return {PropertyValue::OtherKind{}};
}

} // namespace vantrel::macos_source
