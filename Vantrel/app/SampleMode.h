#pragma once

#include <functional>
#include <iosfwd>
#include <span>

namespace vantrel {

class SystemSampler;

// True when any argument, the program path included, is exactly "--sample".
bool selectsSampleMode(std::span<char*> arguments);

// Primes the sampler, waits, samples again and prints that second record as JSON and one line feed.
// Returns the exit status.
int runSampleMode(SystemSampler& sampler, const std::function<void()>& wait, std::ostream& out);

// The command-line mode: a fresh sampler of this machine, one second between the two samples, standard
// output.
int runSampleMode();

} // namespace vantrel
