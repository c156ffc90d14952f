#include "Vantrel/telemetry/linux/DefaultRoute.h"
#include "Vantrel/telemetry/linux/KernelFile.h"

#include <gtest/gtest.h>

namespace vantrel::linux_source {
namespace {

std::string fixture(const std::string& path)
{
    return readWholeFile(std::string(VANTREL_FIXTURES) + "/telemetry/" + path).value_or("");
}

const std::string header =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

TEST(DefaultRoute, LowestMetricUpNonRejectDefaultWins)
{
    // wlan0 has metric 600; eth1 is not up; eth9 is a reject route; eth0 and usb0 share 100, eth0 listed
    // first.
    EXPECT_EQ(ipv4DefaultInterface(fixture("route-metrics/proc/net/route")), "eth0");
}

TEST(DefaultRoute, OnlyDestinationZeroIsADefaultRoute)
{
    EXPECT_FALSE(ipv4DefaultInterface(fixture("no-default-route/proc/net/route")).has_value());
    EXPECT_FALSE(ipv4DefaultInterface(header).has_value());
    EXPECT_FALSE(ipv4DefaultInterface("").has_value());
    EXPECT_EQ(ipv4DefaultInterface(fixture("machine/proc/net/route")), "eth0");
}

TEST(DefaultRoute, HeaderAndMalformedLinesAreNotRoutes)
{
    const std::string text = header + "bad\tline\n" + "eth0\t00000000\t0\tzz\t0\t0\t0\t0\t0\t0\t0\n" +
                             "eth1\t00000000\t0\t0003\t0\t0\tx\t0\t0\t0\t0\n" +
                             "eth2\t00000000\t0\t0003\t0\t0\t5\t0\t0\t0\t0\n";
    EXPECT_EQ(ipv4DefaultInterface(text), "eth2");
}

TEST(DefaultRoute, InterfaceNamesThatAreNotPathEntriesAreRefused)
{
    for (const char* name : {"..", ".", "a/b", "averyveryverylongname"}) {
        const std::string text = header + name + "\t00000000\t0\t0003\t0\t0\t0\t0\t0\t0\t0\n";
        EXPECT_FALSE(ipv4DefaultInterface(text).has_value()) << name;
        EXPECT_FALSE(isInterfaceName(name)) << name;
    }
    EXPECT_TRUE(isInterfaceName("enp0s31f6"));
}

TEST(DefaultRoute, Ipv6DefaultSkipsTheUnreachableLoopbackDefault)
{
    EXPECT_EQ(ipv6DefaultInterface(fixture("ipv6-only/proc/net/ipv6_route")), "wlan0");
    EXPECT_FALSE(ipv6DefaultInterface(fixture("machine/proc/net/ipv6_route")).has_value());
}

TEST(DefaultRoute, Ipv6LowestMetricAndPrefixZeroOnly)
{
    const std::string any = "00000000000000000000000000000000";
    const auto line = [&](const char* prefix, const char* metric, const char* flags, const char* device) {
        return any + " " + prefix + " " + any + " 00 " + any + " " + metric + " 00000001 00000000 " + flags +
               " " + device + "\n";
    };
    const std::string text =
        line("00", "00000400", "00000003", "wlan0") + line("00", "00000100", "00000003", "eth0") +
        line("40", "00000001", "00000001", "eth1") + line("00", "00000001", "00000002", "eth2");
    EXPECT_EQ(ipv6DefaultInterface(text), "eth0");
}

} // namespace
} // namespace vantrel::linux_source
