#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantrel {

struct PropertyEntry;

// A property value as a registry or a configuration store holds it, copied into plain types: absent, an
// integer or a floating-point number, UTF-8 text, a dictionary (its entries in the store's order), or any
// other kind of value, which no rule reads.
struct PropertyValue {
    struct Absent {};
    struct OtherKind {};
    using Dictionary = std::vector<PropertyEntry>;

    std::variant<Absent, std::int64_t, double, std::string, Dictionary, OtherKind> value;
};

struct PropertyEntry {
    PropertyValue key;
    PropertyValue value;
};

// The value under `key` when `dictionary` is a dictionary whose keys are all text and holds that key;
// nothing otherwise.
const PropertyValue* textKeyedEntry(const PropertyValue& dictionary, std::string_view key);

// The number as a double, or the text; nothing for a value of another kind.
std::optional<double> realOf(const PropertyValue& value);
const std::string* textOf(const PropertyValue& value);

// The number's integer value: an integer as it is, a finite floating-point number truncated towards zero
// when that fits in 64 bits; nothing otherwise.
std::optional<std::int64_t> integerOf(const PropertyValue& value);

} // namespace vantrel
