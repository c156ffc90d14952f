#include "Vantrel/app/AppServices.h"

#include "Vantrel/app/Platform.h"
#include "Vantrel/app/PlatformWording.h"
#include "Vantrel/limits/LimitsScript.h"

#include <chrono>
#include <cstdio>
#include <unistd.h>

namespace vantrel {
namespace {

int onlineProcessorCount()
{
    const long count = sysconf(_SC_NPROCESSORS_ONLN);
    return count > 0 ? static_cast<int>(count) : 1;
}

double secondsSinceEpoch()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

void printLine(const std::string& line)
{
    static_cast<void>(std::fprintf(stderr, "%s\n", line.c_str()));
}

} // namespace

AppServices productionServices(Desktop& desktop, TrayHosts* trayHosts)
{
    return {&desktop,
            trayHosts,
            platform::identificationSources(),
            PlatformOptions{},
            onlineProcessorCount,
            [] { return limits::resourceDirectory(); },
            [] { return limits::currentUsageContext(platformWording.machineName); },
            secondsSinceEpoch,
            printLine};
}

} // namespace vantrel
