#include "Vantrel/telemetry/linux/DefaultRoute.h"

#include "fuzz/FuzzSupport.h"

// /proc/net/ipv6_route: the chosen interface is one named in the text, and a name that can only be one entry
// under /sys/class/net.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vantrel;
    const std::string_view text = fuzz::textOf(data, size);
    const auto name = linux_source::ipv6DefaultInterface(text);
    if (name) {
        fuzz::require(linux_source::isInterfaceName(*name), "the interface name is one directory entry");
        fuzz::require(text.find(*name) != std::string_view::npos, "the interface is named in the table");
    }
    return 0;
}
