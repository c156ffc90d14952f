#include "Vantrel/app/ProcessTree.h"

#include <deque>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace vantrel {
namespace {

constexpr std::string_view codexProgram = "codex";

std::string_view baseName(std::string_view path)
{
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

} // namespace

bool runsAScript(const ProcessInfo& process)
{
    return process.name == "node" || process.name == "nodejs";
}

bool isCodexCli(const ProcessInfo& process)
{
    if (process.name == codexProgram) {
        return true;
    }
    // `codex` from npm is a node script, which starts the native program: the launcher counts from the
    // start, before the program it starts does.
    const std::string_view script = baseName(process.script);
    return runsAScript(process) && (script == codexProgram || script == "codex.js");
}

ProcessFindings inspectProcessTree(std::int64_t root, ProcessTable& table, std::size_t limit)
{
    ProcessFindings findings;
    auto rootInfo = table.process(root);
    if (!rootInfo) {
        return findings;
    }
    findings.processName = rootInfo->name;

    std::unordered_set<std::int64_t> seen{root};
    std::deque<std::pair<std::int64_t, ProcessInfo>> pending;
    pending.emplace_back(root, std::move(*rootInfo));
    std::size_t walked = 0;
    while (!pending.empty() && walked < limit) {
        const auto [pid, info] = std::move(pending.front());
        pending.pop_front();
        for (const std::int64_t child : table.children(pid)) {
            if (!seen.insert(child).second || walked >= limit) {
                continue;
            }
            ++walked;
            auto childInfo = table.process(child);
            if (!childInfo || childInfo->parent != pid || childInfo->startTime < info.startTime) {
                continue;
            }
            if (pid == root && childInfo->leadsTerminalSession) {
                findings.isTerminal = true;
            }
            if (runsAScript(*childInfo)) {
                childInfo->script = table.script(child);
            }
            if (isCodexCli(*childInfo)) {
                findings.runsCodexCli = true;
                continue;
            }
            pending.emplace_back(child, std::move(*childInfo));
        }
        // The window's own children are all looked at first, so whether it is a terminal is known by now.
        if (findings.runsCodexCli) {
            break;
        }
    }
    return findings;
}

} // namespace vantrel
