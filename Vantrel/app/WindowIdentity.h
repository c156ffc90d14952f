#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vantrel {

// The class part of a WM_CLASS property, which holds "instance\0class\0"; empty when it has none.
std::string windowClassFromWmClass(std::string_view property);

// The process name in the text of /proc/PID/comm (the kernel cuts it at 15 bytes and ends it with a
// line feed).
std::string processNameFromComm(std::string_view contents);

// The name of a running process, or empty when it cannot be read (gone, or no such process).
std::string readProcessName(std::int64_t pid, const std::filesystem::path& procRoot = "/proc");

} // namespace vantrel
