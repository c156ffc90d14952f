#include "Vantrel/telemetry/linux/Nvml.h"

#include <dlfcn.h>
#include <utility>

namespace vantrel::linux_source {
namespace {

// The few declarations of nvml.h that are used, as the library's ABI defines them.
using Return = int;
constexpr Return success = 0;
using Device = void*;
struct Utilization {
    unsigned int gpu;
    unsigned int memory;
};
struct DeviceAttributes {
    unsigned int multiprocessorCount;
    unsigned int sharedCopyEngineCount;
    unsigned int sharedDecoderCount;
    unsigned int sharedEncoderCount;
    unsigned int sharedJpegCount;
    unsigned int sharedOfaCount;
    unsigned int gpuInstanceSliceCount;
    unsigned int computeInstanceSliceCount;
    unsigned long long memorySizeMB;
};

template <typename Function> Function* symbol(void* library, const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(library, name));
}

} // namespace

struct Nvml::Api {
    Return (*shutdown)() = nullptr;
    Return (*deviceCount)(unsigned int*) = nullptr;
    Return (*deviceByIndex)(unsigned int, Device*) = nullptr;
    Return (*utilization)(Device, Utilization*) = nullptr;
    Return (*attributes)(Device, DeviceAttributes*) = nullptr; // optional: older drivers lack it
};

std::unique_ptr<Nvml> Nvml::load()
{
    void* library = ::dlopen("libnvidia-ml.so.1", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        return nullptr;
    auto api = std::make_unique<Api>();
    auto* init = symbol<Return()>(library, "nvmlInit_v2");
    api->shutdown = symbol<Return()>(library, "nvmlShutdown");
    api->deviceCount = symbol<Return(unsigned int*)>(library, "nvmlDeviceGetCount_v2");
    api->deviceByIndex = symbol<Return(unsigned int, Device*)>(library, "nvmlDeviceGetHandleByIndex_v2");
    api->utilization = symbol<Return(Device, Utilization*)>(library, "nvmlDeviceGetUtilizationRates");
    api->attributes = symbol<Return(Device, DeviceAttributes*)>(library, "nvmlDeviceGetAttributes_v2");
    if (init == nullptr || api->shutdown == nullptr || api->deviceCount == nullptr ||
        api->deviceByIndex == nullptr || api->utilization == nullptr || init() != success) {
        ::dlclose(library);
        return nullptr;
    }
    return std::unique_ptr<Nvml>(new Nvml(library, std::move(api)));
}

Nvml::Nvml(void* handle, std::unique_ptr<Api> functions) : library(handle), api(std::move(functions))
{}

Nvml::~Nvml()
{
    api->shutdown();
    ::dlclose(library);
}

std::vector<void*> Nvml::devices() const
{
    // Asked afresh each time: a device can fall off the bus while the program runs.
    unsigned int count = 0;
    std::vector<void*> found;
    if (api->deviceCount(&count) != success)
        return found;
    for (unsigned int index = 0; index < count; ++index) {
        Device device = nullptr;
        if (api->deviceByIndex(index, &device) == success)
            found.push_back(device);
    }
    return found;
}

std::vector<double> Nvml::utilisations() const
{
    std::vector<double> percents;
    for (Device device : devices()) {
        Utilization rates{};
        if (api->utilization(device, &rates) == success)
            percents.push_back(rates.gpu);
    }
    return percents;
}

std::vector<std::int64_t> Nvml::multiprocessorCounts() const
{
    std::vector<std::int64_t> counts;
    if (api->attributes == nullptr)
        return counts;
    for (Device device : devices()) {
        DeviceAttributes attributes{};
        if (api->attributes(device, &attributes) == success)
            counts.push_back(attributes.multiprocessorCount);
    }
    return counts;
}

} // namespace vantrel::linux_source
