#include "Vantrel/telemetry/linux/TextFields.h"

#include <charconv>

namespace vantrel::linux_source {
namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

template <typename Number> std::optional<Number> parseWhole(std::string_view field, int base)
{
    Number value{};
    const char* end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value, base);
    if (field.empty() || error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

} // namespace

std::string_view FieldReader::next()
{
    std::size_t start = 0;
    while (start < rest.size() && isBlank(rest[start]))
        ++start;
    std::size_t stop = start;
    while (stop < rest.size() && !isBlank(rest[stop]))
        ++stop;
    const std::string_view field = rest.substr(start, stop - start);
    rest.remove_prefix(stop);
    return field;
}

bool nextLine(std::string_view& text, std::string_view& line)
{
    if (text.empty())
        return false;
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
        line = text;
        text = {};
    } else {
        line = text.substr(0, end);
        text.remove_prefix(end + 1);
    }
    return true;
}

std::optional<std::uint64_t> parseDecimal(std::string_view field)
{
    return parseWhole<std::uint64_t>(field, 10);
}

std::optional<std::int64_t> parseSignedDecimal(std::string_view field)
{
    return parseWhole<std::int64_t>(field, 10);
}

std::optional<std::uint64_t> parseHex(std::string_view field)
{
    return parseWhole<std::uint64_t>(field, 16);
}

} // namespace vantrel::linux_source
