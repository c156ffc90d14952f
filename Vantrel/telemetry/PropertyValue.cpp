#include "Vantrel/telemetry/PropertyValue.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

const PropertyValue* textKeyedEntry(const PropertyValue& dictionary, std::string_view key)
{
    const auto* entries = std::get_if<PropertyValue::Dictionary>(&dictionary.value);
    if (entries == nullptr)
        return nullptr;
    // A single key of another kind makes the whole dictionary unreadable, not just that entry.
    const bool textKeys = std::all_of(entries->begin(), entries->end(), [](const PropertyEntry& entry) {
        return std::holds_alternative<std::string>(entry.key.value);
    });
    if (!textKeys)
        return nullptr;
    const auto found = std::find_if(entries->begin(), entries->end(), [key](const PropertyEntry& entry) {
        return std::get<std::string>(entry.key.value) == key;
    });
    return found != entries->end() ? &found->value : nullptr;
}

std::optional<double> realOf(const PropertyValue& value)
{
    if (const auto* integer = std::get_if<std::int64_t>(&value.value))
        return static_cast<double>(*integer);
    if (const auto* real = std::get_if<double>(&value.value))
        return *real;
    return std::nullopt;
}

const std::string* textOf(const PropertyValue& value)
{
    return std::get_if<std::string>(&value.value);
}

std::optional<std::int64_t> integerOf(const PropertyValue& value)
{
    if (const auto* integer = std::get_if<std::int64_t>(&value.value))
        return *integer;
    const auto* real = std::get_if<double>(&value.value);
    if (real == nullptr || !std::isfinite(*real))
        return std::nullopt;
    const double truncated = std::trunc(*real);
    // 2^63 is exactly representable; every double below it (and from −2^63 up) converts without overflow.
    constexpr double limit = 9223372036854775808.0;
    if (truncated >= limit || truncated < -limit)
        return std::nullopt;
    return static_cast<std::int64_t>(truncated);
}

} // namespace vantrel
