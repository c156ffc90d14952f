// sample() per call against the floor: opening, reading and closing the very files it reads, with no parsing.
// A second floor reads them through descriptors kept open (pread at offset 0), which is what the sampler
// does. Run: vantrel_telemetry_bench [--benchmark_repetitions=N]; the ratios are printed after the table.
#include "Vantrel/telemetry/SystemSampler.h"

#include <benchmark/benchmark.h>

#include "bench/RatioReporter.h"
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using vantrel::PlatformOptions;
using vantrel::PlatformSource;
using vantrel::SystemSampler;

// The files one sample reads under a root: the tick and memory files, the route table, the primary link.
std::vector<std::string> sampledFiles(const std::filesystem::path& root)
{
    std::vector<std::string> files{(root / "proc/stat").string(), (root / "proc/meminfo").string(),
                                   (root / "proc/net/route").string()};
    PlatformOptions options;
    options.root = root;
    if (const auto link = PlatformSource(options).primaryInterface()) {
        const auto net = root / "sys/class/net" / link->name;
        for (const char* name : {"statistics/rx_bytes", "statistics/tx_bytes", "speed"})
            files.push_back((net / name).string());
    }
    return files;
}

// A fixture machine whose /proc/stat has 128 logical cores.
std::filesystem::path manyCoreRoot()
{
    static const std::filesystem::path root = [] {
        const auto fixtures = std::filesystem::path(VANTREL_FIXTURES) / "telemetry";
        auto dir = std::filesystem::temp_directory_path() / ("vantrel-bench-" + std::to_string(::getpid()));
        std::filesystem::remove_all(dir);
        std::filesystem::copy(fixtures / "machine", dir, std::filesystem::copy_options::recursive);
        std::filesystem::copy_file(fixtures / "stat-128-cores/proc/stat", dir / "proc/stat",
                                   std::filesystem::copy_options::overwrite_existing);
        return dir;
    }();
    return root;
}

std::array<char, 65536> scratch;

void readOnce(const std::string& path)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return;
    while (::read(fd, scratch.data(), scratch.size()) > 0) {
    }
    ::close(fd);
}

void sampleAt(benchmark::State& state, const std::filesystem::path& root)
{
    PlatformOptions options;
    options.root = root;
    SystemSampler sampler{PlatformSource(options)};
    sampler.sample();
    while (state.KeepRunning())
        benchmark::DoNotOptimize(sampler.sample());
}

void floorAt(benchmark::State& state, const std::filesystem::path& root)
{
    const auto files = sampledFiles(root);
    while (state.KeepRunning())
        for (const auto& file : files)
            readOnce(file);
}

void keptOpenFloorAt(benchmark::State& state, const std::filesystem::path& root)
{
    std::vector<int> descriptors;
    for (const auto& file : sampledFiles(root))
        descriptors.push_back(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    while (state.KeepRunning())
        for (const int fd : descriptors)
            for (off_t at = 0;;) {
                const ssize_t got = ::pread(fd, scratch.data(), scratch.size(), at);
                if (got <= 0)
                    break;
                at += got;
            }
    for (const int fd : descriptors)
        ::close(fd);
}

void BM_Sample_ThisMachine(benchmark::State& state)
{
    sampleAt(state, "/");
}
void BM_Floor_ThisMachine(benchmark::State& state)
{
    floorAt(state, "/");
}
void BM_KeptOpenFloor_ThisMachine(benchmark::State& state)
{
    keptOpenFloorAt(state, "/");
}
void BM_Sample_128Cores(benchmark::State& state)
{
    sampleAt(state, manyCoreRoot());
}
void BM_Floor_128Cores(benchmark::State& state)
{
    floorAt(state, manyCoreRoot());
}

BENCHMARK(BM_Sample_ThisMachine);
BENCHMARK(BM_Floor_ThisMachine);
BENCHMARK(BM_KeptOpenFloor_ThisMachine);
BENCHMARK(BM_Sample_128Cores);
BENCHMARK(BM_Floor_128Cores);

} // namespace

int main(int argc, char** argv)
{
    const int status =
        vantrel::bench::runWithRatios(argc, argv,
                                      {{"BM_Sample_ThisMachine", "BM_Floor_ThisMachine"},
                                       {"BM_KeptOpenFloor_ThisMachine", "BM_Floor_ThisMachine"},
                                       {"BM_Sample_ThisMachine", "BM_KeptOpenFloor_ThisMachine"},
                                       {"BM_Sample_128Cores", "BM_Floor_128Cores"}});
    std::filesystem::remove_all(manyCoreRoot());
    return status;
}
