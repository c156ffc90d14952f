#include "Vantrel/telemetry/linux/MemInfo.h"

#include "Vantrel/telemetry/linux/TextFields.h"

#include <array>
#include <initializer_list>
#include <limits>

namespace vantrel::linux_source {
namespace {

enum Line : std::size_t { MemTotal, Active, Unevictable, SUnreclaim, KernelStack, PageTables, Zswap, Lines };
constexpr std::array<std::string_view, Lines> names{
    "MemTotal:", "Active:", "Unevictable:", "SUnreclaim:", "KernelStack:", "PageTables:", "Zswap:"};
constexpr std::uint64_t kilobyte = 1024;

// The sum, or absent when it does not fit in 64 bits.
std::optional<std::uint64_t> checkedSum(std::initializer_list<std::uint64_t> parts)
{
    std::uint64_t total = 0;
    for (const std::uint64_t part : parts) {
        if (part > std::numeric_limits<std::uint64_t>::max() - total)
            return std::nullopt;
        total += part;
    }
    return total;
}

} // namespace

std::optional<MemoryCounts> parseMemInfo(std::string_view text)
{
    // The kernel ends every line with a line feed: a last line without one was cut short and may have lost
    // digits, so it counts as malformed.
    const bool cutShort = !text.empty() && !text.ends_with('\n');
    std::array<std::optional<std::uint64_t>, Lines> values{};
    bool zswapListed = false;
    std::string_view line;
    while (nextLine(text, line)) {
        const bool whole = !cutShort || !text.empty();
        FieldReader fields(line);
        const std::string_view name = fields.next();
        for (std::size_t i = 0; i < Lines; ++i)
            if (name == names[i]) {
                const auto value = parseDecimal(fields.next());
                values[i] = whole ? value : std::nullopt;
                zswapListed = zswapListed || i == Zswap;
            }
    }
    if (!zswapListed)
        values[Zswap] = 0;
    for (const auto& value : values)
        if (!value)
            return std::nullopt;
    if (*values[MemTotal] == 0 || *values[MemTotal] > std::numeric_limits<std::uint64_t>::max() / kilobyte)
        return std::nullopt;
    // Counts whose sums would wrap are as unusable as an unreadable line.
    const auto wired =
        checkedSum({*values[Unevictable], *values[SUnreclaim], *values[KernelStack], *values[PageTables]});
    if (!wired || !checkedSum({*values[Active], *wired, *values[Zswap]}))
        return std::nullopt;
    return MemoryCounts{*values[Active], *wired, *values[Zswap], kilobyte, *values[MemTotal] * kilobyte};
}

} // namespace vantrel::linux_source
