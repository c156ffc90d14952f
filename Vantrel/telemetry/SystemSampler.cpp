#include "Vantrel/telemetry/SystemSampler.h"

#include "Vantrel/telemetry/GpuRules.h"

#include <utility>

namespace vantrel {

SystemSampler::SystemSampler() : SystemSampler(PlatformSource{})
{}

SystemSampler::SystemSampler(PlatformSource platform)
    : source(std::move(platform)), previousTime(source.uptimeSeconds())
{}

SampleRecord SystemSampler::sample()
{
    SampleRecord record;
    NetworkReading link = network();
    // One read of the tick counters serves both the machine and the per-core figures.
    const CpuTicks ticks = source.cpuTicks();
    record.cpu = cpu(ticks.machine);
    if (const auto memory = source.memory())
        record.ram = ramPercent(*memory);
    const std::vector<double> utilisations = source.gpuUtilisations();
    record.gpu = busiestUtilisation(utilisations);
    record.cpuCores = cpuCores(ticks.cores);
    record.gpuCoreCount = gpuCoreCount();
    record.network = link.utilisation;
    record.networkExplanation = std::move(link.explanation);
    return record;
}

std::optional<std::int64_t> SystemSampler::gpuCoreCount()
{
    const std::vector<std::int64_t> counts = source.gpuCoreCounts();
    return singleCoreCount(counts);
}

NetworkReading SystemSampler::network()
{
    const double now = source.uptimeSeconds();
    std::optional<InterfaceSample> current = source.primaryInterface();
    NetworkReading reading = networkUtilisation(current, previousNetwork, previousTime, now);
    previousNetwork = std::move(current);
    previousTime = now;
    return reading;
}

std::optional<double> SystemSampler::cpu(const std::optional<TickVector>& current)
{
    // A failed read keeps the history, so the next figure covers the longer interval.
    if (!current)
        return std::nullopt;
    std::optional<double> load;
    if (previousCPU)
        load = loadOf(tickDelta(*current, *previousCPU));
    previousCPU = current;
    return load;
}

std::vector<std::optional<double>>
SystemSampler::cpuCores(const std::optional<std::vector<TickVector>>& current)
{
    if (!current)
        return {};
    std::vector<std::optional<double>> loads = coreLoads(*current, previousCores);
    previousCores = current;
    return loads;
}

} // namespace vantrel
