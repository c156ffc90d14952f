"""What the tests of the limits script share: loading it, running it, and writing session files."""

import importlib.util
import json
import os
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
# CTest names the copy in the build tree; run by hand, the tests take the one in the source tree.
SCRIPT = os.environ.get("VANTREL_SCRIPT") or os.path.join(HERE, "..", "..", "resources", "vantrel.py")


def load_script():
    # No compiled copy next to the script: that directory is what ships.
    sys.dont_write_bytecode = True
    found = importlib.util.spec_from_file_location("vantrel_script", SCRIPT)
    module = importlib.util.module_from_spec(found)
    found.loader.exec_module(module)
    return module


def run_script(arguments, environment, prefix=(), timeout=60, **options):
    """Runs the script as the application does and returns the finished process (text output)."""
    command = [*prefix, sys.executable, SCRIPT, *arguments]
    return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=timeout,
                          stdin=subprocess.DEVNULL, **options)


def running(pid):
    """Whether the process runs (a zombie has ended)."""
    try:
        with open(f"/proc/{pid}/stat", encoding="ascii", errors="replace") as stream:
            return stream.read().rpartition(")")[2].split()[0] not in ("Z", "X")
    except OSError:
        return False


def wait_until(condition, what, timeout=10.0):
    deadline = time.monotonic() + timeout
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError(f"timed out waiting for {what}")
        time.sleep(0.02)


def fake_codex(directory):
    """An executable named codex that runs fake_app_server.py; returns its path."""
    path = os.path.join(directory, "codex")
    with open(path, "w", encoding="utf-8") as stream:
        server = os.path.join(HERE, "fake_app_server.py")
        stream.write(f'#!/bin/sh\nexec "{sys.executable}" "{server}" "$@"\n')
    os.chmod(path, 0o755)
    return path


def stand_in_environment(root, reply):
    """A run's environment against fake_app_server.py answering `reply`, all under root: HOME, a CODEX_HOME
    (not made yet), the server's log (FAKE_SERVER_LOG) and a PATH with nothing on it."""
    empty_path = os.path.join(root, "bin")
    os.makedirs(empty_path)
    return {"HOME": os.path.join(root, "home"), "PATH": empty_path, "CODEX_HOME": os.path.join(root, "codex-home"),
            "VANTREL_CODEX": fake_codex(root), "FAKE_SERVER_LOG": os.path.join(root, "server.log"),
            "FAKE_SERVER_MODE": "normal", "FAKE_SERVER_REPLY": json.dumps(reply), "LANG": "C.UTF-8"}


def server_log(path):
    """The events fake_app_server.py logged."""
    if not os.path.exists(path):
        return []
    with open(path, encoding="utf-8") as stream:
        return [json.loads(line) for line in stream]


def rfc3339(seconds):
    """A session file's timestamp: UTC with milliseconds."""
    whole, milliseconds = divmod(round(seconds * 1000), 1000)
    return time.strftime("%Y-%m-%dT%H:%M:%S", time.gmtime(whole)) + f".{milliseconds:03}Z"


def token_count_line(timestamp, rate_limits):
    return json.dumps({"timestamp": timestamp, "type": "event_msg",
                       "payload": {"type": "token_count", "info": None, "rate_limits": rate_limits}})


def write_session(codex_home, relative_path, lines):
    path = os.path.join(codex_home, "sessions", relative_path)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as stream:
        stream.write("".join(line + "\n" for line in lines))
    return path


SESSION_TIME = "2026-03-14T09:26:53.589Z"
SESSION_SECONDS = 1773480413.589
SESSION_LIMITS = {
    "limit_id": "codex", "limit_name": None, "plan_type": "pro",
    "primary": {"used_percent": 42.0, "window_minutes": 300, "resets_at": 1773491213},
    "secondary": {"used_percent": 17.5, "window_minutes": 10080, "resets_at": 1773998813},
    "credits": {"has_credits": True, "unlimited": False, "balance": "7.25"},
    "individual_limit": None, "spend_control_reached": False, "rate_limit_reached_type": None,
}
