#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct wl_display;
struct wl_interface;
struct wl_registry;

namespace vantrel {

// A listener's handler for an event that is of no interest.
template <typename Proxy, typename... Arguments>
void ignore(void* /*data*/, Proxy* /*proxy*/, Arguments... /*values*/)
{}

// Vantrel's own connection to the Wayland compositor, beside Qt's X11 one: its socket is watched by the
// Qt event loop, which dispatches the events as they arrive.
class WaylandConnection : public QObject {
    Q_OBJECT

public:
    // Connects to the compositor that WAYLAND_DISPLAY names and learns its globals; nothing when there
    // is none to connect to.
    static std::unique_ptr<WaylandConnection> connect();
    ~WaylandConnection() override;
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    // The interfaces the compositor offers this client.
    std::vector<std::string> interfaces() const;
    // A proxy for the global of that interface, at the lower of its version and the one given; null
    // when the compositor does not offer it.
    void* bind(const wl_interface& interface, std::uint32_t version);
    // Sends the requests made so far and waits until the compositor has answered them.
    bool roundtrip();

signals:
    // The compositor closed the connection, or sent what could not be read.
    void lost();

private:
    struct Global {
        std::uint32_t name;
        std::string interface;
        std::uint32_t version;
    };

    explicit WaylandConnection(wl_display* display);
    void dispatch();
    void fail();

    static void announce(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                         std::uint32_t version);
    static void withdraw(void* data, wl_registry* registry, std::uint32_t name);

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    std::vector<Global> globals_;
    QSocketNotifier notifier_;
};

} // namespace vantrel
