#pragma once

#include "Vantrel/app/FrontmostIdentifier.h"
#include "Vantrel/limits/UsageInterpretation.h"
#include "Vantrel/telemetry/PlatformSource.h"

#include <filesystem>
#include <functional>
#include <string>

namespace vantrel {

class Desktop;
class TrayHosts;

// What the delegate takes from its surroundings: the desktop and how it names applications, its tray hosts,
// the sources of the figures, the limits script's location and the clock. The program uses the real ones;
// tests put in their own.
struct AppServices {
    Desktop* desktop = nullptr;
    // Nothing: the tray item has its place from the start, as in a macOS menu bar.
    TrayHosts* trayHosts = nullptr;
    IdentificationSources identification;
    PlatformOptions telemetry;
    std::function<int()> activeProcessorCount;
    // Where vantrel.py lies; asked afresh for every limits run.
    std::function<std::filesystem::path()> resourceDirectory;
    std::function<limits::UsageContext()> usageContext;
    // Seconds since 1970-01-01 00:00 UTC.
    std::function<double()> now;
    // One line for the user on standard error.
    std::function<void(const std::string&)> notice;
};

AppServices productionServices(Desktop& desktop, TrayHosts* trayHosts);

} // namespace vantrel
