#pragma once

#include "Vantrel/app/FrontmostIdentifier.h"

#include <memory>
#include <optional>
#include <string>

namespace vantrel {

class Desktop;
class TrayHosts;

// What differs between platforms around the application's start, implemented once per platform.
namespace platform {

// One line for standard error when the application cannot run here; nothing when it can.
std::optional<std::string> startProblem();

// Before the Qt application is created: settings Qt reads when it starts.
void prepareApplication();

// Once the Qt application runs: the desktop it runs on; nothing (with a line on standard error) when the
// desktop cannot be reached after all.
std::unique_ptr<Desktop> createDesktop();

// Once the Qt application runs: who tells which tray hosts come and go; nothing where a place for the tray
// item is always there.
std::unique_ptr<TrayHosts> createTrayHosts();

// How the application behind a window is identified here.
IdentificationSources identificationSources();

} // namespace platform
} // namespace vantrel
