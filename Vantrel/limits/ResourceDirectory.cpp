#include "Vantrel/limits/Fatal.h"
#include "Vantrel/limits/LimitsScript.h"

#include <system_error>

namespace vantrel::limits {

std::filesystem::path resourceDirectoryOf(const std::filesystem::path& executable)
{
    // /proc/self/exe is already free of symbolic links, so ".." can be resolved lexically.
    std::filesystem::path directory =
        (executable.parent_path() / ".." / "share" / "vantrel").lexically_normal();
    std::error_code error;
    if (!std::filesystem::is_directory(directory, error)) {
        fatalError("resource directory " + directory.string() + " is missing");
    }
    return directory;
}

std::filesystem::path resourceDirectory()
{
    std::error_code error;
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        fatalError("cannot find the executable through /proc/self/exe: " + error.message());
    }
    return resourceDirectoryOf(executable);
}

std::vector<std::string> limitsScriptCommand(const std::filesystem::path& resources)
{
    return {"/usr/bin/env", "python3", (resources / "vantrel.py").string(), "--live", "--json"};
}

std::vector<std::string> limitsScriptCommand()
{
    return limitsScriptCommand(resourceDirectory());
}

} // namespace vantrel::limits
