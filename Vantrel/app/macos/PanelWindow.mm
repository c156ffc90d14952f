#include "Vantrel/app/macos/AppKitCalls.h"

#import <AppKit/AppKit.h>

namespace vantrel::appkit {

void floatOnEverySpace(WId view)
{
    NSWindow* window = reinterpret_cast<NSView*>(view).window;
    if (window == nil)
        return;
    window.level = NSFloatingWindowLevel;
    window.collectionBehavior =
        NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
    window.hidesOnDeactivate = NO;
    // Qt makes a tool window an NSPanel; only a panel can leave the application inactive when clicked.
    if ([window isKindOfClass:NSPanel.class]) {
        id object = window;
        NSPanel* panel = object;
        panel.styleMask |= NSWindowStyleMaskNonactivatingPanel;
        panel.floatingPanel = YES;
        panel.becomesKeyOnlyIfNeeded = YES;
    }
}

} // namespace vantrel::appkit
