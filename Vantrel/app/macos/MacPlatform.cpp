#include "Vantrel/app/Platform.h"
#include "Vantrel/app/TrayHosts.h"
#include "Vantrel/app/macos/AppKitCalls.h"
#include "Vantrel/app/macos/MacDesktop.h"

namespace vantrel::platform {

std::optional<std::string> startProblem()
{
    return std::nullopt;
}

void prepareApplication()
{}

std::unique_ptr<Desktop> createDesktop()
{
    // Qt turns a program started outside a bundle into an ordinary application; an accessory it stays.
    appkit::becomeAccessoryApplication();
    return std::make_unique<MacDesktop>();
}

std::unique_ptr<TrayHosts> createTrayHosts()
{
    // The menu bar always has room for the status item.
    return nullptr;
}

IdentificationSources identificationSources()
{
    // NSWorkspace names the application itself, as the visibility rule compares it.
    return {};
}

} // namespace vantrel::platform
