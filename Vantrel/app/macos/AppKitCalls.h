#pragma once

#include "Vantrel/app/ActiveApplication.h"

#include <QtGui/qwindowdefs.h>

#include <functional>
#include <memory>
#include <optional>

// The few things only Cocoa offers, called from C++ (the Objective-C++ files beside this one).
namespace vantrel::appkit {

// No Dock icon and no main menu: NSApplicationActivationPolicyAccessory.
void becomeAccessoryApplication();

// NSWorkspace's frontmost application: its localizedName and process identifier; nothing when none is.
std::optional<ActiveApplication> frontmostApplication();

// Calls `activated` on the main thread for every NSWorkspaceDidActivateApplicationNotification, observed on
// NSWorkspace's own notification centre, for as long as it lives.
class ActivationObserver {
public:
    explicit ActivationObserver(std::function<void()> activated);
    ~ActivationObserver();
    ActivationObserver(const ActivationObserver&) = delete;
    ActivationObserver& operator=(const ActivationObserver&) = delete;
    ActivationObserver(ActivationObserver&&) = delete;
    ActivationObserver& operator=(ActivationObserver&&) = delete;

private:
    struct Registration;
    std::unique_ptr<Registration> registration;
};

// The panel's NSWindow, behind the NSView that QWidget::winId() names: the floating level, on every Space
// and beside full-screen applications, visible while the application is inactive, and a panel that never
// activates the application. Qt sets its own level and style when it shows a window, so this follows
// every show.
void floatOnEverySpace(WId view);

} // namespace vantrel::appkit
