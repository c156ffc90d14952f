#include "Vantrel/app/wayland/WaylandConnection.h"

#include <algorithm>
#include <chrono>
#include <poll.h>
#include <wayland-client.h>

namespace vantrel {
namespace {

// A compositor answers in microseconds; one that has not within this is taken for gone.
constexpr std::chrono::milliseconds roundtripTimeout{1000};

} // namespace

std::unique_ptr<WaylandConnection> WaylandConnection::connect()
{
    wl_display* display = wl_display_connect(nullptr);
    if (display == nullptr) {
        return nullptr;
    }
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
    if (!connection->roundtrip()) {
        return nullptr;
    }
    return connection;
}

WaylandConnection::WaylandConnection(wl_display* display)
    : display_(display), notifier_(wl_display_get_fd(display), QSocketNotifier::Read)
{
    static const wl_registry_listener listener{&WaylandConnection::announce, &WaylandConnection::withdraw};
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &listener, this);
    QObject::connect(&notifier_, &QSocketNotifier::activated, this, &WaylandConnection::dispatch);
}

WaylandConnection::~WaylandConnection()
{
    notifier_.setEnabled(false);
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

std::vector<std::string> WaylandConnection::interfaces() const
{
    std::vector<std::string> names;
    names.reserve(globals_.size());
    for (const Global& global : globals_) {
        names.push_back(global.interface);
    }
    return names;
}

void* WaylandConnection::bind(const wl_interface& interface, std::uint32_t version)
{
    const auto found = std::find_if(globals_.begin(), globals_.end(), [&interface](const Global& global) {
        return global.interface == interface.name;
    });
    if (found == globals_.end()) {
        return nullptr;
    }
    return wl_registry_bind(registry_, found->name, &interface, std::min(version, found->version));
}

bool WaylandConnection::roundtrip()
{
    // libwayland's own roundtrip would wait for ever on a compositor that does not answer.
    bool answered = false;
    static const wl_callback_listener listener{
        [](void* data, wl_callback* /*callback*/, std::uint32_t /*serial*/) {
            *static_cast<bool*>(data) = true;
        }};
    wl_callback* callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &listener, &answered);
    const auto deadline = std::chrono::steady_clock::now() + roundtripTimeout;
    bool broken = false;
    while (!answered && !broken) {
        while (wl_display_prepare_read(display_) != 0) {
            broken = wl_display_dispatch_pending(display_) < 0;
            if (broken || answered) {
                break;
            }
        }
        if (broken || answered) {
            break;
        }
        wl_display_flush(display_);
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd socket{wl_display_get_fd(display_), POLLIN, 0};
        if (left.count() <= 0 || poll(&socket, 1, static_cast<int>(left.count())) <= 0) {
            wl_display_cancel_read(display_);
            break;
        }
        broken = wl_display_read_events(display_) < 0 || wl_display_dispatch_pending(display_) < 0;
    }
    wl_callback_destroy(callback);
    if (!answered) {
        fail();
    }
    return answered;
}

void WaylandConnection::dispatch()
{
    // The notifier says the socket is readable, so reading cannot block; events already queued are
    // dispatched first, as libwayland requires before a read.
    while (wl_display_prepare_read(display_) != 0) {
        if (wl_display_dispatch_pending(display_) < 0) {
            fail();
            return;
        }
    }
    if (wl_display_read_events(display_) < 0 || wl_display_dispatch_pending(display_) < 0) {
        fail();
        return;
    }
    wl_display_flush(display_);
}

void WaylandConnection::fail()
{
    if (notifier_.isEnabled()) {
        notifier_.setEnabled(false);
        emit lost();
    }
}

void WaylandConnection::announce(void* data, wl_registry* /*registry*/, std::uint32_t name,
                                 const char* interface, std::uint32_t version)
{
    static_cast<WaylandConnection*>(data)->globals_.push_back(Global{name, interface, version});
}

void WaylandConnection::withdraw(void* data, wl_registry* /*registry*/, std::uint32_t name)
{
    auto& globals = static_cast<WaylandConnection*>(data)->globals_;
    std::erase_if(globals, [name](const Global& global) { return global.name == name; });
}

} // namespace vantrel
