#include "Vantrel/app/RunningExecutable.h"

#include "Vantrel/telemetry/macos/CFRef.h"

#include <CoreFoundation/CoreFoundation.h>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace vantrel {

using macos_source::CFRef;

ExecutableLookup runningExecutable()
{
    // The main bundle knows its executable whether or not the program sits in an application bundle.
    const CFRef<CFURLRef> url(CFBundleCopyExecutableURL(CFBundleGetMainBundle()));
    std::array<UInt8, PATH_MAX> path{};
    if (!url || !CFURLGetFileSystemRepresentation(url.get(), true, path.data(), path.size()))
        return {{}, "the main bundle names no executable"};
    const std::unique_ptr<char, decltype(&std::free)> resolved(
        realpath(reinterpret_cast<const char*>(path.data()), nullptr), &std::free);
    if (!resolved)
        return {{}, std::string(reinterpret_cast<const char*>(path.data())) + ": " + std::strerror(errno)};
    return {resolved.get(), {}};
}

} // namespace vantrel
