#!/usr/bin/env python3
"""Stands in for the limits script during a soak run: every run behaves differently, chosen at random -
a valid document, an odd but valid one, broken output, empty output, a failing exit, death by a signal,
a slow answer, a large document, or a child left holding the output for a while. Each run appends its
kind to the file named by $VANTREL_SOAK_RUNS, so the soak can count what the program went through."""
import json
import os
import random
import signal
import subprocess
import sys
import time

rng = random.Random(os.urandom(16))
now = time.time()


def window(slot):
    fields = {"slot": slot}
    if rng.random() < 0.9:
        fields["windowDurationMins"] = rng.choice([300, 10080, 90, 0, 59.5, 1e15, -60, 7 * 24 * 60 * 52])
    if rng.random() < 0.8:
        fields["resetsAt"] = rng.choice([now + rng.uniform(0, 8e5), 0, -1e12, 1e15, "2025-07-15T10:00:00Z"])
    if rng.random() < 0.2:
        fields["resetPending"] = rng.random() < 0.5
    if rng.random() < 0.9:
        fields["remainingPercent"] = rng.choice([rng.uniform(0, 100), -5, 250, 12, "40"])
    return fields


def valid_document():
    bucket = {"id": rng.choice(["codex", "codex", "other", 7]),
              "windows": [window(slot) for slot in rng.sample(["primary", "secondary", "tertiary"], 2)]}
    if rng.random() < 0.7:
        bucket["creditBalance"] = rng.choice(["12,50 $", "0", "\u20ac 1\u00a0000", "x" * 300, 5])
    if rng.random() < 0.3:
        bucket["spendControlReached"] = rng.random() < 0.5
    if rng.random() < 0.3:
        bucket["limitReached"] = rng.random() < 0.5
    document = {"buckets": [bucket] + ([{"id": "other"}] if rng.random() < 0.3 else [])}
    if rng.random() < 0.8:
        document["observedAt"] = now - rng.choice([0, 30, 200, 4000])
    return json.dumps(document)


def emit(text):
    sys.stdout.write(text)
    sys.stdout.flush()


def run(kind):
    if kind == "valid":
        emit(valid_document())
    elif kind == "odd":
        emit(rng.choice(['{}', '{"buckets": []}', '{"buckets": ["codex"]}', '{"buckets": {"id": "codex"}}',
                         '{"buckets": [{"id": "codex", "windows": "none"}]}', '{"observedAt": "now"}']))
    elif kind == "broken":
        emit(rng.choice([valid_document()[:rng.randrange(1, 40)], "[]", "42", '"x"', "{,}", r'{"a": "\udcff"}']))
    elif kind == "invalid-utf8":
        sys.stdout.buffer.write(b'{"buckets": [{"id": "codex\xff"}]}')
    elif kind == "empty":
        pass
    elif kind == "exit-1":
        emit(valid_document())
        sys.exit(1)
    elif kind == "killed":
        emit(valid_document())
        os.kill(os.getpid(), signal.SIGKILL)
    elif kind == "slow":
        time.sleep(rng.uniform(5, 75))
        emit(valid_document())
    elif kind == "large":
        document = json.loads(valid_document())
        document["padding"] = "p" * rng.randrange(1 << 20, 8 << 20)
        emit(json.dumps(document))
    elif kind == "holder":
        subprocess.Popen(["sleep", str(rng.randrange(3, 30))])  # inherits standard output
        emit(valid_document())


KINDS = ["valid"] * 6 + ["odd", "broken", "invalid-utf8", "empty", "exit-1", "killed", "slow", "large",
                         "holder"]
kind = rng.choice(KINDS)
log = os.environ.get("VANTREL_SOAK_RUNS")
if log:
    with open(log, "a", encoding="utf-8") as runs:
        runs.write(f"{time.time():.1f} {os.getpid()} {kind}\n")
run(kind)
