#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel::sway {

// sway's IPC (the i3 protocol): every message is "i3-ipc", the payload's length and the message type as
// 32-bit numbers in the machine's byte order, then the payload (JSON).
enum class MessageType : std::uint32_t { runCommand = 0, subscribe = 2, getTree = 4 };

// Events carry the high bit in their type.
inline constexpr std::uint32_t eventBit = 0x80000000U;
inline constexpr std::uint32_t workspaceEvent = eventBit | 0U;
inline constexpr std::uint32_t windowEvent = eventBit | 3U;

// Longer payloads are taken for garbage: a tree of hundreds of windows is well under a megabyte.
inline constexpr std::uint32_t maximumPayload = 16U * 1024U * 1024U;

std::string encodeMessage(MessageType type, std::string_view payload);

struct Message {
    std::uint32_t type = 0;
    std::string payload;
};

// Cuts the byte stream from the socket into messages. Anything that is not a message (a wrong magic
// string, an absurd length) fails the reader for good: the stream cannot be resynchronised.
class MessageReader {
public:
    void append(std::string_view bytes);
    // The next whole message, once all of it has arrived.
    std::optional<Message> next();
    bool failed() const { return failed_; }

private:
    std::string buffer_;
    bool failed_ = false;
};

} // namespace vantrel::sway
