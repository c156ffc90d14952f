#pragma once

#include "Vantrel/limits/ScriptProcess.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Running the limits script, for a background worker: nothing here touches Qt or the delegate.
namespace vantrel::limits {

// The resource directory beside the running executable: <prefix>/share/vantrel, or Contents/Resources in a
// macOS application bundle (InstallLayout.h). Stops the program when the directory does not exist.
std::filesystem::path resourceDirectory();

// The same rule for a given executable path (stops the program when the directory does not exist).
std::filesystem::path resourceDirectoryOf(const std::filesystem::path& executable);

// {"/usr/bin/env", "python3", "<resources>/vantrel.py", "--live", "--json"}
std::vector<std::string> limitsScriptCommand(const std::filesystem::path& resources);

// limitsScriptCommand(resourceDirectory())
std::vector<std::string> limitsScriptCommand();

using LaunchObserver = std::function<void(const ScriptProcess&)>;

// Blocking: launches command[0] with the arguments command[1..] as the leader of a new process group
// (standard output to a pipe, standard error to /dev/null; environment, working directory and standard
// input inherited, signals at their defaults), calls `launched` (when set) right after a successful
// launch, reads standard output to its end, reaps the child and decodes the output. Absent when the
// launch fails, the child exits non-zero or by a signal, or the output is not a JSON object (see
// decodeLimitsDocument).
std::optional<nlohmann::json> runLimitsScript(const std::vector<std::string>& command,
                                              const LaunchObserver& launched);

} // namespace vantrel::limits
