#include "Vantrel/app/WindowIdentity.h"

#include <array>
#include <fstream>

namespace vantrel {

std::string windowClassFromWmClass(std::string_view property)
{
    const auto endOfInstance = property.find('\0');
    if (endOfInstance == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = property.substr(endOfInstance + 1);
    return std::string(rest.substr(0, rest.find('\0')));
}

std::string processNameFromComm(std::string_view contents)
{
    return std::string(contents.substr(0, contents.find('\n')));
}

std::string readProcessName(std::int64_t pid, const std::filesystem::path& procRoot)
{
    if (pid <= 0) {
        return {};
    }
    std::ifstream file(procRoot / std::to_string(pid) / "comm", std::ios::binary);
    if (!file) {
        return {};
    }
    // The kernel's name is at most 15 bytes and a line feed; more is read only to be safe.
    std::array<char, 64> contents{};
    file.read(contents.data(), contents.size());
    return processNameFromComm(std::string_view(contents.data(), static_cast<std::size_t>(file.gcount())));
}

} // namespace vantrel
