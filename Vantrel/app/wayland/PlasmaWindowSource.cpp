#include "Vantrel/app/wayland/PlasmaWindowSource.h"

#include "Vantrel/app/wayland/WaylandConnection.h"

#include <plasma-window-management-client.h>

namespace vantrel {
namespace {

// The version whose events the listeners below handle (16 added the resource name). KWin 5.27 offers 16.
constexpr std::uint32_t protocolVersion = 16;

PlasmaWindowTracker::Handle handleOf(org_kde_plasma_window* window)
{
    return reinterpret_cast<PlasmaWindowTracker::Handle>(window);
}

// A window proxy goes with its own request since version 4.
void release(org_kde_plasma_window* window)
{
    if (wl_proxy_get_version(reinterpret_cast<wl_proxy*>(window)) >=
        ORG_KDE_PLASMA_WINDOW_DESTROY_SINCE_VERSION) {
        org_kde_plasma_window_destroy(window);
    } else {
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(window));
    }
}

} // namespace

std::unique_ptr<PlasmaWindowSource> PlasmaWindowSource::create(WaylandConnection& connection)
{
    auto* manager = static_cast<org_kde_plasma_window_management*>(
        connection.bind(org_kde_plasma_window_management_interface, protocolVersion));
    if (manager == nullptr) {
        return nullptr;
    }
    std::unique_ptr<PlasmaWindowSource> source(new PlasmaWindowSource(manager));
    QObject::connect(&connection, &WaylandConnection::lost, source.get(),
                     &PlasmaWindowSource::connectionLost);
    // The first answer announces the windows that exist, the second brings their state, so the window in
    // front is known from the start.
    return connection.roundtrip() && connection.roundtrip() ? std::move(source) : nullptr;
}

PlasmaWindowSource::PlasmaWindowSource(org_kde_plasma_window_management* manager) : manager_(manager)
{
    using Manager = org_kde_plasma_window_management;
    static const org_kde_plasma_window_management_listener listener{
        &ignore<Manager, std::uint32_t>, &PlasmaWindowSource::windowById, &ignore<Manager, wl_array*>,
        &ignore<Manager, const char*>, &PlasmaWindowSource::windowByUuid};
    org_kde_plasma_window_management_add_listener(manager_, &listener, this);
}

PlasmaWindowSource::~PlasmaWindowSource()
{
    for (org_kde_plasma_window* window : windows_) {
        release(window);
    }
    org_kde_plasma_window_management_destroy(manager_);
}

void PlasmaWindowSource::follow(org_kde_plasma_window* window)
{
    using Window = org_kde_plasma_window;
    static const org_kde_plasma_window_listener listener{
        &ignore<Window, const char*>,
        &PlasmaWindowSource::appId,
        &PlasmaWindowSource::state,
        &ignore<Window, std::int32_t>,
        &ignore<Window, const char*>,
        &PlasmaWindowSource::unmapped,
        &PlasmaWindowSource::initialState,
        &ignore<Window, Window*>,
        &ignore<Window, std::int32_t, std::int32_t, std::uint32_t, std::uint32_t>,
        &ignore<Window>,
        &PlasmaWindowSource::pid,
        &ignore<Window, const char*>,
        &ignore<Window, const char*>,
        &ignore<Window, const char*, const char*>,
        &ignore<Window, const char*>,
        &ignore<Window, const char*>,
        &PlasmaWindowSource::resourceName};
    windows_.insert(window);
    tracker_.created(handleOf(window));
    org_kde_plasma_window_add_listener(window, &listener, this);
}

void PlasmaWindowSource::forget(org_kde_plasma_window* window)
{
    const bool changed = tracker_.unmapped(handleOf(window));
    windows_.erase(window);
    release(window);
    announceIf(changed);
}

void PlasmaWindowSource::connectionLost()
{
    announceIf(tracker_.clear());
    emit lost();
}

void PlasmaWindowSource::windowById(void* data, org_kde_plasma_window_management* manager, std::uint32_t id)
{
    static_cast<PlasmaWindowSource*>(data)->follow(org_kde_plasma_window_management_get_window(manager, id));
}

void PlasmaWindowSource::windowByUuid(void* data, org_kde_plasma_window_management* manager,
                                      std::uint32_t /*id*/, const char* uuid)
{
    static_cast<PlasmaWindowSource*>(data)->follow(
        org_kde_plasma_window_management_get_window_by_uuid(manager, uuid));
}

void PlasmaWindowSource::appId(void* data, org_kde_plasma_window* window, const char* appId)
{
    auto* source = static_cast<PlasmaWindowSource*>(data);
    source->announceIf(source->tracker_.appIdChanged(handleOf(window), appId));
}

void PlasmaWindowSource::resourceName(void* data, org_kde_plasma_window* window, const char* name)
{
    auto* source = static_cast<PlasmaWindowSource*>(data);
    source->announceIf(source->tracker_.resourceNameChanged(handleOf(window), name));
}

void PlasmaWindowSource::pid(void* data, org_kde_plasma_window* window, std::uint32_t pid)
{
    auto* source = static_cast<PlasmaWindowSource*>(data);
    source->announceIf(source->tracker_.pidChanged(handleOf(window), pid));
}

void PlasmaWindowSource::state(void* data, org_kde_plasma_window* window, std::uint32_t flags)
{
    auto* source = static_cast<PlasmaWindowSource*>(data);
    source->announceIf(source->tracker_.stateChanged(handleOf(window), flags));
}

void PlasmaWindowSource::initialState(void* data, org_kde_plasma_window* window)
{
    auto* source = static_cast<PlasmaWindowSource*>(data);
    source->announceIf(source->tracker_.initialStateDone(handleOf(window)));
}

void PlasmaWindowSource::unmapped(void* data, org_kde_plasma_window* window)
{
    static_cast<PlasmaWindowSource*>(data)->forget(window);
}

} // namespace vantrel
