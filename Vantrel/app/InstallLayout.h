#pragma once

#include <filesystem>

namespace vantrel {

// Where the program's parts lie beside its executable:
// - in a prefix, and in the build tree laid out as one: bin/vantrel, lib/vantrel/vantrel_panel.so and
//   share/vantrel/;
// - in a macOS application bundle: Contents/MacOS/vantrel, Contents/PlugIns/vantrel_panel.so and
//   Contents/Resources/.
struct InstallLayout {
    std::filesystem::path panelModule;
    std::filesystem::path resources;
};

// The layout around `executable`, a path free of symbolic links (as runningExecutable() gives it).
InstallLayout installLayoutOf(const std::filesystem::path& executable);

} // namespace vantrel
