#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantrel {

// One process, as much of it as the rules below need.
struct ProcessInfo {
    std::int64_t parent = 0;
    std::uint64_t startTime =
        0; // since boot, in the system's own unit: a child never starts before its parent
    bool leadsTerminalSession = false; // leads a session on a terminal, as the shell a terminal starts does
    std::string name;                  // the system's short name of its executable
    std::string script;                // what an interpreter runs (its second argument); read only for node
};

// The processes of the machine as the system shows them, read on demand; either answer may come from a
// moment later than the one before, since processes start and end while the tree is read.
class ProcessTable {
public:
    ProcessTable() = default;
    virtual ~ProcessTable() = default;
    ProcessTable(const ProcessTable&) = delete;
    ProcessTable& operator=(const ProcessTable&) = delete;
    ProcessTable(ProcessTable&&) = delete;
    ProcessTable& operator=(ProcessTable&&) = delete;

    // Nothing when there is no such process (any more). The script is left empty: reading it costs a
    // file of its own, so it is asked for only where it matters.
    virtual std::optional<ProcessInfo> process(std::int64_t pid) = 0;
    virtual std::string script(std::int64_t pid) = 0;
    virtual std::vector<std::int64_t> children(std::int64_t pid) = 0;
};

// What the processes of the window in front tell.
struct ProcessFindings {
    std::string processName;   // the window's own process
    bool runsCodexCli = false; // a descendant runs the Codex CLI
    bool isTerminal = false;   // a child leads a terminal session: a terminal, whose tabs come and go

    friend bool operator==(const ProcessFindings&, const ProcessFindings&) = default;
};

// The Codex CLI: the native program named codex, or node running the npm package's codex launcher.
bool isCodexCli(const ProcessInfo& process);
// Whether isCodexCli needs the process's script: only an interpreter's.
bool runsAScript(const ProcessInfo& process);

inline constexpr std::size_t defaultWalkLimit = 4096;

// Walks the descendants of `root`, at most `limit` of them. A child counts only while its parent id still
// names the process it was listed under and it started no earlier than that process: a process that ended
// meanwhile, a reused process id or a garbled answer is left out, and a loop is walked once.
ProcessFindings inspectProcessTree(std::int64_t root, ProcessTable& table,
                                   std::size_t limit = defaultWalkLimit);

} // namespace vantrel
