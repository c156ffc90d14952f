#include "Vantrel/app/InstallLayout.h"

namespace vantrel {

InstallLayout installLayoutOf(const std::filesystem::path& executable)
{
    constexpr const char* moduleName = "vantrel_panel.so";
    const std::filesystem::path directory = executable.parent_path();
    const std::filesystem::path contents = directory.parent_path();
    if (directory.filename() == "MacOS" && contents.filename() == "Contents")
        return {contents / "PlugIns" / moduleName, contents / "Resources"};
    // The path is free of symbolic links, so ".." can be resolved lexically.
    const std::filesystem::path prefix = (directory / "..").lexically_normal();
    return {prefix / "lib" / "vantrel" / moduleName, prefix / "share" / "vantrel"};
}

} // namespace vantrel
