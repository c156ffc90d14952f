#include "Vantrel/telemetry/linux/Nvml.h"

#include <array>
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

struct CoresPerMultiprocessor {
    int major;
    int minor;
    std::uint64_t cores;
};

// Cores per multiprocessor of each compute capability: its 32-bit floating-point results per clock in the
// throughput table of NVIDIA's CUDA C++ Programming Guide.
constexpr std::array<CoresPerMultiprocessor, 24> coresPerMultiprocessor{{
    {3, 0, 192},  {3, 2, 192},  {3, 5, 192},  {3, 7, 192},  {5, 0, 128},  {5, 2, 128},
    {5, 3, 128},  {6, 0, 64},   {6, 1, 128},  {6, 2, 128},  {7, 0, 64},   {7, 2, 64},
    {7, 5, 64},   {8, 0, 64},   {8, 6, 128},  {8, 7, 128},  {8, 9, 128},  {9, 0, 128},
    {10, 0, 128}, {10, 1, 128}, {10, 3, 128}, {11, 0, 128}, {12, 0, 128}, {12, 1, 128},
}};

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
    // Optional: older drivers lack them.
    Return (*attributes)(Device, DeviceAttributes*) = nullptr;
    Return (*cores)(Device, unsigned int*) = nullptr;
    Return (*computeCapability)(Device, int*, int*) = nullptr;
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
    api->cores = symbol<Return(Device, unsigned int*)>(library, "nvmlDeviceGetNumGpuCores");
    api->computeCapability =
        symbol<Return(Device, int*, int*)>(library, "nvmlDeviceGetCudaComputeCapability");
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
    for (Device device : devices()) {
        if (const auto count = multiprocessorsOf(device))
            counts.push_back(*count);
    }
    return counts;
}

std::optional<std::int64_t> Nvml::multiprocessorsOf(Device device) const
{
    // A MIG partition reports its multiprocessors; a whole GPU answers "not supported" and is counted by its
    // cores instead.
    DeviceAttributes attributes{};
    if (api->attributes != nullptr && api->attributes(device, &attributes) == success)
        return attributes.multiprocessorCount;
    unsigned int cores = 0;
    int major = 0;
    int minor = 0;
    if (api->cores == nullptr || api->computeCapability == nullptr || api->cores(device, &cores) != success ||
        api->computeCapability(device, &major, &minor) != success)
        return std::nullopt;
    return multiprocessorsFromCores(cores, major, minor);
}

std::optional<std::int64_t> multiprocessorsFromCores(std::uint64_t cores, int major, int minor)
{
    for (const auto& capability : coresPerMultiprocessor) {
        if (capability.major == major && capability.minor == minor) {
            if (cores == 0 || cores % capability.cores != 0)
                return std::nullopt;
            return static_cast<std::int64_t>(cores / capability.cores);
        }
    }
    return std::nullopt;
}

} // namespace vantrel::linux_source
