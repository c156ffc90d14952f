#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::linux_source {

// A /proc or /sys file kept open between reads: each read() starts again at offset 0, which makes the kernel
// generate the text afresh, and so saves the open and close of every sample.
class KernelFile {
public:
    explicit KernelFile(std::string path);
    ~KernelFile();
    KernelFile(KernelFile&& other) noexcept;
    KernelFile& operator=(KernelFile&& other) noexcept;
    KernelFile(const KernelFile&) = delete;
    KernelFile& operator=(const KernelFile&) = delete;

    // The whole current text, valid until the next read(); absent when the file cannot be opened or read.
    std::optional<std::string_view> read();
    const std::string& path() const { return filePath; }

private:
    bool readAll();
    void close();

    std::string filePath;
    int descriptor = -1;
    std::vector<char> buffer;
    std::size_t length = 0;
};

// The text of a file read once (open, read, close); absent when unreadable.
std::optional<std::string> readWholeFile(const std::string& path);

} // namespace vantrel::linux_source
