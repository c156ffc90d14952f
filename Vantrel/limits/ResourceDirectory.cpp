#include "Vantrel/app/InstallLayout.h"
#include "Vantrel/app/RunningExecutable.h"
#include "Vantrel/limits/Fatal.h"
#include "Vantrel/limits/LimitsScript.h"

#include <system_error>

namespace vantrel::limits {

std::filesystem::path resourceDirectoryOf(const std::filesystem::path& executable)
{
    std::filesystem::path directory = installLayoutOf(executable).resources;
    std::error_code error;
    if (!std::filesystem::is_directory(directory, error)) {
        fatalError("resource directory " + directory.string() + " is missing");
    }
    return directory;
}

std::filesystem::path resourceDirectory()
{
    const ExecutableLookup executable = runningExecutable();
    if (executable.path.empty()) {
        fatalError("cannot find the executable: " + executable.error);
    }
    return resourceDirectoryOf(executable.path);
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
