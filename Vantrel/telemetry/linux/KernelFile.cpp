#include "Vantrel/telemetry/linux/KernelFile.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace vantrel::linux_source {
namespace {

constexpr std::size_t initialCapacity = 4096;

int openForReading(const std::string& path)
{
    int descriptor = -1;
    do
        descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

// Reads from offset 0 to the end; a seq_file may hand out a long file in several pieces.
bool readFromStart(int descriptor, std::vector<char>& buffer, std::size_t& length)
{
    length = 0;
    for (;;) {
        if (length == buffer.size())
            buffer.resize(buffer.size() * 2);
        const ssize_t got =
            ::pread(descriptor, buffer.data() + length, buffer.size() - length, static_cast<off_t>(length));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return false;
        if (got == 0)
            return true;
        length += static_cast<std::size_t>(got);
    }
}

} // namespace

KernelFile::KernelFile(std::string path) : filePath(std::move(path)), buffer(initialCapacity)
{}

KernelFile::~KernelFile()
{
    close();
}

KernelFile::KernelFile(KernelFile&& other) noexcept
    : filePath(std::move(other.filePath)), descriptor(std::exchange(other.descriptor, -1)),
      buffer(std::move(other.buffer)), length(other.length)
{}

KernelFile& KernelFile::operator=(KernelFile&& other) noexcept
{
    if (this != &other) {
        close();
        filePath = std::move(other.filePath);
        descriptor = std::exchange(other.descriptor, -1);
        buffer = std::move(other.buffer);
        length = other.length;
    }
    return *this;
}

std::optional<std::string_view> KernelFile::read()
{
    if (descriptor >= 0 && readAll())
        return std::string_view(buffer.data(), length);
    // Never opened, or the file went away (an interface that was removed): try once more with a fresh open.
    close();
    descriptor = openForReading(filePath);
    if (descriptor < 0 || !readAll()) {
        close();
        return std::nullopt;
    }
    return std::string_view(buffer.data(), length);
}

bool KernelFile::readAll()
{
    if (buffer.empty())
        buffer.resize(initialCapacity);
    return readFromStart(descriptor, buffer, length);
}

void KernelFile::close()
{
    if (descriptor >= 0)
        ::close(descriptor); // Not retried on EINTR: the descriptor is gone either way.
    descriptor = -1;
}

std::optional<std::string> readWholeFile(const std::string& path)
{
    const int descriptor = openForReading(path);
    if (descriptor < 0)
        return std::nullopt;
    std::vector<char> buffer(initialCapacity);
    std::size_t length = 0;
    const bool ok = readFromStart(descriptor, buffer, length);
    ::close(descriptor);
    if (!ok)
        return std::nullopt;
    return std::string(buffer.data(), length);
}

} // namespace vantrel::linux_source
