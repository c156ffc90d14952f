#include "Vantrel/telemetry/PlatformSource.h"
#include "Vantrel/telemetry/SystemSampler.h"

#include "fuzz/FuzzSupport.h"
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using vantrel::fuzz::firstField;
using vantrel::fuzz::referenceDecimal;
using vantrel::fuzz::require;

// The single-value files the input is spread over, separated by NUL bytes; a file with no piece is missing.
enum Piece : std::size_t { Received, Sent, Speed, GpuBusy, KfdProperties, Pieces };
constexpr std::array<const char*, Pieces> files{
    "sys/class/net/eth0/statistics/rx_bytes", "sys/class/net/eth0/statistics/tx_bytes",
    "sys/class/net/eth0/speed", "sys/class/drm/card0/device/gpu_busy_percent",
    "sys/class/kfd/kfd/topology/nodes/0/properties"};

const std::filesystem::path& root()
{
    static const std::filesystem::path tree = [] {
        auto path =
            std::filesystem::temp_directory_path() / ("vantrel-fuzz-sysfs-" + std::to_string(getpid()));
        std::filesystem::create_directories(path / "proc/net");
        std::ofstream(path / "proc/net/route")
            << "Iface\tDestination\tGateway\tFlags\tRefCnt\tUse\tMetric\tMask\tMTU\tWindow\tIRTT\n"
               "eth0\t00000000\t0102A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n";
        return path;
    }();
    return tree;
}

std::array<std::optional<std::string_view>, Pieces> split(std::string_view input)
{
    std::array<std::optional<std::string_view>, Pieces> pieces;
    for (std::size_t i = 0; i < Pieces && !input.empty(); ++i) {
        const std::size_t end = input.find('\0');
        pieces[i] = input.substr(0, end);
        input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
    }
    return pieces;
}

void lay(const std::array<std::optional<std::string_view>, Pieces>& pieces)
{
    for (std::size_t i = 0; i < Pieces; ++i) {
        const auto path = root() / files[i];
        if (!pieces[i]) {
            std::filesystem::remove(path);
            continue;
        }
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary | std::ios::trunc) << *pieces[i];
    }
}

std::optional<std::int64_t> referenceSigned(std::string_view field)
{
    const bool negative = field.starts_with('-');
    const auto magnitude = referenceDecimal(negative ? field.substr(1) : field);
    if (!magnitude || *magnitude > (negative ? 9223372036854775808ULL : 9223372036854775807ULL))
        return std::nullopt;
    return negative ? static_cast<std::int64_t>(0 - *magnitude) : static_cast<std::int64_t>(*magnitude);
}

// Mb/s as bits/s; unknown (0) for anything not a positive number of megabits that fits.
std::uint64_t referenceSpeed(const std::optional<std::string_view>& text)
{
    const auto megabits = text ? referenceSigned(firstField(*text)) : std::nullopt;
    if (!megabits || *megabits <= 0 || static_cast<std::uint64_t>(*megabits) > UINT64_MAX / 1'000'000)
        return 0;
    return static_cast<std::uint64_t>(*megabits) * 1'000'000;
}

// simd_count / simd_per_cu, each the first line of that name.
std::optional<std::int64_t> referenceComputeUnits(std::string_view properties)
{
    std::optional<std::optional<std::uint64_t>> simds;
    std::optional<std::optional<std::uint64_t>> perUnit;
    while (!properties.empty()) {
        const std::size_t end = properties.find('\n');
        std::string_view line = properties.substr(0, end);
        properties.remove_prefix(end == std::string_view::npos ? properties.size() : end + 1);
        const std::string_view key = firstField(line);
        line.remove_prefix(static_cast<std::size_t>(key.data() - line.data()) + key.size());
        if (key == "simd_count" && !simds)
            simds = referenceDecimal(firstField(line));
        else if (key == "simd_per_cu" && !perUnit)
            perUnit = referenceDecimal(firstField(line));
    }
    if (!simds || !*simds || !perUnit || !*perUnit || **simds == 0 || **perUnit == 0)
        return std::nullopt;
    return static_cast<std::int64_t>(std::min<std::uint64_t>(**simds / **perUnit, INT64_MAX));
}

vantrel::PlatformOptions options()
{
    vantrel::PlatformOptions chosen;
    chosen.root = root();
    chosen.uptime = [clock = 100.0]() mutable { return clock += 2; };
    chosen.loadGpuDriverLibraries = false;
    return chosen;
}

} // namespace

// Byte counters, link speed, GPU busy percent and KFD node properties as the kernel might write them:
// every figure read is the number written, or absent, and every derived figure stays a percentage.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vantrel;
    const auto pieces = split(fuzz::textOf(data, size));
    lay(pieces);

    PlatformSource source(options());
    const auto interface = source.primaryInterface();
    const auto received = pieces[Received] ? referenceDecimal(firstField(*pieces[Received])) : std::nullopt;
    const auto sent = pieces[Sent] ? referenceDecimal(firstField(*pieces[Sent])) : std::nullopt;
    require(interface.has_value() == (received && sent), "the interface reads exactly when both counters do");
    if (interface) {
        require(interface->name == "eth0", "the default route's interface");
        require(interface->received == *received && interface->sent == *sent, "the counters as written");
        require(interface->speed == referenceSpeed(pieces[Speed]), "the link speed as written, or unknown");
    }

    const auto busy = pieces[GpuBusy] ? referenceSigned(firstField(*pieces[GpuBusy])) : std::nullopt;
    const std::vector<double> utilisations = source.gpuUtilisations();
    require(utilisations.size() == (busy ? 1U : 0U), "one GPU reading per readable card");
    if (busy)
        require(utilisations.front() == static_cast<double>(*busy), "the GPU reading as written");

    const auto units = pieces[KfdProperties] ? referenceComputeUnits(*pieces[KfdProperties]) : std::nullopt;
    const std::vector<std::int64_t> counts = source.gpuCoreCounts();
    require(counts.size() == (units ? 1U : 0U), "one core count per GPU node that reports one");
    if (units)
        require(counts.front() == *units, "compute units as simd_count / simd_per_cu");

    SystemSampler sampler{PlatformSource(options())};
    for (int call = 0; call < 2; ++call) {
        const SampleRecord record = sampler.sample();
        require(!record.network || fuzz::isPercent(*record.network), "the link utilisation is a percentage");
        require(!record.gpu || fuzz::isPercent(*record.gpu), "the GPU figure is a percentage");
        require(!record.networkExplanation.empty() && fuzz::isValidUtf8(record.networkExplanation),
                "the network explanation is readable text");
    }
    return 0;
}
