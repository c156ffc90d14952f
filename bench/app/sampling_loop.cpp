// The sampling alone, at the panel's pace: one record of this machine every 2 s, nothing else. The peer
// that shows how much of the running program's CPU time the readings themselves take.
#include "Vantrel/telemetry/SystemSampler.h"

#include <chrono>
#include <thread>

int main()
{
    vantrel::SystemSampler sampler;
    for (;;) {
        static_cast<void>(sampler.sample());
        std::this_thread::sleep_for(std::chrono::seconds(2));
    }
}
