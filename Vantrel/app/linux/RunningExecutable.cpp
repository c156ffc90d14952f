#include "Vantrel/app/RunningExecutable.h"

#include <filesystem>
#include <system_error>

namespace vantrel {

ExecutableLookup runningExecutable()
{
    std::error_code error;
    // The kernel's link is already free of symbolic links.
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return {{}, "/proc/self/exe: " + error.message()};
    return {executable.string(), {}};
}

} // namespace vantrel
