#!/usr/bin/python3
"""The peer of `vantrel --sample` for the whole-process comparison: the same two readings, one second apart,
taken with psutil (CPU total and per core, memory, the default route's link counters and speed)."""
import json
import time

import psutil


def primary_interface():
    with open("/proc/net/route") as routes:
        next(routes)
        for line in routes:
            fields = line.split()
            if fields[1] == "00000000" and int(fields[3], 16) & 1:
                return fields[0]
    return None


def reading(name):
    counters = psutil.net_io_counters(pernic=True).get(name) if name else None
    stats = psutil.net_if_stats().get(name) if name else None
    return {
        "cpu": psutil.cpu_percent(),
        "cpuCores": psutil.cpu_percent(percpu=True),
        "ram": psutil.virtual_memory().percent,
        "received": counters.bytes_recv if counters else None,
        "sent": counters.bytes_sent if counters else None,
        "speed": stats.speed if stats else None,
    }


name = primary_interface()
reading(name)
time.sleep(1.0)
print(json.dumps(reading(name), indent=2, sort_keys=True))
