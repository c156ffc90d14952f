#include "Vantrel/telemetry/TelemetryPresentation.h"

#include <cmath>
#include <cstdint>

namespace vantrel {

TelemetryPresentation presentSample(const SampleRecord& record, std::size_t coreRowCount)
{
    TelemetryPresentation presentation;
    // An empty per-core list means the reading failed: keep the grid rather than clear it.
    std::size_t rows = coreRowCount;
    if (!record.cpuCores.empty() && record.cpuCores.size() != coreRowCount) {
        rows = record.cpuCores.size();
        presentation.rebuildCoreGridWith = rows;
    }
    presentation.cores.reserve(rows);
    for (std::size_t core = 0; core < rows; ++core) {
        std::optional<double> value;
        if (core < record.cpuCores.size())
            value = record.cpuCores[core];
        presentation.cores.push_back(
            {value, "Logické jádro CPU " + std::to_string(core + 1) + ", poslední interval."});
    }
    presentation.cpu = {record.cpu, "Vytížení všech jader CPU za poslední interval."};
    presentation.ram = {
        record.ram, "Aktivní + wired + komprimované fyzické stránky / celková RAM. Nejde o indikátor tlaku "
                    "na paměť."};
    presentation.gpu = {
        record.gpu, "Vytížení GPU hlášené ovladačem; u více GPU maximum. Některé ovladače údaj neposkytují."};
    presentation.network = {record.network, record.networkExplanation};
    return presentation;
}

std::optional<std::string> stalenessWarning(std::optional<double> lastUsageSeconds, bool lastFetchFailed,
                                            double nowSeconds)
{
    if (!lastUsageSeconds)
        return std::nullopt;
    const double age = std::trunc(nowSeconds - *lastUsageSeconds);
    // A clock gone wild gives no age to show; the line is left as it is rather than stopping the program.
    constexpr double representable = 9.2e18;
    if (!std::isfinite(age) || std::fabs(age) >= representable)
        return std::nullopt;
    const auto wholeSeconds = static_cast<std::int64_t>(age);
    if (!lastFetchFailed && wholeSeconds < 121)
        return std::nullopt;
    return "Limity: starší údaj (" + std::to_string(wholeSeconds / 60) + " min) · nelze obnovit";
}

} // namespace vantrel
