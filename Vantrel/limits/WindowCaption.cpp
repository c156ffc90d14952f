#include "Vantrel/limits/WindowCaption.h"

#include "Vantrel/limits/Fatal.h"

#include <cmath>
#include <cstdint>

namespace vantrel::limits {
namespace {

constexpr double weekMinutes = 10080;
constexpr double minutesPerHour = 60;
// 2^63: the lowest double above the signed 64-bit range; -2^63 itself is still inside.
constexpr double int64Bound = 9223372036854775808.0;

std::int64_t truncatedToInt64(double value)
{
    const double whole = std::trunc(value);
    if (!(whole >= -int64Bound && whole < int64Bound)) {
        fatalError("window duration " + std::to_string(value) + " does not fit a 64-bit integer");
    }
    return static_cast<std::int64_t>(whole);
}

} // namespace

std::string durationCaption(double minutes)
{
    // Checked first, so that a seven-day window reads as a week and not as 168 hours.
    if (minutes == weekMinutes) {
        return "týden";
    }
    if (std::fmod(minutes, minutesPerHour) == 0) {
        return std::to_string(truncatedToInt64(minutes / minutesPerHour)) + " h";
    }
    return std::to_string(truncatedToInt64(minutes)) + " min";
}

} // namespace vantrel::limits
