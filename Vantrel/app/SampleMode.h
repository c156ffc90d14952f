#pragma once

#include <iosfwd>
#include <span>

namespace vantrel {

// True when any argument, the program path included, is exactly "--sample".
bool selectsSampleMode(std::span<char*> arguments);

// Samples twice, one second apart, and prints the second record as JSON. Returns the exit status.
int runSampleMode(std::ostream& out);
int runSampleMode();

} // namespace vantrel
