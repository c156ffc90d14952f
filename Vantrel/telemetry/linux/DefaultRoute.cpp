#include "Vantrel/telemetry/linux/DefaultRoute.h"

#include "Vantrel/telemetry/linux/TextFields.h"

#include <array>

namespace vantrel::linux_source {
namespace {

constexpr std::uint64_t routeUp = 0x0001;      // RTF_UP
constexpr std::uint64_t routeReject = 0x0200;  // RTF_REJECT: an "unreachable" default leads nowhere
constexpr std::size_t interfaceNameLimit = 15; // IFNAMSIZ without the terminator

struct Best {
    std::optional<std::string> name;
    std::uint64_t metric = 0;

    void offer(std::string_view interface, std::uint64_t flags, std::uint64_t candidateMetric)
    {
        if ((flags & routeUp) == 0 || (flags & routeReject) != 0 || !isInterfaceName(interface))
            return;
        if (!name || candidateMetric < metric) {
            name = std::string(interface);
            metric = candidateMetric;
        }
    }
};

template <std::size_t Count> std::array<std::string_view, Count> fieldsOf(std::string_view line)
{
    std::array<std::string_view, Count> fields;
    FieldReader reader(line);
    for (auto& field : fields)
        field = reader.next();
    return fields;
}

} // namespace

bool isInterfaceName(std::string_view name)
{
    return !name.empty() && name.size() <= interfaceNameLimit && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos;
}

std::optional<std::string> ipv4DefaultInterface(std::string_view procNetRoute)
{
    // Iface Destination Gateway Flags RefCnt Use Metric ..., after one header line; numbers in hex except
    // metric.
    enum Field : std::size_t { Iface, Destination, Gateway, Flags, RefCnt, Use, Metric, Count };
    Best best;
    std::string_view line;
    nextLine(procNetRoute, line);
    while (nextLine(procNetRoute, line)) {
        const auto fields = fieldsOf<Count>(line);
        const auto destination = parseHex(fields[Destination]);
        const auto flags = parseHex(fields[Flags]);
        const auto metric = parseDecimal(fields[Metric]);
        if (destination == 0U && flags && metric)
            best.offer(fields[Iface], *flags, *metric);
    }
    return best.name;
}

std::optional<std::string> ipv6DefaultInterface(std::string_view procNetIpv6Route)
{
    // Destination, prefix length, source, its prefix length, next hop, metric, refcount, use, flags, device.
    enum Field : std::size_t {
        Destination,
        PrefixLength,
        Source,
        SourcePrefix,
        NextHop,
        Metric,
        RefCnt,
        Use,
        Flags,
        Device,
        Count
    };
    constexpr std::string_view anyAddress = "00000000000000000000000000000000";
    Best best;
    std::string_view line;
    while (nextLine(procNetIpv6Route, line)) {
        const auto fields = fieldsOf<Count>(line);
        const auto metric = parseHex(fields[Metric]);
        const auto flags = parseHex(fields[Flags]);
        if (fields[Destination] == anyAddress && parseHex(fields[PrefixLength]) == 0U && metric && flags)
            best.offer(fields[Device], *flags, *metric);
    }
    return best.name;
}

} // namespace vantrel::linux_source
