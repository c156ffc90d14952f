#!/usr/bin/env python3
"""Prints the Codex account limits as one JSON document: the limits document that Vantrel reads.

Usage: vantrel.py [--live] [--json]

  --live  fresh limits: the newest figures the Codex CLI recorded in its session files when they are at
          most 60 s old, otherwise the account's rate limits as the CLI's app server (`codex app-server`)
          reads them; when that fails, and always without --live, the newest figures in the session
          files are used
  --json  print the document as one JSON object; otherwise a short summary in Czech

The live exchange has a hard limit of 15 s, and the app server is always ended, also when this script
is interrupted. With nothing to report the exit status is 1, the reason is one line on standard error,
and standard output stays empty.

Environment:
  VANTREL_CODEX         the codex executable to run (otherwise PATH, the usual install places, then npm's
                        global prefix, which is remembered in $XDG_CACHE_HOME/vantrel/npm-prefix.json)
  VANTREL_CODEX_CONFIG  extra `-c key=value` overrides for the app server, one per line (the tests
                        point the CLI at a local backend with it)
  CODEX_HOME            the CLI's home (default ~/.codex); the session files lie under its sessions/

Besides the keys Vantrel reads, the document names its "source": "live" or "session".

Signing in is the CLI's business: this script never reads or copies the account's tokens.
"""

import argparse
import json
import os
import re
import selectors
import signal
import subprocess
import sys
import time
from datetime import datetime, timezone

# The whole live exchange, from starting the app server to reaping it.
LIVE_TIME_LIMIT = 15.0
# How long a server may take to exit once its input is closed, then after SIGTERM (it needs ~30 ms);
# the rest of ENDING_TIME, kept out of the exchange's share of the limit, is for SIGKILL.
EXIT_GRACE = 1.0
TERM_GRACE = 0.3
ENDING_TIME = 1.5
# They stop the server's plugin traffic, for this process only (no configuration is written).
APP_SERVER_FLAGS = ["--disable", "plugins", "--disable", "apps", "--disable", "remote_plugin"]
# Session files read at most, newest first: enough to pass sessions that ended before any turn.
SESSION_FILES_READ = 10
# A session-file observation at most this old (s) answers a live read: the CLI records the account's
# limits after every turn, so while the user works in Codex no server needs to start.
FRESH_FOR = 60.0
CLIENT_INFO = {"name": "vantrel", "title": "Vantrel", "version": "0.1.0"}
INTERRUPTS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
PRIMARY_BUCKET = "codex"
NUMBER_LIMIT = 10**15
SLOTS = (("primary", "krátkodobý limit"), ("secondary", "dlouhodobý limit"))
# Where npm's launcher (bin/codex.js of @openai/codex) finds the CLI's own binary, by system and machine.
NATIVE_TARGETS = {("linux", "x86_64"): ("x86_64-unknown-linux-musl", "codex-linux-x64"),
                  ("linux", "aarch64"): ("aarch64-unknown-linux-musl", "codex-linux-arm64"),
                  ("darwin", "x86_64"): ("x86_64-apple-darwin", "codex-darwin-x64"),
                  ("darwin", "arm64"): ("aarch64-apple-darwin", "codex-darwin-arm64")}


class Unavailable(Exception):
    """The limits could not be read from this source; the message says why, in one line."""


class Interrupted(Exception):
    """SIGINT, SIGTERM or SIGHUP arrived; raised so that the app server is ended on the way out."""

    def __init__(self, received):
        super().__init__(received.name)
        self.signal = received


def number(value):
    """A JSON number of a sane size, or None (booleans are not numbers here).

    No percentage, duration or timestamp comes near 1e15; beyond it a value is garbage that would also
    overflow the reader's 64-bit conversions.
    """
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        return None
    return value if abs(value) <= NUMBER_LIMIT else None


def window_entry(slot, window, observed_at):
    """One window of a bucket; only what the snapshot's window gives usable values for is there."""
    entry = {"slot": slot}
    duration = number(window.get("windowDurationMins"))
    if duration is not None:
        entry["windowDurationMins"] = duration
    resets_at = number(window.get("resetsAt"))
    if resets_at is not None:
        entry["resetsAt"] = resets_at
        entry["resetPending"] = resets_at <= observed_at
    used = number(window.get("usedPercent"))
    if used is not None:
        entry["remainingPercent"] = min(100, max(0, 100 - used))
    return entry


def bucket_entry(limit_id, snapshot, observed_at):
    """One bucket of the document from an app-server rate-limit snapshot (camelCase keys)."""
    bucket = {"id": limit_id}
    bucket["windows"] = [
        window_entry(slot, snapshot[slot], observed_at)
        for slot, _ in SLOTS
        if isinstance(snapshot.get(slot), dict)
    ]
    credits = snapshot.get("credits")
    if isinstance(credits, dict) and isinstance(credits.get("balance"), str):
        bucket["creditBalance"] = credits["balance"]
    # spendControlReached <- the snapshot's spendControlReached (the account's spend control stopped it).
    if isinstance(snapshot.get("spendControlReached"), bool):
        bucket["spendControlReached"] = snapshot["spendControlReached"]
    # limitReached <- the snapshot's rateLimitReachedType: the reason when a limit is reached, else null.
    if "rateLimitReachedType" in snapshot:
        reached_type = snapshot["rateLimitReachedType"]
        if reached_type is None or isinstance(reached_type, str):
            bucket["limitReached"] = reached_type is not None
    return bucket


def ordered(buckets):
    """The "codex" bucket first, the others by id, so the output never depends on map order."""
    return sorted(buckets, key=lambda bucket: (bucket["id"] != PRIMARY_BUCKET, bucket["id"]))


def document_from_reply(result, observed_at):
    """The document from the result of `account/rateLimits/read`."""
    snapshots = {}
    if isinstance(result, dict):
        by_id = result.get("rateLimitsByLimitId")
        if isinstance(by_id, dict):
            snapshots = {key: snap for key, snap in by_id.items() if isinstance(snap, dict)}
        single = result.get("rateLimits")
        if isinstance(single, dict):
            single_id = single.get("limitId")
            snapshots.setdefault(single_id if isinstance(single_id, str) else PRIMARY_BUCKET, single)
    buckets = [bucket_entry(key, snap, observed_at) for key, snap in snapshots.items()]
    return {"buckets": ordered(buckets), "observedAt": observed_at, "source": "live"}


def parse_timestamp(text):
    """Unix seconds of an RFC 3339 timestamp (a missing offset means UTC), or None."""
    if not isinstance(text, str):
        return None
    match = re.fullmatch(r"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d)(\.\d+)?(Z|[+-]\d\d:\d\d)?", text.strip())
    if not match:
        return None
    seconds, fraction, offset = match.groups()
    # Whole microseconds and an explicit offset: what fromisoformat reads in every Python since 3.7.
    offset = "+00:00" if offset in (None, "Z") else offset
    try:
        moment = datetime.fromisoformat(seconds + (fraction or "")[:7] + offset)
    except ValueError:
        return None
    return moment.timestamp()


def snapshot_from_session(rate_limits, line_time):
    """A session file's snake_case snapshot in the app server's camelCase shape."""
    snapshot = {}
    for slot, _ in SLOTS:
        window = rate_limits.get(slot)
        if not isinstance(window, dict):
            continue
        resets_at = window.get("resets_at")
        # Older CLI versions recorded the time left instead of the reset time.
        resets_in = number(window.get("resets_in_seconds"))
        if number(resets_at) is None and resets_in is not None:
            resets_at = line_time + resets_in
        snapshot[slot] = {
            "usedPercent": window.get("used_percent"),
            "windowDurationMins": window.get("window_minutes"),
            "resetsAt": resets_at,
        }
    snapshot["credits"] = rate_limits.get("credits")
    snapshot["spendControlReached"] = rate_limits.get("spend_control_reached")
    if "rate_limit_reached_type" in rate_limits:
        snapshot["rateLimitReachedType"] = rate_limits["rate_limit_reached_type"]
    return snapshot


def document_from_session_line(line):
    """The document from one session-file line, or None unless it is a token_count event with limits."""
    try:
        event = json.loads(line)
    except (ValueError, UnicodeDecodeError):
        return None
    if not isinstance(event, dict) or event.get("type") != "event_msg":
        return None
    payload = event.get("payload")
    if not isinstance(payload, dict) or payload.get("type") != "token_count":
        return None
    rate_limits = payload.get("rate_limits")
    observed_at = parse_timestamp(event.get("timestamp"))
    if not isinstance(rate_limits, dict) or observed_at is None:
        return None
    limit_id = rate_limits.get("limit_id")
    bucket_id = limit_id if isinstance(limit_id, str) else PRIMARY_BUCKET
    bucket = bucket_entry(bucket_id, snapshot_from_session(rate_limits, observed_at), observed_at)
    return {"buckets": [bucket], "observedAt": observed_at, "source": "session"}


def codex_home():
    return os.environ.get("CODEX_HOME") or os.path.join(os.path.expanduser("~"), ".codex")


def newest_session_files(root, limit=SESSION_FILES_READ):
    """Up to `limit` session files under root, newest first.

    Names sort by time: YYYY/MM/DD/rollout-<time>-<id>.jsonl. Compressed ones (.jsonl.zst) are listed
    too, for session_document to pass over.
    """
    found = []

    def walk(directory):
        try:
            entries = sorted(os.scandir(directory), key=lambda entry: entry.name, reverse=True)
        except OSError:
            return
        for entry in entries:
            if len(found) >= limit:
                return
            if entry.is_dir(follow_symlinks=False):
                walk(entry.path)
            elif entry.name.endswith((".jsonl", ".jsonl.zst")) and entry.is_file():
                found.append(entry.path)

    walk(root)
    return found


def lines_from_end(path, block_size=65536):
    """The file's lines, last first, read backwards so that a long session is not read whole."""
    with open(path, "rb") as stream:
        position = stream.seek(0, os.SEEK_END)
        tail = b""
        while position > 0:
            step = min(block_size, position)
            position -= step
            stream.seek(position)
            parts = (stream.read(step) + tail).split(b"\n")
            tail = parts[0]
            yield from reversed(parts[1:])
        yield tail


def session_document(home):
    """The newest token_count event with limits in the newest session files, or None.

    A line the CLI is still writing is no JSON yet and counts as absent. Compressed files are passed
    over: the CLI 0.169.0 writes them only with its unfinished feature local_thread_store_compression,
    off by default, and Python's standard library reads no zstd before 3.14.
    """
    for path in newest_session_files(os.path.join(home, "sessions")):
        if path.endswith(".zst"):
            continue
        try:
            for line in lines_from_end(path):
                if b'"token_count"' in line and b'"rate_limits"' in line:
                    document = document_from_session_line(line)
                    if document is not None:
                        return document
        except OSError:
            continue
    return None


def is_fresh(observed_at, now):
    """Whether an observation may stand for a live read: at most FRESH_FOR seconds old. One from the
    future (a clock set back since, or another machine's) has no age to trust."""
    return 0.0 <= now - observed_at <= FRESH_FOR


def executable_in(name, directories):
    """The first executable file `name` in the directories, or None."""
    for directory in directories:
        path = os.path.join(directory, name)
        if os.path.isfile(path) and os.access(path, os.X_OK):
            return path
    return None


def search_path():
    return [entry for entry in os.environ.get("PATH", os.defpath).split(os.pathsep) if entry]


def find_codex():
    """The codex executable: VANTREL_CODEX, PATH, the npm prefix named in the environment, where a
    desktop session's PATH often misses it, then npm's global prefix as npm tells it."""
    named = os.environ.get("VANTREL_CODEX")
    if named:
        return named if os.access(named, os.X_OK) else None
    home = os.path.expanduser("~")
    places = search_path()
    named_prefix = os.environ.get("npm_config_prefix") or os.environ.get("NPM_CONFIG_PREFIX")
    if named_prefix:
        places.append(os.path.join(named_prefix, "bin"))
    places += [os.path.join(home, ".local", "bin"), os.path.join(home, ".npm-global", "bin"), "/usr/local/bin"]
    found = executable_in("codex", places)
    if found:
        return found
    prefix = npm_prefix()
    return executable_in("codex", [os.path.join(prefix, "bin")]) if prefix else None


def cache_file(name):
    cache = os.environ.get("XDG_CACHE_HOME") or os.path.join(os.path.expanduser("~"), ".cache")
    return os.path.join(cache, "vantrel", name)


def file_stamp(path):
    """What changes when a file is replaced or rewritten: inode, size and modification time; None if absent."""
    try:
        info = os.stat(path)
    except OSError:
        return None
    return [info.st_ino, info.st_size, info.st_mtime_ns]


def npm_prefix():
    """npm's global prefix as npm told it before, else as npm tells it now.

    Asking npm costs about 0.3 s of CPU, so its answer is kept in the cache with the stamps of npm and of
    the files its prefix is configured in; a change to any of them makes npm answer again.
    """
    npm = executable_in("npm", search_path())
    if npm is None:
        return None
    user_config = os.environ.get("NPM_CONFIG_USERCONFIG") or os.path.join(os.path.expanduser("~"), ".npmrc")
    npm = os.path.realpath(npm)
    key = [npm, file_stamp(npm), file_stamp(user_config), file_stamp("/etc/npmrc")]
    path = cache_file("npm-prefix.json")
    try:
        with open(path, encoding="utf-8") as stream:
            remembered = json.load(stream)
        if remembered["key"] == key and isinstance(remembered["prefix"], str):
            return remembered["prefix"]
    except (OSError, ValueError, TypeError, KeyError):
        pass
    prefix = asked_npm_prefix(npm)
    if prefix:
        remember(path, {"key": key, "prefix": prefix})
    return prefix


def asked_npm_prefix(npm):
    import subprocess

    try:
        return subprocess.run([npm, "config", "get", "prefix"], capture_output=True, text=True, timeout=5,
                              stdin=subprocess.DEVNULL).stdout.strip() or None
    except (OSError, subprocess.SubprocessError):
        return None


def remember(path, content):
    """Writes the cache file whole or not at all; a cache that cannot be written costs only time."""
    temporary = f"{path}.{os.getpid()}"
    try:
        os.makedirs(os.path.dirname(path), mode=0o700, exist_ok=True)
        with open(temporary, "w", encoding="utf-8") as stream:
            json.dump(content, stream)
        os.replace(temporary, path)
    except OSError as error:
        print(f"vantrel.py: cannot remember npm's prefix in {path}: {error.strerror}", file=sys.stderr)
        try:
            os.remove(temporary)
        except OSError:
            pass


def native_binary(codex):
    """The CLI's own binary beside npm's launcher (bin/codex.js of the package @openai/codex) and the
    package's root, or None for any other codex. Starting it directly saves node's start."""
    script = os.path.realpath(codex)
    target = NATIVE_TARGETS.get((sys.platform, os.uname().machine))
    if os.path.basename(script) != "codex.js" or target is None:
        return None
    triple, platform_package = target
    package = os.path.dirname(os.path.dirname(script))
    # Where npm puts the platform package: inside the package (a global install), beside it (hoisted),
    # or the package's own vendor folder (older releases).
    for vendor in (os.path.join(package, "node_modules", "@openai", platform_package, "vendor"),
                   os.path.join(os.path.dirname(package), platform_package, "vendor"),
                   os.path.join(package, "vendor")):
        found = executable_in("codex", [os.path.join(vendor, triple, "bin")])
        if found:
            return found, package
    return None


def launch(codex):
    """The command that starts the app server of this codex, and the environment it needs."""
    environment = dict(os.environ)
    native = native_binary(codex)
    if native is None:
        return app_server_command(codex), environment
    binary, package = native
    # What the launcher tells the binary about its installation (the CLI's update hints read it).
    environment.update(CODEX_MANAGED_PACKAGE_ROOT=package, CODEX_MANAGED_BY_NPM="1")
    return app_server_command(binary), environment


def app_server_command(codex):
    overrides = os.environ.get("VANTREL_CODEX_CONFIG", "").splitlines()
    config = [arg for item in overrides if item.strip() for arg in ("-c", item.strip())]
    return [codex, "app-server", *config, *APP_SERVER_FLAGS]


class AppServer:
    """One `codex app-server` child speaking JSON lines; `end()` always ends it.

    If this script is killed outright, the server sees its standard input close and exits by itself.
    """

    def __init__(self, command, deadline, environment=None):
        self.deadline = deadline
        self.buffer = b""
        environment = dict(os.environ if environment is None else environment)
        # A codex installed by npm is a `#!/usr/bin/env node` script whose node sits beside it.
        directory = os.path.dirname(os.path.abspath(command[0]))
        environment["PATH"] = os.pathsep.join([directory, environment.get("PATH", "")])
        # A session of its own: ending the group also ends the binary that npm's wrapper starts.
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, env=environment, start_new_session=True)

    def send(self, message):
        try:
            self.process.stdin.write(json.dumps(message).encode() + b"\n")
            self.process.stdin.flush()
        except OSError:
            raise Unavailable("codex app-server stopped reading its input") from None

    def request(self, request_id, method, params):
        """The result of one request; notifications and other replies in between are skipped."""
        self.send({"method": method, "id": request_id, "params": params})
        while True:
            message = self.next_message()
            if message.get("id") != request_id:
                continue
            error = message.get("error")
            if error is not None:
                text = error.get("message") if isinstance(error, dict) else error
                raise Unavailable(f"codex app-server: {method}: {' '.join(str(text).split())}")
            return message.get("result")

    def next_message(self):
        """The next JSON object the server prints; lines that are not objects are skipped."""
        while True:
            line, newline, rest = self.buffer.partition(b"\n")
            if not newline:
                self.buffer += self.read_chunk()
                continue
            self.buffer = rest
            try:
                message = json.loads(line)
            except ValueError:
                continue
            if isinstance(message, dict):
                return message

    def read_chunk(self):
        remaining = self.deadline - time.monotonic()
        with selectors.DefaultSelector() as selector:
            selector.register(self.process.stdout, selectors.EVENT_READ)
            if remaining <= 0 or not selector.select(remaining):
                raise Unavailable("codex app-server gave no answer in time")
        chunk = os.read(self.process.stdout.fileno(), 65536)
        if not chunk:
            raise Unavailable("codex app-server ended without an answer")
        return chunk

    def end(self):
        """Closing standard input asks the server to exit; one that does not is killed with its group."""
        # A signal that arrives meanwhile is handled once the server is gone.
        blocked = signal.pthread_sigmask(signal.SIG_BLOCK, INTERRUPTS)
        try:
            try:
                self.process.stdin.close()
            except OSError:
                pass
            try:
                self.process.wait(timeout=EXIT_GRACE)
            except subprocess.TimeoutExpired:
                self.kill_group()
            self.process.stdout.close()
        finally:
            signal.pthread_sigmask(signal.SIG_SETMASK, blocked)

    def kill_group(self):
        for sig, grace in ((signal.SIGTERM, TERM_GRACE), (signal.SIGKILL, None)):
            try:
                os.killpg(self.process.pid, sig)
                self.process.wait(timeout=grace)
                return
            except ProcessLookupError:
                return
            except subprocess.TimeoutExpired:
                continue


def read_live(command, time_limit=LIVE_TIME_LIMIT, environment=None):
    """The `account/rateLimits/read` result and the moment it arrived (Unix seconds)."""
    started = time.monotonic()
    try:
        server = AppServer(command, started + time_limit - ENDING_TIME, environment)
    except OSError as error:
        raise Unavailable(f"cannot start {command[0]}: {error.strerror}") from None
    try:
        server.request(1, "initialize", {"clientInfo": CLIENT_INFO})
        server.send({"method": "initialized"})
        result = server.request(2, "account/rateLimits/read", {"excludeResetCreditDetails": True})
        return result, round(time.time(), 3)
    finally:
        server.end()


def live_document():
    codex = find_codex()
    if codex is None:
        raise Unavailable("Codex CLI not found (install it, or name it in VANTREL_CODEX)")
    command, environment = launch(codex)
    result, observed_at = read_live(command, environment=environment)
    return document_from_reply(result, observed_at)


def local_time(seconds):
    try:
        moment = datetime.fromtimestamp(seconds, timezone.utc).astimezone()
    except (OverflowError, OSError, ValueError):
        return "?"
    return f"{moment.day}. {moment.month}. {moment:%H:%M}"


def duration_text(minutes):
    if minutes == 10080:
        return "týden"
    return f"{int(minutes // 60)} h" if minutes % 60 == 0 else f"{int(minutes)} min"


def summary(document):
    """A few lines of Czech, in the panel's words."""
    observed_at = document["observedAt"]
    origin = "živě z Codex CLI" if document.get("source") == "live" else "ze záznamu relace Codex"
    lines = [f"Limity účtu Codex · {origin} · {local_time(observed_at)}"]
    for bucket in document["buckets"]:
        windows = {window["slot"]: window for window in bucket["windows"]}
        for slot, caption in SLOTS:
            window = windows.get(slot)
            if window is None:
                continue
            if "windowDurationMins" in window:
                caption = f"{caption} ({duration_text(window['windowDurationMins'])})"
            if window.get("resetPending"):
                state = "čeká se na nový stav po obnově"
            else:
                remaining = window.get("remainingPercent")
                state = "zbývá —" if remaining is None else f"zbývá {remaining:.0f} %"
                if "resetsAt" in window:
                    state += f" · obnova {local_time(window['resetsAt'])}"
            lines.append(f"{bucket['id']} · {caption}: {state}")
        if "creditBalance" in bucket:
            lines.append(f"{bucket['id']} · kredity: {bucket['creditBalance']}")
        if bucket.get("spendControlReached") or bucket.get("limitReached"):
            lines.append(f"{bucket['id']} · účet hlásí omezení čerpání")
    if not document["buckets"]:
        lines.append("API nevrátilo limity účtu")
    return "\n".join(lines)


def limits_document(live):
    """With --live: the session files' newest figures while fresh, else a live read when it gives buckets.
    Otherwise, and without --live, the newest figures in the session files, else the bucketless live
    document."""
    home = codex_home()
    stored = session_document(home)
    reason, document = "no live read asked for", None
    if live:
        if stored is not None and is_fresh(stored["observedAt"], time.time()):
            return stored
        try:
            document = live_document()
        except Unavailable as error:
            reason = str(error)
        if document is not None and document["buckets"]:
            return document
        reason = reason if document is None else "no limits in the live answer"
    if stored is not None:
        if live:
            print(f"vantrel.py: {reason}; using a session file", file=sys.stderr)
        return stored
    if document is not None:
        # The panel tells the user that the service returned no limits.
        return document
    sessions = os.path.join(home, "sessions")
    compressed = any(path.endswith(".zst") for path in newest_session_files(sessions))
    note = " (compressed .jsonl.zst files are not read)" if compressed else ""
    raise Unavailable(f"{reason}; no rate limits in the session files under {sessions}{note}")


def interrupt(signum, _frame):
    # Later signals are ignored: ending the app server takes at most ENDING_TIME.
    for sig in INTERRUPTS:
        signal.signal(sig, signal.SIG_IGN)
    raise Interrupted(signal.Signals(signum))


def main(argv=None):
    parser = argparse.ArgumentParser(description="Prints the Codex account limits.")
    parser.add_argument("--live", action="store_true", help="ask the Codex CLI's app server first")
    parser.add_argument("--json", action="store_true", help="print the limits document as JSON")
    args = parser.parse_args(argv)
    for sig in INTERRUPTS:
        signal.signal(sig, interrupt)

    try:
        document = limits_document(args.live)
    except Unavailable as error:
        print(f"vantrel.py: {error}", file=sys.stderr)
        return 1
    except Interrupted as interruption:
        print(f"vantrel.py: interrupted by {interruption.signal.name}", file=sys.stderr)
        return 128 + interruption.signal
    print(json.dumps(document, ensure_ascii=False, allow_nan=False) if args.json else summary(document))
    return 0


if __name__ == "__main__":
    sys.exit(main())
