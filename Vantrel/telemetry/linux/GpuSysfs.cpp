#include "Vantrel/telemetry/linux/GpuSysfs.h"

#include "Vantrel/telemetry/linux/KernelFile.h"
#include "Vantrel/telemetry/linux/TextFields.h"

#include <algorithm>
#include <dirent.h>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace vantrel::linux_source {
namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

// Paths of the entries named prefix + a number, sorted by that number. Plain POSIX rather than
// std::filesystem: this runs on every tick, and a missing directory should cost one failed open.
std::vector<std::pair<std::uint64_t, std::string>> numberedEntries(const std::string& directory,
                                                                   std::string_view prefix)
{
    std::vector<std::pair<std::uint64_t, std::string>> entries;
    const std::unique_ptr<DIR, DirectoryCloser> listing(::opendir(directory.c_str()));
    if (!listing)
        return entries;
    while (const dirent* entry = ::readdir(listing.get())) {
        const std::string_view name(entry->d_name);
        if (!name.starts_with(prefix))
            continue;
        if (const auto number = parseDecimal(name.substr(prefix.size())))
            entries.emplace_back(*number, directory + '/' + std::string(name));
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

std::vector<double> drmBusyPercents(const std::string& drmClassDirectory)
{
    std::vector<double> percents;
    for (const auto& [number, card] : numberedEntries(drmClassDirectory, "card")) {
        const auto text = readWholeFile(card + "/device/gpu_busy_percent");
        if (!text)
            continue;
        FieldReader fields(*text);
        if (const auto percent = parseSignedDecimal(fields.next()))
            percents.push_back(static_cast<double>(*percent));
    }
    return percents;
}

std::vector<std::int64_t> amdComputeUnits(const std::string& topologyNodesDirectory)
{
    std::vector<std::int64_t> units;
    for (const auto& [number, node] : numberedEntries(topologyNodesDirectory, "")) {
        const auto properties = readWholeFile(node + "/properties");
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
