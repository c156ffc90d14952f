#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vantrel::linux_source {

// NVIDIA's management library, loaded at run time so that the program neither needs it to build nor to run.
// Holds the library open and initialised for its own lifetime.
class Nvml {
public:
    // Absent when the library, one of its entry points or its initialisation is missing.
    static std::unique_ptr<Nvml> load();
    ~Nvml();
    Nvml(const Nvml&) = delete;
    Nvml& operator=(const Nvml&) = delete;

    // Per device, the percent of the last sample period in which a kernel ran.
    std::vector<double> utilisations() const;
    // Per device, its streaming multiprocessors: the unit NVIDIA builds a GPU from, as Apple counts GPU
    // cores. A device that reports neither them nor its CUDA cores and compute capability gives nothing.
    std::vector<std::int64_t> multiprocessorCounts() const;

private:
    struct Api;
    Nvml(void* handle, std::unique_ptr<Api> functions);
    std::vector<void*> devices() const;
    std::optional<std::int64_t> multiprocessorsOf(void* device) const;

    void* library;
    std::unique_ptr<Api> api;
};

// The streaming multiprocessors of a device from its CUDA cores: NVML counts multiprocessors for MIG
// partitions only, but each compute capability builds its multiprocessors from a fixed number of cores.
// Absent for a capability this table does not know, and for a count that does not divide into it.
std::optional<std::int64_t> multiprocessorsFromCores(std::uint64_t cores, int major, int minor);

} // namespace vantrel::linux_source
