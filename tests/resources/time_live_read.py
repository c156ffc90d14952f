"""Times `vantrel.py --live --json` end to end against the real CLI and the mock backend on 127.0.0.1.

Usage: python3 tests/resources/time_live_read.py [RUNS]   (default 10; prints each run and the median)
The figure leaves out the real backend's HTTPS round trip, which a signed-in user adds.
"""

import json
import os
import statistics
import sys
import tempfile
import time

from codex_harness import CODEX_VERSION, MockBackend, installed_codex, write_auth
from script_support import run_script


def main():
    runs = int(sys.argv[1]) if len(sys.argv) > 1 else 10
    codex = installed_codex()
    with tempfile.TemporaryDirectory() as root, MockBackend() as backend:
        codex_home = os.path.join(root, "codex-home")
        os.makedirs(codex_home)
        write_auth(codex_home)
        environment = {"HOME": root, "PATH": os.environ["PATH"], "LANG": "C.UTF-8", "CODEX_HOME": codex_home,
                       "VANTREL_CODEX": codex, "VANTREL_CODEX_CONFIG": backend.config_overrides()}
        times = []
        for run in range(runs):
            started = time.monotonic()
            finished = run_script(["--live", "--json"], environment)
            times.append(time.monotonic() - started)
            outcome = json.loads(finished.stdout)["source"] if finished.returncode == 0 else finished.stderr
            print(f"run {run + 1}: {times[-1]:.2f} s ({outcome.strip()})")
    print(f"Codex CLI {CODEX_VERSION}, {runs} runs: median {statistics.median(times):.2f} s, "
          f"min {min(times):.2f} s, max {max(times):.2f} s; load average {os.getloadavg()[0]:.1f} "
          f"on {os.cpu_count()} CPUs")


if __name__ == "__main__":
    main()
