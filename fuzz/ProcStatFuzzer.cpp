#include "Vantrel/telemetry/CpuLoad.h"
#include "Vantrel/telemetry/linux/ProcStat.h"

#include "fuzz/FuzzSupport.h"

// Two /proc/stat texts separated by a NUL byte, read as two consecutive samples: whatever the kernel prints
// in between, every figure is absent or a percentage.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vantrel;
    const std::string_view input = fuzz::textOf(data, size);
    const std::size_t split = input.find('\0');
    const std::string_view first = input.substr(0, split);
    const std::string_view second = split == std::string_view::npos ? first : input.substr(split + 1);

    const CpuTicks before = linux_source::parseProcStat(first);
    const CpuTicks after = linux_source::parseProcStat(second);
    if (before.cores)
        fuzz::require(!before.cores->empty(), "a present core list names at least one core");
    if (before.machine && after.machine)
        fuzz::require(fuzz::isPercent(loadOf(tickDelta(*after.machine, *before.machine))),
                      "the machine load is a percentage");
    if (after.cores) {
        const auto loads = coreLoads(*after.cores, before.cores);
        fuzz::require(loads.size() == after.cores->size(), "one load per core of the later sample");
        const bool sameCount = before.cores && before.cores->size() == after.cores->size();
        for (const auto& load : loads) {
            fuzz::require(load.has_value() == sameCount, "per-core loads exist exactly when the count held");
            fuzz::require(!load || fuzz::isPercent(*load), "a core load is a percentage");
        }
    }
    return 0;
}
