#include "Vantrel/telemetry/SystemSampler.h"

#include <gtest/gtest.h>

#include "tests/telemetry/FixtureTree.h"
#include <cstdlib>
#include <dlfcn.h>
#include <map>
#include <string>

namespace vantrel {
namespace {

struct Expected {
    std::optional<double> gpu;
    std::optional<std::int64_t> gpuCoreCount;
    bool initialised; // whether the sampler got as far as calling into the library
};

// Each variant of the fake library (tests/faults/FakeNvml.cpp) and what the record shows with it.
const std::map<std::string, Expected> variants{
    {"init-fails", {std::nullopt, std::nullopt, true}},
    {"missing-symbols", {std::nullopt, std::nullopt, false}},
    {"queries-fail", {std::nullopt, std::nullopt, true}},
    {"devices-fail", {std::nullopt, std::nullopt, true}},
    {"no-attributes", {37.0, std::nullopt, true}},
    {"one-gpu", {5.0, 132, true}},
};

// CTest runs this once per variant, with LD_LIBRARY_PATH pointing at that variant's libnvidia-ml.so.1 and
// VANTREL_FAKE_NVML naming it.
TEST(NvmlFaults, EachDriverLibraryGivesWhatItCanAndNoCrash)
{
    const char* variant = std::getenv("VANTREL_FAKE_NVML");
    ASSERT_NE(variant, nullptr) << "run through CTest, which points the loader at a fake library";
    const Expected& expected = variants.at(variant);
    // The same lookup by bare soname that the sampler makes; held open so the call count survives.
    void* fake = dlopen("libnvidia-ml.so.1", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(fake, nullptr) << dlerror();
    const auto calls = reinterpret_cast<int (*)()>(dlsym(fake, "fakeNvmlCalls"));
    ASSERT_NE(calls, nullptr) << "the loader found another libnvidia-ml.so.1 than the fake";

    const testing::FixtureTree noOtherGpu;
    PlatformOptions options;
    options.root = noOtherGpu.root();
    options.loadGpuDriverLibraries = true;
    {
        SystemSampler sampler{PlatformSource(options)};
        for (int tick = 0; tick < 3; ++tick) {
            const SampleRecord record = sampler.sample();
            EXPECT_EQ(record.gpu, expected.gpu);
            EXPECT_EQ(record.gpuCoreCount, expected.gpuCoreCount);
            EXPECT_FALSE(record.gpuPerCoreAvailable);
        }
        EXPECT_EQ(sampler.gpuCoreCount(), expected.gpuCoreCount);
    }
    EXPECT_EQ(calls() > 0, expected.initialised);
    dlclose(fake);
}

} // namespace
} // namespace vantrel
