#include "Vantrel/telemetry/AcceleratorProperties.h"

namespace vantrel {

std::optional<double> acceleratorUtilisation(const PropertyValue& performanceStatistics)
{
    const PropertyValue* utilisation = textKeyedEntry(performanceStatistics, deviceUtilisationKey);
    if (utilisation == nullptr)
        return std::nullopt;
    return realOf(*utilisation);
}

std::optional<std::int64_t> acceleratorCoreCount(const PropertyValue& gpuCoreCount)
{
    return integerOf(gpuCoreCount);
}

} // namespace vantrel
