#pragma once

#include <array>

namespace vantrel::limits {

// A pipe whose two ends are closed on exec, so that no child started elsewhere keeps one open; with
// `nonBlocking`, neither end blocks. Made so in one call where the system has one (Linux's pipe2), right
// after the pipe elsewhere. False, with errno set, when the system gives no pipe. One implementation per
// operating system.
bool openCloseOnExecPipe(std::array<int, 2>& ends, bool nonBlocking);

} // namespace vantrel::limits
