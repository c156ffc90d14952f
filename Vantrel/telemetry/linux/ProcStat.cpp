#include "Vantrel/telemetry/linux/ProcStat.h"

#include "Vantrel/telemetry/linux/TextFields.h"

#include <array>

namespace vantrel::linux_source {
namespace {

// Column order of a cpu line after its name.
enum Column : std::size_t { User, Nice, System, Idle, IoWait, Irq, SoftIrq, Steal, Columns };

// Kernels older than 2.6.11 print fewer columns; the missing ones are 0. Four are always there.
std::optional<TickVector> parseTicks(FieldReader& fields)
{
    std::array<std::uint64_t, Columns> columns{};
    std::size_t read = 0;
    for (; read < Columns; ++read) {
        const std::string_view field = fields.next();
        if (field.empty())
            break;
        const auto value = parseDecimal(field);
        if (!value)
            return std::nullopt;
        columns[read] = *value;
    }
    if (read <= Idle)
        return std::nullopt;
    const auto low32 = [](std::uint64_t value) { return static_cast<std::uint32_t>(value); };
    return TickVector{low32(columns[User]),
                      low32(columns[System] + columns[Irq] + columns[SoftIrq] + columns[Steal]),
                      low32(columns[Idle] + columns[IoWait]), low32(columns[Nice])};
}

bool isCoreName(std::string_view name)
{
    if (name.size() <= 3)
        return false;
    for (const char c : name.substr(3))
        if (c < '0' || c > '9')
            return false;
    return true;
}

} // namespace

CpuTicks parseProcStat(std::string_view text)
{
    // The kernel ends every line with a line feed: a last line without one was cut short and may have lost
    // digits, so it counts as malformed.
    const bool cutShort = !text.empty() && !text.ends_with('\n');
    CpuTicks ticks;
    std::vector<TickVector> cores;
    bool coresValid = true;
    std::string_view line;
    while (nextLine(text, line)) {
        // The cpu lines come first; the long interrupt lines after them are not needed.
        if (!line.starts_with("cpu"))
            break;
        const bool whole = !cutShort || !text.empty();
        FieldReader fields(line);
        const std::string_view name = fields.next();
        if (name == "cpu") {
            ticks.machine = whole ? parseTicks(fields) : std::nullopt;
        } else if (isCoreName(name)) {
            const auto core = whole ? parseTicks(fields) : std::nullopt;
            if (core)
                cores.push_back(*core);
            coresValid = coresValid && core.has_value();
        }
    }
    if (coresValid && !cores.empty())
        ticks.cores = std::move(cores);
    return ticks;
}

} // namespace vantrel::linux_source
