#pragma once

#include "Vantrel/app/FrontmostWindow.h"

#include <optional>
#include <string>
#include <unordered_map>

// GIO names the type so; declared here to keep GLib out of the includers.
using GAppInfoMonitor = struct _GAppInfoMonitor; // NOLINT(bugprone-reserved-identifier)

namespace vantrel {

// The name users see for a window's application: the Name of its desktop entry, in their language, found
// the way the desktop itself finds it. First the entry that claims the window's class (StartupWMClass,
// the X11 instance before the class), then the entry whose file is named after the app_id or class
// (as given, then in lower case) or after the X11 instance. A user's own entry shadows a system one of the
// same name; an entry marked Hidden counts as removed. GIO reads the entries; answers are kept per window
// identity until the application directories change.
class DesktopEntryNames {
public:
    DesktopEntryNames();
    ~DesktopEntryNames();
    DesktopEntryNames(const DesktopEntryNames&) = delete;
    DesktopEntryNames& operator=(const DesktopEntryNames&) = delete;
    DesktopEntryNames(DesktopEntryNames&&) = delete;
    DesktopEntryNames& operator=(DesktopEntryNames&&) = delete;

    // Nothing when no entry names the window (or the window has no identity at all).
    std::optional<std::string> nameFor(const FrontmostWindow& window);

    // How many lookups went to the entries themselves rather than to the kept answers.
    int lookups() const { return lookups_; }

private:
    std::optional<std::string> lookUp(const FrontmostWindow& window);
    const std::unordered_map<std::string, std::string>& namesByWindowClass();
    void forget();

    GAppInfoMonitor* monitor_;
    unsigned long changedHandler_ = 0;
    std::unordered_map<std::string, std::optional<std::string>> byIdentity_;
    std::optional<std::unordered_map<std::string, std::string>> byWindowClass_;
    int lookups_ = 0;
};

} // namespace vantrel
