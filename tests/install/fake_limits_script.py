#!/usr/bin/env python3
"""Stands in for the limits script in the installed-desktop test: records how the program started it
(in the file named by $VANTREL_TEST_MARKER), then prints a limits document with recognisable figures."""
import json
import os
import sys
import time

marker = os.environ["VANTREL_TEST_MARKER"]
with open(marker + ".part", "w", encoding="utf-8") as f:
    json.dump({"argv": sys.argv, "script": os.path.realpath(__file__)}, f)
os.replace(marker + ".part", marker)

now = time.time()
print(json.dumps({
    "observedAt": now,
    "buckets": [{
        "id": "codex",
        "creditBalance": "7.25",
        "windows": [
            {"slot": "primary", "windowDurationMins": 300, "resetsAt": now + 3600, "remainingPercent": 64},
            {"slot": "secondary", "windowDurationMins": 10080, "resetsAt": now + 86400, "remainingPercent": 81},
        ],
    }],
}))
