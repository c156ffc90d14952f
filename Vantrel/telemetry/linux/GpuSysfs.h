#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantrel::linux_source {

// Every DRM card's gpu_busy_percent (AMD and others), in card order, from the DRM class directory
// (/sys/class/drm). Connector entries such as card0-HDMI-A-1 are not cards; a card without the file reports
// nothing.
std::vector<double> drmBusyPercents(const std::string& drmClassDirectory);

// AMD compute units per GPU node of the KFD topology (/sys/class/kfd/kfd/topology/nodes; simd_count /
// simd_per_cu), in node order: the closest thing to a GPU core that Linux reports for AMD. CPU nodes (no
// SIMDs) report nothing.
std::vector<std::int64_t> amdComputeUnits(const std::string& topologyNodesDirectory);

} // namespace vantrel::linux_source
