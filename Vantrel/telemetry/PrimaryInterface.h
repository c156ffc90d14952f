#pragma once

#include "Vantrel/telemetry/PropertyValue.h"

#include <optional>
#include <string>

namespace vantrel {

// The configuration store's keys for the global state of each protocol, and the entry naming the primary
// interface.
inline constexpr const char* globalIpv4Key = "State:/Network/Global/IPv4";
inline constexpr const char* globalIpv6Key = "State:/Network/Global/IPv6";
inline constexpr const char* primaryInterfaceKey = "PrimaryInterface";

// The BSD name of the primary interface: IPv4's "PrimaryInterface", or IPv6's only when IPv4's state is not
// a dictionary with text keys or has no such entry. Absent when the chosen entry is not text, or neither
// has one.
std::optional<std::string> primaryInterfaceName(const PropertyValue& ipv4State,
                                                const PropertyValue& ipv6State);

} // namespace vantrel
