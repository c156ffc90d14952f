#include "Vantrel/telemetry/CpuLoad.h"

namespace vantrel {

std::array<double, 4> tickDelta(const TickVector& current, const TickVector& previous)
{
    std::array<double, 4> delta{};
    for (std::size_t i = 0; i < delta.size(); ++i) {
        // Unsigned subtraction wraps, so a counter that passed 2^32 still gives its true small delta.
        const std::uint32_t moved = current[i] - previous[i];
        delta[i] = static_cast<double>(moved);
    }
    return delta;
}

double loadOf(const std::array<double, 4>& delta)
{
    const double total = delta[0] + delta[1] + delta[2] + delta[3];
    if (total <= 0)
        return 0;
    return (total - delta[idleTicks]) / total * 100;
}

std::vector<std::optional<double>> coreLoads(const std::vector<TickVector>& current,
                                             const std::optional<std::vector<TickVector>>& previous)
{
    std::vector<std::optional<double>> loads(current.size());
    if (!previous || previous->size() != current.size())
        return loads;
    for (std::size_t core = 0; core < current.size(); ++core)
        loads[core] = loadOf(tickDelta(current[core], (*previous)[core]));
    return loads;
}

} // namespace vantrel
