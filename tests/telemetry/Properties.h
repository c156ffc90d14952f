#pragma once

#include "Vantrel/telemetry/PropertyValue.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace vantrel::testing {

// Property values as a registry or the configuration store would hand them over.
inline PropertyValue absent()
{
    return {PropertyValue::Absent{}};
}
inline PropertyValue otherKind()
{
    return {PropertyValue::OtherKind{}};
}
inline PropertyValue integer(std::int64_t value)
{
    return {value};
}
inline PropertyValue real(double value)
{
    return {value};
}
inline PropertyValue text(std::string value)
{
    return {std::move(value)};
}
// A dictionary with text keys, in the given order.
inline PropertyValue dictionary(std::initializer_list<std::pair<std::string, PropertyValue>> entries)
{
    PropertyValue::Dictionary copy;
    for (const auto& [key, value] : entries)
        copy.push_back({text(key), value});
    return {std::move(copy)};
}
// The same, with one more entry whose key is not text.
inline PropertyValue withOtherKey(PropertyValue dictionary, PropertyValue key)
{
    std::get<PropertyValue::Dictionary>(dictionary.value).push_back({std::move(key), integer(1)});
    return dictionary;
}

} // namespace vantrel::testing
