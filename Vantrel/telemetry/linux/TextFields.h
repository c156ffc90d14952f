#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vantrel::linux_source {

// Splits kernel text into lines and blank-separated fields without copying.
class FieldReader {
public:
    explicit FieldReader(std::string_view text) : rest(text) {}

    // The next field, or an empty view at the end.
    std::string_view next();

private:
    std::string_view rest;
};

// The next line without its line feed; false when the text is used up.
bool nextLine(std::string_view& text, std::string_view& line);

// Whole-field numbers; absent for anything else (a sign, a trailing character, an overflow, an empty field).
std::optional<std::uint64_t> parseDecimal(std::string_view field);
std::optional<std::int64_t> parseSignedDecimal(std::string_view field);
std::optional<std::uint64_t> parseHex(std::string_view field);

} // namespace vantrel::linux_source
