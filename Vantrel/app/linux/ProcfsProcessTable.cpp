#include "Vantrel/app/linux/ProcfsProcessTable.h"

#include "Vantrel/telemetry/linux/KernelFile.h"
#include "Vantrel/telemetry/linux/TextFields.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>

namespace vantrel {
namespace {

using linux_source::FieldReader;
using linux_source::parseDecimal;
using linux_source::parseSignedDecimal;
using linux_source::readWholeFile;

// Fields of /proc/PID/stat after the name, counted from the state (the third field) as 0.
constexpr int parentField = 1;
constexpr int sessionField = 3;
constexpr int terminalField = 4;
constexpr int startTimeField = 19;

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

std::optional<std::int64_t> numericName(const dirent& entry)
{
    const auto number = parseSignedDecimal(entry.d_name);
    return number && *number > 0 ? number : std::nullopt;
}

void appendPids(std::string_view text, std::vector<std::int64_t>& pids)
{
    FieldReader fields(text);
    for (std::string_view field = fields.next(); !field.empty(); field = fields.next()) {
        if (const auto pid = parseSignedDecimal(field); pid && *pid > 0) {
            pids.push_back(*pid);
        }
    }
}

} // namespace

std::optional<ProcessInfo> parseProcStat(std::string_view text, std::int64_t pid)
{
    // The name is in parentheses and may hold anything, parentheses and blanks included: it ends at the
    // last closing parenthesis.
    const auto open = text.find('(');
    const auto close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
        return std::nullopt;
    }
    ProcessInfo process;
    process.name = std::string(text.substr(open + 1, close - open - 1));

    std::optional<std::int64_t> parent;
    std::optional<std::int64_t> session;
    std::optional<std::int64_t> terminal;
    std::optional<std::uint64_t> startTime;
    FieldReader fields(text.substr(close + 1));
    int index = 0;
    for (std::string_view field = fields.next(); !field.empty() && index <= startTimeField;
         field = fields.next(), ++index) {
        switch (index) {
        case parentField:
            parent = parseSignedDecimal(field);
            break;
        case sessionField:
            session = parseSignedDecimal(field);
            break;
        case terminalField:
            terminal = parseSignedDecimal(field);
            break;
        case startTimeField:
            startTime = parseDecimal(field);
            break;
        default:
            break;
        }
    }
    if (!parent || !session || !terminal || !startTime) {
        return std::nullopt;
    }
    process.parent = *parent;
    process.startTime = *startTime;
    process.leadsTerminalSession = *session == pid && *terminal != 0;
    return process;
}

std::string scriptArgument(std::string_view cmdline)
{
    const auto first = cmdline.find('\0');
    if (first == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = cmdline.substr(first + 1);
    return std::string(rest.substr(0, rest.find('\0')));
}

ProcfsProcessTable::ProcfsProcessTable(std::string procRoot) : root_(std::move(procRoot))
{}

std::optional<ProcessInfo> ProcfsProcessTable::process(std::int64_t pid)
{
    const auto stat = readWholeFile(root_ + "/" + std::to_string(pid) + "/stat");
    return stat ? parseProcStat(*stat, pid) : std::nullopt;
}

std::string ProcfsProcessTable::script(std::int64_t pid)
{
    // A process gone by now has no arguments.
    return scriptArgument(readWholeFile(root_ + "/" + std::to_string(pid) + "/cmdline").value_or(""));
}

std::vector<std::int64_t> ProcfsProcessTable::children(std::int64_t pid)
{
    const std::string tasks = root_ + "/" + std::to_string(pid) + "/task";
    const Directory directory(opendir(tasks.c_str()));
    if (!directory) {
        return {};
    }
    // Each thread lists the children it started.
    std::vector<std::int64_t> result;
    bool listed = false;
    while (const dirent* entry = readdir(directory.get())) {
        if (!numericName(*entry)) {
            continue;
        }
        const auto children = readWholeFile(tasks + "/" + entry->d_name + "/children");
        if (children) {
            listed = true;
            appendPids(*children, result);
        } else if (errno == ENOENT && !listed) {
            return childrenByParentId(pid);
        }
    }
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

std::vector<std::int64_t> ProcfsProcessTable::childrenByParentId(std::int64_t pid)
{
    const Directory directory(opendir(root_.c_str()));
    if (!directory) {
        return {};
    }
    std::vector<std::int64_t> result;
    while (const dirent* entry = readdir(directory.get())) {
        const auto candidate = numericName(*entry);
        if (!candidate) {
            continue;
        }
        const auto stat = readWholeFile(root_ + "/" + entry->d_name + "/stat");
        const auto info = stat ? parseProcStat(*stat, *candidate) : std::nullopt;
        if (info && info->parent == pid) {
            result.push_back(*candidate);
        }
    }
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace vantrel
