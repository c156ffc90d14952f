"""Checks that a file holds a record as `vantrel --sample` prints it: the eight keys and their types.

usage: sample_record_check.py FILE
"""

import json
import numbers
import sys


def percent_or_null(value):
    return value is None or (isinstance(value, numbers.Real) and not isinstance(value, bool))


with open(sys.argv[1], encoding="utf-8") as f:
    record = json.load(f)

assert isinstance(record, dict), "not an object"
assert sorted(record) == sorted(["cpu", "ram", "gpu", "network", "networkExplanation", "cpuCores",
                                 "gpuCoreCount", "gpuPerCoreAvailable"]), sorted(record)
assert all(percent_or_null(record[key]) for key in ("cpu", "ram", "gpu", "network"))
assert isinstance(record["networkExplanation"], str)
assert isinstance(record["cpuCores"], list) and record["cpuCores"]
assert all(percent_or_null(core) for core in record["cpuCores"])
assert record["gpuCoreCount"] is None or type(record["gpuCoreCount"]) is int
assert record["gpuPerCoreAvailable"] is False
