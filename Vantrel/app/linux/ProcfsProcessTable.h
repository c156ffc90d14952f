#pragma once

#include "Vantrel/app/ProcessTree.h"

#include <string>
#include <string_view>

namespace vantrel {

// /proc/PID/stat: the short name, the parent, whether it leads a session on a terminal, and its start time.
// Nothing for a text that is not a stat line.
std::optional<ProcessInfo> parseProcStat(std::string_view text, std::int64_t pid);

// /proc/PID/cmdline (arguments ending in NUL each): the second argument, the script of an interpreter.
std::string scriptArgument(std::string_view cmdline);

// The processes of a Linux system, read from /proc (or a tree laid out like it). Children come from the
// kernel's per-thread children lists; a kernel built without them is searched through every process's
// parent id instead.
class ProcfsProcessTable final : public ProcessTable {
public:
    explicit ProcfsProcessTable(std::string procRoot = "/proc");

    std::optional<ProcessInfo> process(std::int64_t pid) override;
    std::string script(std::int64_t pid) override;
    std::vector<std::int64_t> children(std::int64_t pid) override;

private:
    std::vector<std::int64_t> childrenByParentId(std::int64_t pid);

    std::string root_;
};

} // namespace vantrel
