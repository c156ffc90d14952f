#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace vantrel::limits {

// For states the program is not built to continue from: says why on standard error, then aborts.
[[noreturn]] inline void fatalError(const std::string& message)
{
    (void)std::fprintf(stderr, "vantrel: %s\n", message.c_str());
    std::abort();
}

} // namespace vantrel::limits
