#include "Vantrel/app/macos/AppKitCalls.h"

#import <AppKit/AppKit.h>

namespace vantrel::appkit {

void becomeAccessoryApplication()
{
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

} // namespace vantrel::appkit
