#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace vantrel::linux_source {

// Every DRM card's gpu_busy_percent (AMD and others), in card order. Connector entries such as
// card0-HDMI-A-1 are not cards; a card without the file reports nothing.
std::vector<double> drmBusyPercents(const std::filesystem::path& root);

// AMD compute units per GPU node of the KFD topology (simd_count / simd_per_cu), in node order: the closest
// thing to a GPU core that Linux reports for AMD. CPU nodes (no SIMDs) report nothing.
std::vector<std::int64_t> amdComputeUnits(const std::filesystem::path& root);

} // namespace vantrel::linux_source
