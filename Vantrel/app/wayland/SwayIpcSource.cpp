#include "Vantrel/app/wayland/SwayIpcSource.h"

#include "Vantrel/app/wayland/SwayTree.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace vantrel {

std::unique_ptr<SwayIpcSource> SwayIpcSource::connectTo(const std::string& socketPath)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.empty() || socketPath.size() >= sizeof address.sun_path) {
        return nullptr;
    }
    std::memcpy(address.sun_path, socketPath.data(), socketPath.size());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        return nullptr;
    }
    // A local socket connects or fails at once.
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(socket);
        return nullptr;
    }
    std::unique_ptr<SwayIpcSource> source(new SwayIpcSource(socket));
    source->send(sway::MessageType::subscribe, R"(["window","workspace"])");
    source->requestTree();
    return source->socket_ >= 0 ? std::move(source) : nullptr;
}

SwayIpcSource::SwayIpcSource(int socket) : socket_(socket), notifier_(socket, QSocketNotifier::Read)
{
    QObject::connect(&notifier_, &QSocketNotifier::activated, this, &SwayIpcSource::readMessages);
}

SwayIpcSource::~SwayIpcSource()
{
    notifier_.setEnabled(false);
    if (socket_ >= 0) {
        ::close(socket_);
    }
}

void SwayIpcSource::send(sway::MessageType type, std::string_view payload)
{
    const std::string message = sway::encodeMessage(type, payload);
    std::size_t written = 0;
    while (socket_ >= 0 && written < message.size()) {
        // Requests are a few bytes: the socket's buffer takes them whole unless sway stopped reading.
        const ssize_t result =
            ::send(socket_, message.data() + written, message.size() - written, MSG_NOSIGNAL);
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result <= 0) {
            dropConnection();
            return;
        }
        written += static_cast<std::size_t>(result);
    }
}

void SwayIpcSource::readMessages()
{
    std::array<char, 65536> buffer{};
    const ssize_t count = ::recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (count <= 0) {
        dropConnection();
        return;
    }
    reader_.append(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
    while (const auto message = reader_.next()) {
        if (message->type == static_cast<std::uint32_t>(sway::MessageType::getTree)) {
            treePending_ = false;
            update(sway::focusedWindow(message->payload));
            if (treeStale_) {
                requestTree();
            }
        } else if (message->type == sway::windowEvent || message->type == sway::workspaceEvent) {
            requestTree();
        }
    }
    if (reader_.failed()) {
        dropConnection();
    }
}

void SwayIpcSource::requestTree()
{
    if (treePending_) {
        treeStale_ = true;
        return;
    }
    treePending_ = true;
    treeStale_ = false;
    send(sway::MessageType::getTree, {});
}

void SwayIpcSource::dropConnection()
{
    if (socket_ < 0) {
        return;
    }
    notifier_.setEnabled(false);
    ::close(socket_);
    socket_ = -1;
    update(std::nullopt);
    emit lost();
}

void SwayIpcSource::update(std::optional<FrontmostWindow> frontmost)
{
    if (frontmost != frontmost_) {
        frontmost_ = std::move(frontmost);
        emit frontmostChanged();
    }
}

} // namespace vantrel
