#pragma once

#include "Vantrel/app/wayland/SwayIpcFraming.h"
#include "Vantrel/app/wayland/ToplevelSource.h"

#include <QSocketNotifier>

#include <memory>
#include <string>

namespace vantrel {

// The focused window as sway's IPC tells it, with its process: subscribed to window and workspace
// events, the source asks for the tree after each and reads the focused window from it. The socket is
// watched by the Qt event loop.
class SwayIpcSource : public ToplevelSource {
    Q_OBJECT

public:
    // Connects to the socket SWAYSOCK names; nothing when that fails.
    static std::unique_ptr<SwayIpcSource> connectTo(const std::string& socketPath);
    ~SwayIpcSource() override;
    SwayIpcSource(const SwayIpcSource&) = delete;
    SwayIpcSource& operator=(const SwayIpcSource&) = delete;

    std::optional<FrontmostWindow> frontmost() const override { return frontmost_; }

private:
    explicit SwayIpcSource(int socket);
    void send(sway::MessageType type, std::string_view payload);
    void readMessages();
    void requestTree();
    void dropConnection();
    void update(std::optional<FrontmostWindow> frontmost);

    int socket_;
    QSocketNotifier notifier_;
    sway::MessageReader reader_;
    std::optional<FrontmostWindow> frontmost_;
    // A tree asked for and not yet received; events meanwhile ask for one more after it.
    bool treePending_ = false;
    bool treeStale_ = false;
};

} // namespace vantrel
