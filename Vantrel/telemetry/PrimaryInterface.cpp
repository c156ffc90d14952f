#include "Vantrel/telemetry/PrimaryInterface.h"

namespace vantrel {

std::optional<std::string> primaryInterfaceName(const PropertyValue& ipv4State,
                                                const PropertyValue& ipv6State)
{
    const PropertyValue* chosen = textKeyedEntry(ipv4State, primaryInterfaceKey);
    // IPv6 only stands in for a missing entry: an IPv4 entry of the wrong kind is not passed over.
    if (chosen == nullptr)
        chosen = textKeyedEntry(ipv6State, primaryInterfaceKey);
    if (chosen == nullptr)
        return std::nullopt;
    const std::string* name = textOf(*chosen);
    if (name == nullptr)
        return std::nullopt;
    return *name;
}

} // namespace vantrel
