#include "Vantrel/telemetry/linux/GpuSysfs.h"

#include "Vantrel/telemetry/linux/KernelFile.h"
#include "Vantrel/telemetry/linux/TextFields.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace vantrel::linux_source {
namespace {

// Entries named prefix + a number, sorted by that number.
std::vector<std::pair<std::uint64_t, std::filesystem::path>> numberedEntries(const std::filesystem::path& dir,
                                                                             std::string_view prefix)
{
    std::vector<std::pair<std::uint64_t, std::filesystem::path>> entries;
    std::error_code error;
    std::filesystem::directory_iterator it(dir, error);
    for (; !error && it != std::filesystem::directory_iterator(); it.increment(error)) {
        const std::string name = it->path().filename().string();
        if (!name.starts_with(prefix))
            continue;
        if (const auto number = parseDecimal(std::string_view(name).substr(prefix.size())))
            entries.emplace_back(*number, it->path());
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

std::optional<std::uint64_t> propertyValue(std::string_view properties, std::string_view key)
{
    std::string_view line;
    while (nextLine(properties, line)) {
        FieldReader fields(line);
        if (fields.next() == key)
            return parseDecimal(fields.next());
    }
    return std::nullopt;
}

} // namespace

std::vector<double> drmBusyPercents(const std::filesystem::path& root)
{
    std::vector<double> percents;
    for (const auto& [number, card] : numberedEntries(root / "sys/class/drm", "card")) {
        const auto text = readWholeFile((card / "device/gpu_busy_percent").string());
        if (!text)
            continue;
        FieldReader fields(*text);
        if (const auto percent = parseSignedDecimal(fields.next()))
            percents.push_back(static_cast<double>(*percent));
    }
    return percents;
}

std::vector<std::int64_t> amdComputeUnits(const std::filesystem::path& root)
{
    std::vector<std::int64_t> units;
    for (const auto& [number, node] : numberedEntries(root / "sys/class/kfd/kfd/topology/nodes", "")) {
        const auto properties = readWholeFile((node / "properties").string());
        if (!properties)
            continue;
        const auto simds = propertyValue(*properties, "simd_count");
        const auto simdsPerUnit = propertyValue(*properties, "simd_per_cu");
        if (simds && simdsPerUnit && *simds > 0 && *simdsPerUnit > 0) {
            const std::uint64_t count = *simds / *simdsPerUnit;
            units.push_back(static_cast<std::int64_t>(std::min<std::uint64_t>(
                count, static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))));
        }
    }
    return units;
}

} // namespace vantrel::linux_source
