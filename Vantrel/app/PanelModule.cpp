#include "Vantrel/app/PanelModule.h"

#include "Vantrel/app/InstallLayout.h"
#include "Vantrel/app/RunningExecutable.h"

#include <cstdio>
#include <dlfcn.h>
#include <string>

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

int runPanelModule(int argc, char** argv)
{
    const ExecutableLookup executable = runningExecutable();
    if (executable.path.empty())
        return failToLoad(executable.error);
    // Every symbol is bound now, so a module that does not fit this system fails here, not mid-run.
    // The module stays loaded until the process ends.
    void* module = dlopen(installLayoutOf(executable.path).panelModule.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
        return failToLoad(loaderError());
    // POSIX guarantees that a function's address survives the round trip through dlsym's void*.
    const auto entry = reinterpret_cast<PanelEntry>(dlsym(module, panelEntryName));
    if (entry == nullptr)
        return failToLoad(loaderError());
    return entry(argc, argv);
}

} // namespace vantrel
