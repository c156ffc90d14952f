#include "Vantrel/telemetry/macos/RoutingInterfaceList.h"

#include "Vantrel/telemetry/InterfaceList.h"

#include <array>
#include <cstddef>
#include <net/if.h>
#include <net/route.h>
#include <sys/socket.h>
#include <sys/sysctl.h>
#include <sys/types.h>

namespace vantrel::macos_source {

// The portable walk reads the records by these offsets: they must be the system's.
namespace layout = interface_list_layout;
static_assert(offsetof(if_msghdr2, ifm_msglen) == layout::lengthOffset);
static_assert(sizeof(if_msghdr2::ifm_msglen) == 2);
static_assert(offsetof(if_msghdr2, ifm_type) == layout::typeOffset);
static_assert(sizeof(if_msghdr2::ifm_type) == 1);
static_assert(offsetof(if_msghdr2, ifm_index) == layout::indexOffset);
static_assert(sizeof(if_msghdr2::ifm_index) == 2);
static_assert(offsetof(if_msghdr2, ifm_data) + offsetof(if_data64, ifi_baudrate) == layout::speedOffset);
static_assert(sizeof(if_data64::ifi_baudrate) == 8);
static_assert(offsetof(if_msghdr2, ifm_data) + offsetof(if_data64, ifi_ibytes) == layout::receivedOffset);
static_assert(sizeof(if_data64::ifi_ibytes) == 8);
static_assert(offsetof(if_msghdr2, ifm_data) + offsetof(if_data64, ifi_obytes) == layout::sentOffset);
static_assert(sizeof(if_data64::ifi_obytes) == 8);
static_assert(sizeof(if_msghdr) == layout::shortHeaderSize);
static_assert(sizeof(if_msghdr2) == layout::recordSize);
static_assert(RTM_IFINFO2 == layout::interfaceInfo2);
static_assert(offsetof(if_msghdr, ifm_msglen) == layout::lengthOffset);
static_assert(offsetof(if_msghdr, ifm_type) == layout::typeOffset);
static_assert(offsetof(if_msghdr, ifm_index) == layout::indexOffset);

std::optional<std::vector<std::byte>> routingInterfaceList()
{
    std::array<int, 6> name{CTL_NET, PF_ROUTE, 0, 0, NET_RT_IFLIST2, 0};
    std::size_t size = 0;
    if (sysctl(name.data(), name.size(), nullptr, &size, nullptr, 0) != 0)
        return std::nullopt;
    std::vector<std::byte> buffer(size);
    if (sysctl(name.data(), name.size(), buffer.data(), &size, nullptr, 0) != 0)
        return std::nullopt;
    buffer.resize(size);
    return buffer;
}

} // namespace vantrel::macos_source
