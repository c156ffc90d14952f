#include "Vantrel/telemetry/PlatformSource.h"
#include "Vantrel/telemetry/linux/DefaultRoute.h"
#include "Vantrel/telemetry/linux/GpuSysfs.h"
#include "Vantrel/telemetry/linux/KernelFile.h"
#include "Vantrel/telemetry/linux/MemInfo.h"
#include "Vantrel/telemetry/linux/Nvml.h"
#include "Vantrel/telemetry/linux/ProcStat.h"
#include "Vantrel/telemetry/linux/TextFields.h"

#include <ctime>
#include <limits>
#include <utility>

namespace vantrel {
namespace {

using linux_source::KernelFile;

double monotonicSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

std::string under(const std::filesystem::path& root, const char* relative)
{
    return (root / relative).string();
}

// The counters of one interface, kept open while it stays the primary one.
struct InterfaceFiles {
    std::string name;
    KernelFile received;
    KernelFile sent;
    KernelFile speed;

    InterfaceFiles(const std::filesystem::path& root, const std::string& interface)
        : name(interface), received(under(root, "sys/class/net") + "/" + interface + "/statistics/rx_bytes"),
          sent(under(root, "sys/class/net") + "/" + interface + "/statistics/tx_bytes"),
          speed(under(root, "sys/class/net") + "/" + interface + "/speed")
    {}
};

std::optional<std::uint64_t> counterIn(KernelFile& file)
{
    const auto text = file.read();
    if (!text)
        return std::nullopt;
    return linux_source::parseDecimal(linux_source::FieldReader(*text).next());
}

// Mb/s to bits/s; an unreadable, negative or zero speed (a virtual or disconnected link) is unknown: 0.
std::uint64_t bitsPerSecond(KernelFile& file)
{
    constexpr std::uint64_t bitsPerMegabit = 1'000'000;
    const auto text = file.read();
    if (!text)
        return 0;
    const auto megabits = linux_source::parseSignedDecimal(linux_source::FieldReader(*text).next());
    if (!megabits || *megabits <= 0)
        return 0;
    const auto speed = static_cast<std::uint64_t>(*megabits);
    if (speed > std::numeric_limits<std::uint64_t>::max() / bitsPerMegabit)
        return 0;
    return speed * bitsPerMegabit;
}

} // namespace

struct PlatformSource::State {
    std::filesystem::path root;
    std::function<double()> uptime;
    KernelFile stat;
    KernelFile meminfo;
    KernelFile route;
    KernelFile route6;
    std::string drmClass;
    std::string topologyNodes;
    std::optional<InterfaceFiles> interface;
    std::unique_ptr<linux_source::Nvml> nvml;

    explicit State(PlatformOptions options)
        : root(std::move(options.root)), uptime(std::move(options.uptime)), stat(under(root, "proc/stat")),
          meminfo(under(root, "proc/meminfo")), route(under(root, "proc/net/route")),
          route6(under(root, "proc/net/ipv6_route")), drmClass(under(root, "sys/class/drm")),
          topologyNodes(under(root, "sys/class/kfd/kfd/topology/nodes"))
    {
        if (!uptime)
            uptime = monotonicSeconds;
        if (options.loadGpuDriverLibraries)
            nvml = linux_source::Nvml::load();
    }

    std::optional<std::string> primaryName()
    {
        if (const auto text = route.read())
            if (auto name = linux_source::ipv4DefaultInterface(*text))
                return name;
        if (const auto text = route6.read())
            return linux_source::ipv6DefaultInterface(*text);
        return std::nullopt;
    }
};

PlatformSource::PlatformSource(PlatformOptions options) : state(std::make_unique<State>(std::move(options)))
{}
PlatformSource::~PlatformSource() = default;
PlatformSource::PlatformSource(PlatformSource&&) noexcept = default;
PlatformSource& PlatformSource::operator=(PlatformSource&&) noexcept = default;

CpuTicks PlatformSource::cpuTicks()
{
    const auto text = state->stat.read();
    if (!text)
        return {};
    return linux_source::parseProcStat(*text);
}

std::optional<MemoryCounts> PlatformSource::memory()
{
    const auto text = state->meminfo.read();
    if (!text)
        return std::nullopt;
    return linux_source::parseMemInfo(*text);
}

std::vector<double> PlatformSource::gpuUtilisations()
{
    std::vector<double> percents;
    if (state->nvml)
        percents = state->nvml->utilisations();
    for (const double percent : linux_source::drmBusyPercents(state->drmClass))
        percents.push_back(percent);
    return percents;
}

std::vector<std::int64_t> PlatformSource::gpuCoreCounts()
{
    std::vector<std::int64_t> counts;
    if (state->nvml)
        counts = state->nvml->multiprocessorCounts();
    for (const std::int64_t units : linux_source::amdComputeUnits(state->topologyNodes))
        counts.push_back(units);
    return counts;
}

std::optional<InterfaceSample> PlatformSource::primaryInterface()
{
    const auto name = state->primaryName();
    if (!name)
        return std::nullopt;
    if (!state->interface || state->interface->name != *name)
        state->interface.emplace(state->root, *name);
    InterfaceFiles& files = *state->interface;
    const auto received = counterIn(files.received);
    const auto sent = counterIn(files.sent);
    if (!received || !sent)
        return std::nullopt;
    return InterfaceSample{*name, *received, *sent, bitsPerSecond(files.speed)};
}

double PlatformSource::uptimeSeconds()
{
    return state->uptime();
}

} // namespace vantrel
