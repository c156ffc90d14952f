#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace vantrel::macos_source {

// The kernel's interface list (sysctl CTL_NET, PF_ROUTE, 0, 0, NET_RT_IFLIST2, 0): if_msghdr2 records in host
// byte order; absent when either sysctl call fails.
std::optional<std::vector<std::byte>> routingInterfaceList();

} // namespace vantrel::macos_source
