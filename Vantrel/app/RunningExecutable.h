#pragma once

#include <string>

namespace vantrel {

// The running program's executable file, symbolic links resolved; or, with an empty path, why it cannot be
// found. One implementation per operating system.
struct ExecutableLookup {
    std::string path;
    std::string error;
};
ExecutableLookup runningExecutable();

} // namespace vantrel
