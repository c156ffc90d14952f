"""What /proc tells about processes: status fields, the parent of each, a process's descendants."""

import collections
import pathlib


def proc_status(pid):
    fields = {}
    try:
        for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
            key, _, value = line.partition(":")
            fields[key] = value.strip()
    except OSError:
        pass
    return fields


def parents():
    """pid -> parent pid of every process."""
    table = {}
    for entry in pathlib.Path("/proc").iterdir():
        if entry.name.isdigit():
            try:
                stat = (entry / "stat").read_text()
                table[int(entry.name)] = int(stat[stat.rindex(")") + 2:].split()[1])
            except (OSError, ValueError, IndexError):
                continue
    return table


def descendants(pid, table):
    children = collections.defaultdict(list)
    for child, parent in table.items():
        children[parent].append(child)
    found, stack = [], [pid]
    while stack:
        for child in children[stack.pop()]:
            found.append(child)
            stack.append(child)
    return found


def command_of(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
    except OSError:
        return "?"
