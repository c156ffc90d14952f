#pragma once

#include "Vantrel/app/wayland/PlasmaWindowTracker.h"
#include "Vantrel/app/wayland/ToplevelSource.h"

#include <memory>
#include <set>

struct org_kde_plasma_window;
struct org_kde_plasma_window_management;

namespace vantrel {

class WaylandConnection;

// The active window as KWin tells it through org_kde_plasma_window_management, with its process. KWin
// offers the protocol only to a program that an installed desktop entry names, by the absolute path in
// its Exec key, with X-KDE-Wayland-Interfaces=org_kde_plasma_window_management.
class PlasmaWindowSource : public ToplevelSource {
    Q_OBJECT

public:
    // Nothing when KWin does not offer the protocol to this program.
    static std::unique_ptr<PlasmaWindowSource> create(WaylandConnection& connection);
    ~PlasmaWindowSource() override;
    PlasmaWindowSource(const PlasmaWindowSource&) = delete;
    PlasmaWindowSource& operator=(const PlasmaWindowSource&) = delete;

    std::optional<FrontmostWindow> frontmost() const override { return tracker_.activeWindow(); }

private:
    explicit PlasmaWindowSource(org_kde_plasma_window_management* manager);
    void follow(org_kde_plasma_window* window);
    void forget(org_kde_plasma_window* window);
    void connectionLost();

    static void windowById(void* data, org_kde_plasma_window_management* manager, std::uint32_t id);
    static void windowByUuid(void* data, org_kde_plasma_window_management* manager, std::uint32_t id,
                             const char* uuid);
    static void appId(void* data, org_kde_plasma_window* window, const char* appId);
    static void resourceName(void* data, org_kde_plasma_window* window, const char* name);
    static void pid(void* data, org_kde_plasma_window* window, std::uint32_t pid);
    static void state(void* data, org_kde_plasma_window* window, std::uint32_t flags);
    static void initialState(void* data, org_kde_plasma_window* window);
    static void unmapped(void* data, org_kde_plasma_window* window);

    org_kde_plasma_window_management* manager_;
    std::set<org_kde_plasma_window*> windows_;
    PlasmaWindowTracker tracker_;
};

} // namespace vantrel
