#!/usr/bin/env python3
"""Writes the seed corpora under fuzz/corpus/<target>/ from the test fixtures, plus a few hand-made edge
cases per target. Run from anywhere; existing seed files are replaced."""
import hashlib
import pathlib
import shutil
import struct

FUZZ = pathlib.Path(__file__).resolve().parent
FIXTURES = FUZZ.parent / "tests" / "fixtures"
TELEMETRY = FIXTURES / "telemetry"


def fixture_files(relative):
    return [path.read_bytes() for path in sorted(TELEMETRY.glob(f"*/{relative}")) if path.is_file()]


def write(target, seeds):
    directory = FUZZ / "corpus" / target
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir(parents=True)
    for seed in seeds:
        (directory / hashlib.sha1(seed).hexdigest()).write_bytes(seed)


def proc_stat():
    stats = fixture_files("proc/stat")
    two = b"cpu  100 0 50 800 0 0 0 0 0 0\ncpu0 50 0 25 400 0 0 0 0 0 0\ncpu1 50 0 25 400 0 0 0 0 0 0\nintr 1\n"
    three = b"cpu  1 0 1 10 0 0 0 0 0 0\ncpu0 1 0 1 10\ncpu1 1 0 1 10\ncpu2 1 0 1 10\n"
    edges = [
        two + b"\0" + three,  # the number of cores changes between the samples
        two + b"\0" + two.replace(b"100 0 50 800", b"4294967290 0 50 800"),  # a counter wraps
        b"cpu  18446744073709551616 0 0 0\ncpu0 1 2 3 4\n",  # beyond 64 bits
        b"cpu  1 2 3 4 5 6 7 8 9 10\ncpu0 1 2 3",  # truncated mid-line
        b"",
    ]
    write("proc_stat", stats + [stats[0] + b"\0" + stats[0]] + edges)


def meminfo():
    edges = [
        b"MemTotal: 18446744073709551615 kB\nActive: 1 kB\nUnevictable: 1 kB\nSUnreclaim: 1 kB\n"
        b"KernelStack: 1 kB\nPageTables: 1 kB\n",
        b"MemTotal: 16000000 kB\nActive: 99999999999999999999 kB\n",
        b"MemTotal: 1600",
    ]
    write("meminfo", fixture_files("proc/meminfo") + edges)


def routes():
    write("ipv4_route", fixture_files("proc/net/route") + [b"Iface\tDestination\n../x\t00000000\t0\t0001\t0\t0\t0\n"])
    default = (b"00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
               b"fe800000000000000000000000000001 %s 00000001 00000000 %s %s\n")
    write("ipv6_route", fixture_files("proc/net/ipv6_route") + [
        default % (b"00000400", b"00000003", b"wlan0") + default % (b"00000100", b"00000001", b"eth0"),
        default % (b"1ffffffffffffffff", b"00000003", b"eth1") + default % (b"00000001", b"00000201", b"ppp0"),
    ])


def sysfs_values():
    seeds = []
    for tree in sorted(TELEMETRY.iterdir()):
        net = tree / "sys/class/net"
        interfaces = sorted(net.iterdir()) if net.is_dir() else []
        pieces = []
        for name in ("statistics/rx_bytes", "statistics/tx_bytes", "speed"):
            path = interfaces[0] / name if interfaces else None
            pieces.append(path.read_bytes() if path and path.is_file() else b"")
        busy = sorted(tree.glob("sys/class/drm/card*/device/gpu_busy_percent"))
        pieces.append(busy[0].read_bytes() if busy else b"")
        nodes = sorted(tree.glob("sys/class/kfd/kfd/topology/nodes/*/properties"))
        pieces.append(nodes[-1].read_bytes() if nodes else b"")
        seeds.append(b"\0".join(pieces))
    seeds.append(b"18446744073709551616\n\x0012\n\x009223372036854775807\n\x00-0\n\x00simd_count 0\nsimd_per_cu 0\n")
    seeds.append(b"5\n")  # only the received counter: the others are missing
    write("sysfs_values", seeds)


def interface_list():
    def message(length, kind, index, speed=0, received=0, sent=0):
        body = bytearray(length)
        struct.pack_into("<H", body, 0, length)
        body[3] = kind
        struct.pack_into("<H", body, 12, index)
        if length >= 112:
            struct.pack_into("<QQQ", body, 48, speed, 0, 0)
            struct.pack_into("<QQ", body, 96, received, sent)
        return bytes(body)

    wanted = struct.pack("<H", 4)
    write("interface_list", [
        wanted + message(160, 18, 1, 10, 11, 12) + message(168, 18, 4, 1_000_000_000, 777, 888),
        wanted + message(160, 14, 4) + message(112, 18, 4) + message(160, 18, 4, 3, 3, 3),
        wanted + message(160, 18, 4)[:150],  # the record runs past the end
        wanted + message(112, 18, 5) + bytes(112),  # a zero length ends the walk
    ])


def limits_document():
    import json

    def window(slot, **fields):
        return {"slot": slot, **fields}

    def document(*windows, **bucket):
        return json.dumps({"observedAt": 1752575400.25,
                           "buckets": [{"id": "codex", "windows": list(windows), **bucket}]}).encode()

    nested = b'{"buckets": [], "padding": ' + b"[" * 600 + b"]" * 600 + b"}"
    allowed = b'{"buckets": [{"id": "codex"}], "padding": ' + b"[" * 510 + b"]" * 510 + b"}"
    seeds = [
        (FIXTURES / "limits/typical.json").read_bytes(),
        document(window("primary", windowDurationMins=300, resetsAt=1e300, remainingPercent=-5),
                 window("secondary", windowDurationMins=10080, resetsAt=-1e300, resetPending=True)),
        document(window("primary", windowDurationMins=9.2e18, resetsAt=253402300800),
                 window("secondary", windowDurationMins=-5.5e20, remainingPercent=1e308)),
        document(window("primary", windowDurationMins=90.5, resetsAt="2025-07-15T10:00:00Z"),
                 creditBalance="\u20ac 1\u00a0000,50", limitReached=True),
        document(window("primary", windowDurationMins=0), spendControlReached=True),
        b'{"observedAt": 1e20, "buckets": [{"id": "other"}, {"id": "codex", "windows": [1]}]}',
        b'{"observedAt": -1e20, "buckets": [{"windows": [{"slot": "primary", "resetsAt": 1e400}]}]}',
        b'{"buckets": ["codex"]}',
        b'{"buckets": [{"id": "codex\xff"}]}',
        b'{"buckets": [{"id": "codex", "creditBalance": "\\ud800"}]}',
        b"{}",
        b"[]",
        b'{"buckets": [{"id": "co',
        nested,
        allowed,
    ]
    write("limits_document", seeds)


if __name__ == "__main__":
    proc_stat()
    meminfo()
    routes()
    sysfs_values()
    interface_list()
    limits_document()
