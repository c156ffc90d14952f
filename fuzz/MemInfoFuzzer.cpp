#include "Vantrel/telemetry/MemoryUse.h"
#include "Vantrel/telemetry/linux/MemInfo.h"

#include "fuzz/FuzzSupport.h"
#include <array>
#include <map>
#include <string>

namespace {

using vantrel::fuzz::firstField;

// The last value of each line name, read the plain way; absent where the last such line was malformed or
// cut short (no line feed after it).
std::map<std::string, std::optional<std::uint64_t>, std::less<>> referenceValues(std::string_view text)
{
    std::map<std::string, std::optional<std::uint64_t>, std::less<>> values;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        const std::string_view name = firstField(line);
        line.remove_prefix(static_cast<std::size_t>(name.data() - line.data()) + name.size());
        const auto value = vantrel::fuzz::referenceDecimal(firstField(line));
        values[std::string(name)] = end == std::string_view::npos ? std::nullopt : value;
    }
    return values;
}

// The true share of memory in use, in a type wide enough that no sum wraps; absent when a needed line is.
std::optional<long double> trueShare(std::string_view text)
{
    const auto values = referenceValues(text);
    const auto value = [&values](std::string_view name) -> std::optional<long double> {
        const auto found = values.find(name);
        if (found == values.end())
            return name == "Zswap:" ? std::optional<long double>(0) : std::nullopt;
        if (!found->second)
            return std::nullopt;
        return static_cast<long double>(*found->second);
    };
    long double used = 0;
    for (const char* name :
         {"Active:", "Unevictable:", "SUnreclaim:", "KernelStack:", "PageTables:", "Zswap:"}) {
        const auto part = value(name);
        if (!part)
            return std::nullopt;
        used += *part;
    }
    const auto total = value("MemTotal:");
    if (!total || *total == 0)
        return std::nullopt;
    return used / *total * 100;
}

} // namespace

// /proc/meminfo: the memory figure is absent or the true share, never one computed from wrapped sums.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vantrel;
    const std::string_view text = fuzz::textOf(data, size);
    const auto counts = linux_source::parseMemInfo(text);
    if (!counts)
        return 0;
    const auto percent = ramPercent(*counts);
    const auto share = trueShare(text);
    fuzz::require(percent.has_value() && share.has_value(), "a figure only when every needed line is there");
    fuzz::require(std::isfinite(*percent) && *percent >= 0, "the figure is a finite share");
    const long double error = std::fabs(static_cast<long double>(*percent) - *share);
    fuzz::require(error <= *share * 1e-9L + 1e-12L, "the figure is the share of memory in use");
    return 0;
}
