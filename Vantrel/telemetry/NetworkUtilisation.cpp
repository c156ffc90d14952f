#include "Vantrel/telemetry/NetworkUtilisation.h"

#include <algorithm>

namespace vantrel {
namespace {

// Whole Mb/s, truncated: 866 700 000 bit/s is shown as 866.
std::string megabits(std::uint64_t bitsPerSecond)
{
    return std::to_string(bitsPerSecond / 1'000'000);
}

bool continues(const InterfaceSample& current, const std::optional<InterfaceSample>& previous,
               double previousTime, double now)
{
    // A new interface, a clock that did not advance or counters that went back (an interface reset) give no
    // interval to measure.
    return previous && previous->name == current.name && previousTime < now &&
           current.received >= previous->received && current.sent >= previous->sent;
}

} // namespace

NetworkReading networkUtilisation(const std::optional<InterfaceSample>& current,
                                  const std::optional<InterfaceSample>& previous, double previousTime,
                                  double now)
{
    if (!current)
        return {std::nullopt, "Rychlost aktivního síťového rozhraní není dostupná."};
    if (current->speed == 0)
        return {std::nullopt, current->name + ": systém neudává kapacitu linky. Procento nelze určit."};
    if (!continues(*current, previous, previousTime, now))
        return {std::nullopt, "První vzorek: " + current->name + ", " + megabits(current->speed) + " Mb/s."};

    // The link is full duplex: the busier direction is its utilisation.
    const std::uint64_t bytes =
        std::max(current->received - previous->received, current->sent - previous->sent);
    const double fraction =
        static_cast<double>(bytes) * 8 / (now - previousTime) / static_cast<double>(current->speed);
    return {
        std::min(fraction * 100, 100.0),
        current->name + ": " + megabits(current->speed) +
            " Mb/s. Vytížení = vyšší z příjmu a odesílání / rychlost linky; nejde o rychlost internetového "
            "tarifu."};
}

} // namespace vantrel
