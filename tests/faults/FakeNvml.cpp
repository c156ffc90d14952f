// A stand-in for NVIDIA's libnvidia-ml.so.1, built in several variants (one FAKE_NVML_* macro each): broken
// ones, so that the tests can show how the sampler lives with a driver library that is there but misbehaves,
// and one that answers as the driver of one whole H100 does.
// Every variant counts the calls made into it, so a test can tell that the fake was really loaded.

#include <array>

using Return = int;
using Device = void*;

// Entry points that a variant leaves out are still built, but hidden from the loader.
#ifdef FAKE_NVML_MISSING_SYMBOLS
#define FAKE_NVML_QUERY __attribute__((visibility("hidden")))
#else
#define FAKE_NVML_QUERY __attribute__((visibility("default")))
#endif
#if defined(FAKE_NVML_DEVICES_FAIL) || defined(FAKE_NVML_ONE_GPU)
#define FAKE_NVML_ATTRIBUTES __attribute__((visibility("default")))
#else
#define FAKE_NVML_ATTRIBUTES __attribute__((visibility("hidden")))
#endif
#ifdef FAKE_NVML_ONE_GPU
#define FAKE_NVML_CORES __attribute__((visibility("default")))
#else
#define FAKE_NVML_CORES __attribute__((visibility("hidden")))
#endif

namespace {

#ifdef FAKE_NVML_INIT_FAILS
constexpr bool initFails = true;
#else
constexpr bool initFails = false;
#endif
#ifdef FAKE_NVML_QUERIES_FAIL
constexpr bool queriesFail = true;
#else
constexpr bool queriesFail = false;
#endif
#ifdef FAKE_NVML_DEVICES_FAIL
constexpr bool devicesFail = true;
#else
constexpr bool devicesFail = false;
#endif

#ifdef FAKE_NVML_ONE_GPU
constexpr bool oneGpu = true;
#else
constexpr bool oneGpu = false;
#endif

constexpr Return success = 0;
constexpr Return errorUninitialised = 1;
constexpr Return errorNotSupported = 3;
constexpr Return errorUnknown = 999;
constexpr unsigned int reportedDevices = oneGpu ? 1 : 3;
std::array<int, 3> devices{}; // the handles the most devices that a variant reports need
int callCount = 0;

} // namespace

extern "C" {

struct FakeUtilization {
    unsigned int gpu;
    unsigned int memory;
};

struct FakeDeviceAttributes {
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

int fakeNvmlCalls()
{
    return callCount;
}

Return nvmlInit_v2()
{
    ++callCount;
    return initFails ? errorUninitialised : success;
}

Return nvmlShutdown()
{
    ++callCount;
    return success;
}

FAKE_NVML_QUERY Return nvmlDeviceGetCount_v2(unsigned int* count)
{
    ++callCount;
    *count = reportedDevices;
    return queriesFail ? errorUnknown : success;
}

FAKE_NVML_QUERY Return nvmlDeviceGetHandleByIndex_v2(unsigned int index, Device* device)
{
    ++callCount;
    if (index >= reportedDevices || (devicesFail && index == 0)) {
        return errorUnknown;
    }
    *device = &devices[index];
    return success;
}

// Healthy: 5, 5 and 37 %. Failing devices: the second errs, the third reports what no percentage can be.
FAKE_NVML_QUERY Return nvmlDeviceGetUtilizationRates(Device device, FakeUtilization* rates)
{
    ++callCount;
    if (devicesFail && device == &devices[1]) {
        return errorUnknown;
    }
    rates->gpu = devicesFail ? 4000000000U : device == &devices[2] ? 37U : 5U;
    rates->memory = 0;
    return success;
}

// Only MIG partitions have attributes: a whole GPU is "not supported".
FAKE_NVML_ATTRIBUTES Return nvmlDeviceGetAttributes_v2(Device device, FakeDeviceAttributes* attributes)
{
    ++callCount;
    if (oneGpu) {
        return errorNotSupported;
    }
    if (device == &devices[1]) {
        return errorUnknown;
    }
    attributes->multiprocessorCount = 0;
    return success;
}

// An H100: 132 multiprocessors of 128 cores, compute capability 9.0.
FAKE_NVML_CORES Return nvmlDeviceGetNumGpuCores(Device /*device*/, unsigned int* cores)
{
    ++callCount;
    *cores = 16896;
    return success;
}

FAKE_NVML_CORES Return nvmlDeviceGetCudaComputeCapability(Device /*device*/, int* major, int* minor)
{
    ++callCount;
    *major = 9;
    *minor = 0;
    return success;
}
}
