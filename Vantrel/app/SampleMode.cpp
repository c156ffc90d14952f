#include "Vantrel/app/SampleMode.h"

#include "Vantrel/telemetry/SampleJson.h"
#include "Vantrel/telemetry/SystemSampler.h"

#include <chrono>
#include <iostream>
#include <string_view>
#include <thread>

namespace vantrel {

bool selectsSampleMode(std::span<char*> arguments)
{
    for (const char* argument : arguments)
        if (argument != nullptr && std::string_view(argument) == "--sample")
            return true;
    return false;
}

int runSampleMode(SystemSampler& sampler, const std::function<void()>& wait, std::ostream& out)
{
    // Load figures are differences between two calls: the first only primes the sampler.
    sampler.sample();
    wait();
    out << sampleRecordJson(sampler.sample()) << '\n' << std::flush;
    return 0;
}

int runSampleMode()
{
    SystemSampler sampler;
    return runSampleMode(
        sampler, [] { std::this_thread::sleep_for(std::chrono::seconds(1)); }, std::cout);
}

} // namespace vantrel
