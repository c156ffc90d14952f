#include "Vantrel/app/wayland/ForeignToplevelSource.h"

#include "Vantrel/app/wayland/WaylandConnection.h"

#include <span>
#include <wlr-foreign-toplevel-management-unstable-v1-client.h>

namespace vantrel {
namespace {

// The version whose events the listener below handles (3 added "parent").
constexpr std::uint32_t protocolVersion = 3;

ToplevelTracker::Handle handleOf(zwlr_foreign_toplevel_handle_v1* handle)
{
    return reinterpret_cast<ToplevelTracker::Handle>(handle);
}

} // namespace

std::unique_ptr<ForeignToplevelSource> ForeignToplevelSource::create(WaylandConnection& connection)
{
    auto* manager = static_cast<zwlr_foreign_toplevel_manager_v1*>(
        connection.bind(zwlr_foreign_toplevel_manager_v1_interface, protocolVersion));
    if (manager == nullptr) {
        return nullptr;
    }
    std::unique_ptr<ForeignToplevelSource> source(new ForeignToplevelSource(manager));
    QObject::connect(&connection, &WaylandConnection::lost, source.get(),
                     &ForeignToplevelSource::connectionLost);
    // The toplevels that exist already arrive now.
    return connection.roundtrip() ? std::move(source) : nullptr;
}

ForeignToplevelSource::ForeignToplevelSource(zwlr_foreign_toplevel_manager_v1* manager) : manager_(manager)
{
    static const zwlr_foreign_toplevel_manager_v1_listener listener{&ForeignToplevelSource::toplevel,
                                                                    &ForeignToplevelSource::finished};
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &listener, this);
}

ForeignToplevelSource::~ForeignToplevelSource()
{
    if (manager_ != nullptr) {
        zwlr_foreign_toplevel_manager_v1_destroy(manager_);
    }
}

std::optional<FrontmostWindow> ForeignToplevelSource::frontmost() const
{
    const auto appId = tracker_.activatedAppId();
    if (!appId) {
        return std::nullopt;
    }
    FrontmostWindow window;
    window.appId = *appId;
    return window;
}

void ForeignToplevelSource::connectionLost()
{
    announceIf(tracker_.clear());
    emit lost();
}

void ForeignToplevelSource::toplevel(void* data, zwlr_foreign_toplevel_manager_v1* /*manager*/,
                                     zwlr_foreign_toplevel_handle_v1* handle)
{
    using Handle = zwlr_foreign_toplevel_handle_v1;
    static const zwlr_foreign_toplevel_handle_v1_listener listener{
        &ignore<Handle, const char*>,   &ForeignToplevelSource::appId, &ignore<Handle, wl_output*>,
        &ignore<Handle, wl_output*>,    &ForeignToplevelSource::state, &ForeignToplevelSource::done,
        &ForeignToplevelSource::closed, &ignore<Handle, Handle*>};
    static_cast<ForeignToplevelSource*>(data)->tracker_.created(handleOf(handle));
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &listener, data);
}

void ForeignToplevelSource::finished(void* data, zwlr_foreign_toplevel_manager_v1* manager)
{
    auto* source = static_cast<ForeignToplevelSource*>(data);
    zwlr_foreign_toplevel_manager_v1_destroy(manager);
    source->manager_ = nullptr;
    source->announceIf(source->tracker_.clear());
}

void ForeignToplevelSource::appId(void* data, zwlr_foreign_toplevel_handle_v1* handle, const char* appId)
{
    static_cast<ForeignToplevelSource*>(data)->tracker_.appIdChanged(handleOf(handle), appId);
}

void ForeignToplevelSource::state(void* data, zwlr_foreign_toplevel_handle_v1* handle, wl_array* states)
{
    const std::span<const std::uint32_t> values(static_cast<const std::uint32_t*>(states->data),
                                                states->size / sizeof(std::uint32_t));
    static_cast<ForeignToplevelSource*>(data)->tracker_.stateChanged(handleOf(handle), values);
}

void ForeignToplevelSource::done(void* data, zwlr_foreign_toplevel_handle_v1* handle)
{
    auto* source = static_cast<ForeignToplevelSource*>(data);
    source->announceIf(source->tracker_.done(handleOf(handle)));
}

void ForeignToplevelSource::closed(void* data, zwlr_foreign_toplevel_handle_v1* handle)
{
    auto* source = static_cast<ForeignToplevelSource*>(data);
    const bool changed = source->tracker_.closed(handleOf(handle));
    zwlr_foreign_toplevel_handle_v1_destroy(handle);
    source->announceIf(changed);
}

} // namespace vantrel
