#pragma once

#include <string>

namespace vantrel::limits {

// "týden" for 10080, "<d / 60> h" for whole hours (0 included), otherwise "<d> min", both truncated
// toward zero. A whole-number form outside the signed 64-bit range stops the program.
std::string durationCaption(double minutes);

} // namespace vantrel::limits
