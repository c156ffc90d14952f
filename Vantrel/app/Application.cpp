#include "Vantrel/app/Application.h"

#include <cstdio>

namespace vantrel {

int runApplication(int, char**)
{
    std::fputs("vantrel: the panel is not built yet; run \"vantrel --sample\" for a telemetry record.\n", stderr);
    return 2;
}

} // namespace vantrel
