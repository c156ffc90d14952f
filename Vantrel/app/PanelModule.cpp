#include "Vantrel/app/PanelModule.h"

#include <cstdio>
#include <dlfcn.h>
#include <string>
#include <system_error>

namespace vantrel {

namespace {

int failToLoad(const std::string& reason)
{
    static_cast<void>(std::fprintf(stderr, "vantrel: cannot load the panel: %s\n", reason.c_str()));
    return 1;
}

std::string loaderError()
{
    const char* error = dlerror();
    return error != nullptr ? error : "the dynamic loader gives no reason";
}

} // namespace

std::filesystem::path panelModuleOf(const std::filesystem::path& executable)
{
    // /proc/self/exe is already free of symbolic links, so ".." can be resolved lexically.
    return (executable.parent_path() / ".." / "lib" / "vantrel" / "vantrel_panel.so").lexically_normal();
}

int runPanelModule(int argc, char** argv)
{
    std::error_code error;
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return failToLoad("/proc/self/exe: " + error.message());
    // Every symbol is bound now, so a module that does not fit this system fails here, not mid-run.
    // The module stays loaded until the process ends.
    void* module = dlopen(panelModuleOf(executable).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
        return failToLoad(loaderError());
    // POSIX guarantees that a function's address survives the round trip through dlsym's void*.
    const auto entry = reinterpret_cast<PanelEntry>(dlsym(module, panelEntryName));
    if (entry == nullptr)
        return failToLoad(loaderError());
    return entry(argc, argv);
}

} // namespace vantrel
