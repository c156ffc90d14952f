#include "Vantrel/telemetry/AcceleratorProperties.h"
#include "Vantrel/telemetry/HostCpuLoad.h"
#include "Vantrel/telemetry/HostMemory.h"
#include "Vantrel/telemetry/InterfaceList.h"
#include "Vantrel/telemetry/PlatformSource.h"
#include "Vantrel/telemetry/PrimaryInterface.h"
#include "Vantrel/telemetry/macos/AcceleratorRegistry.h"
#include "Vantrel/telemetry/macos/ConfigurationStore.h"
#include "Vantrel/telemetry/macos/HostPort.h"
#include "Vantrel/telemetry/macos/KernelArray.h"
#include "Vantrel/telemetry/macos/RoutingInterfaceList.h"

#include <ctime>
#include <mach/mach.h>
#include <mach/mach_host.h>
#include <net/if.h>
#include <sys/sysctl.h>
#include <utility>

namespace vantrel {
namespace {

using namespace macos_source;

// The per-core array is decoded as four 32-bit counters per processor in tick-vector order.
static_assert(CPU_STATE_USER == 0 && CPU_STATE_SYSTEM == 1 && CPU_STATE_IDLE == 2 && CPU_STATE_NICE == 3);
static_assert(CPU_STATE_MAX == std::tuple_size_v<TickVector>);
static_assert(sizeof(processor_cpu_load_info) == CPU_STATE_MAX * sizeof(integer_t));
static_assert(sizeof(integer_t) == sizeof(std::int32_t) && sizeof(natural_t) == sizeof(std::uint32_t));

// NSProcessInfo's systemUptime: seconds since boot, not counting sleep.
double uptimeSinceBoot()
{
    return static_cast<double>(clock_gettime_nsec_np(CLOCK_UPTIME_RAW)) / 1e9;
}

std::optional<std::uint64_t> physicalMemory()
{
    std::uint64_t bytes = 0;
    std::size_t size = sizeof bytes;
    if (sysctlbyname("hw.memsize", &bytes, &size, nullptr, 0) != 0)
        return std::nullopt;
    return bytes;
}

} // namespace

struct PlatformSource::State {
    std::function<double()> uptime;
    HostPort host;
    ConfigurationStore store;

    explicit State(PlatformOptions options) : uptime(std::move(options.uptime))
    {
        if (!uptime)
            uptime = uptimeSinceBoot;
    }
};

PlatformSource::PlatformSource(PlatformOptions options) : state(std::make_unique<State>(std::move(options)))
{}
PlatformSource::~PlatformSource() = default;
PlatformSource::PlatformSource(PlatformSource&&) noexcept = default;
PlatformSource& PlatformSource::operator=(PlatformSource&&) noexcept = default;

CpuTicks PlatformSource::cpuTicks()
{
    host_cpu_load_info_data_t load{};
    mach_msg_type_number_t loadCount = HOST_CPU_LOAD_INFO_COUNT;
    const kern_return_t loadResult = host_statistics(state->host.get(), HOST_CPU_LOAD_INFO,
                                                     reinterpret_cast<host_info_t>(&load), &loadCount);
    const HostCpuLoadReply machine{loadResult == KERN_SUCCESS,
                                   loadCount,
                                   {load.cpu_ticks[CPU_STATE_USER], load.cpu_ticks[CPU_STATE_SYSTEM],
                                    load.cpu_ticks[CPU_STATE_IDLE], load.cpu_ticks[CPU_STATE_NICE]}};

    natural_t processorCount = 0;
    processor_info_array_t array = nullptr;
    mach_msg_type_number_t arrayLength = 0;
    const kern_return_t coresResult = host_processor_info(state->host.get(), PROCESSOR_CPU_LOAD_INFO,
                                                          &processorCount, &array, &arrayLength);
    const KernelArray owned(array, arrayLength);
    const ProcessorLoadReply cores{coresResult == KERN_SUCCESS, processorCount, array, arrayLength};

    return {machineTicksFrom(machine), coreTicksFrom(cores)};
}

std::optional<MemoryCounts> PlatformSource::memory()
{
    vm_statistics64_data_t statistics{};
    mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
    const kern_return_t result = host_statistics64(state->host.get(), HOST_VM_INFO64,
                                                   reinterpret_cast<host_info64_t>(&statistics), &count);
    const VmStatisticsReply reply{result == KERN_SUCCESS, statistics.active_count, statistics.wire_count,
                                  statistics.compressor_page_count};
    return memoryCountsFrom(reply, vm_kernel_page_size, physicalMemory());
}

std::vector<double> PlatformSource::gpuUtilisations()
{
    std::vector<double> percents;
    for (const PropertyValue& statistics : acceleratorProperties(performanceStatisticsProperty))
        if (const auto percent = acceleratorUtilisation(statistics))
            percents.push_back(*percent);
    return percents;
}

std::vector<std::int64_t> PlatformSource::gpuCoreCounts()
{
    std::vector<std::int64_t> counts;
    for (const PropertyValue& property : acceleratorProperties(gpuCoreCountProperty))
        if (const auto count = acceleratorCoreCount(property))
            counts.push_back(*count);
    return counts;
}

std::optional<InterfaceSample> PlatformSource::primaryInterface()
{
    const auto name =
        primaryInterfaceName(state->store.value(globalIpv4Key), state->store.value(globalIpv6Key));
    if (!name)
        return std::nullopt;
    const auto list = routingInterfaceList();
    return interfaceSampleFrom(*name, if_nametoindex(name->c_str()),
                               list ? std::optional<std::span<const std::byte>>(*list) : std::nullopt);
}

double PlatformSource::uptimeSeconds()
{
    return state->uptime();
}

} // namespace vantrel
