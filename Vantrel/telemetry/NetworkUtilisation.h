#pragma once

#include "Vantrel/telemetry/InterfaceSample.h"

#include <optional>
#include <string>

namespace vantrel {

struct NetworkReading {
    std::optional<double> utilisation; // percent of the link speed, 0–100
    std::string explanation;           // Czech, always present
};

// The primary link's utilisation between two readings: the larger of the receive and send bit rates over the
// link speed. The caller stores `current` and `now` as the new previous reading, whatever the outcome.
NetworkReading networkUtilisation(const std::optional<InterfaceSample>& current,
                                  const std::optional<InterfaceSample>& previous, double previousTime,
                                  double now);

} // namespace vantrel
