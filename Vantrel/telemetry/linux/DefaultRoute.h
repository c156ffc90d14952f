#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantrel::linux_source {

// The interface of the usable default route (destination 0, up, not a reject route) with the lowest metric;
// of equal metrics the first listed. Absent when there is none.
std::optional<std::string> ipv4DefaultInterface(std::string_view procNetRoute);
std::optional<std::string> ipv6DefaultInterface(std::string_view procNetIpv6Route);

// Whether a name can stand for one entry under /sys/class/net (no path tricks).
bool isInterfaceName(std::string_view name);

} // namespace vantrel::linux_source
