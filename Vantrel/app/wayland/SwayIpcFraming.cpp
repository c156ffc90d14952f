#include "Vantrel/app/wayland/SwayIpcFraming.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vantrel::sway {
namespace {

constexpr std::string_view magic = "i3-ipc";
constexpr std::size_t headerSize = magic.size() + 2 * sizeof(std::uint32_t);

void appendWord(std::string& out, std::uint32_t word)
{
    std::array<char, sizeof word> bytes{};
    std::memcpy(bytes.data(), &word, sizeof word);
    out.append(bytes.data(), bytes.size());
}

std::uint32_t wordAt(const std::string& buffer, std::size_t offset)
{
    std::uint32_t word = 0;
    std::memcpy(&word, buffer.data() + offset, sizeof word);
    return word;
}

} // namespace

std::string encodeMessage(MessageType type, std::string_view payload)
{
    std::string message(magic);
    appendWord(message, static_cast<std::uint32_t>(payload.size()));
    appendWord(message, static_cast<std::uint32_t>(type));
    message.append(payload);
    return message;
}

void MessageReader::append(std::string_view bytes)
{
    if (!failed_) {
        buffer_.append(bytes);
    }
}

std::optional<Message> MessageReader::next()
{
    if (failed_) {
        return std::nullopt;
    }
    const std::size_t comparable = std::min(buffer_.size(), magic.size());
    if (std::string_view(buffer_).substr(0, comparable) != magic.substr(0, comparable)) {
        failed_ = true;
        buffer_.clear();
        return std::nullopt;
    }
    if (buffer_.size() < headerSize) {
        return std::nullopt;
    }
    const std::uint32_t length = wordAt(buffer_, magic.size());
    if (length > maximumPayload) {
        failed_ = true;
        buffer_.clear();
        return std::nullopt;
    }
    if (buffer_.size() < headerSize + length) {
        return std::nullopt;
    }
    Message message{wordAt(buffer_, magic.size() + sizeof(std::uint32_t)),
                    buffer_.substr(headerSize, length)};
    buffer_.erase(0, headerSize + length);
    return message;
}

} // namespace vantrel::sway
