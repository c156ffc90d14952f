#include "Vantrel/app/macos/AppKitCalls.h"

#import <AppKit/AppKit.h>
#include <utility>

namespace vantrel::appkit {

std::optional<ActiveApplication> frontmostApplication()
{
    NSRunningApplication* application = NSWorkspace.sharedWorkspace.frontmostApplication;
    if (application == nil)
        return std::nullopt;
    ActiveApplication active;
    active.pid = application.processIdentifier;
    if (const char* name = application.localizedName.UTF8String)
        active.localizedName = name;
    return active;
}

struct ActivationObserver::Registration {
    id<NSObject> token = nil; // retained: the registration lasts as long as the centre's answer
};

ActivationObserver::ActivationObserver(std::function<void()> activated)
    : registration(std::make_unique<Registration>())
{
    const auto callback = std::move(activated);
    registration->token = [[NSWorkspace.sharedWorkspace.notificationCenter
        addObserverForName:NSWorkspaceDidActivateApplicationNotification
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification*) {
                  callback();
                }] retain];
}

ActivationObserver::~ActivationObserver()
{
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:registration->token];
    [registration->token release];
}

} // namespace vantrel::appkit
