#!/usr/bin/env python3
"""Prints the Codex account limits as one JSON document: the limits document that Vantrel reads.

Usage: vantrel.py [--live] [--json]

  --live  fresh limits: the newest figures the Codex CLI recorded in its session files when they are at
          most 60 s old, otherwise the account's limits as the CLI's app server reads them; when that
          fails, and always without --live, the newest figures in the session files are used
  --json  print the document as one JSON object; otherwise a short summary in Czech

The app server asked is a running Codex daemon (the control socket under CODEX_HOME), else the one this
script keeps between runs, else one started for this run alone. A kept server (only where
XDG_RUNTIME_DIR is set) ends after three minutes without a read, when the program that runs this script
ends, or with its keeper, a copy of this script started as `vantrel.py --keep SOCKET PID -- COMMAND…`.
The live exchange has a hard limit of 15 s, and a server started for one run is always ended, also when
this script is interrupted. With nothing to report the exit status is 1, the reason is one line on
standard error, and standard output stays empty.

Environment:
  VANTREL_CODEX         the codex executable to run (otherwise PATH, the usual install places, then npm's
                        global prefix, which is remembered in $XDG_CACHE_HOME/vantrel/npm-prefix.json)
  VANTREL_CODEX_CONFIG  extra `-c key=value` overrides for the app server, one per line (the tests
                        point the CLI at a local backend with it); with them, no running daemon is used
  CODEX_HOME            the CLI's home (default ~/.codex); the session files lie under its sessions/

Besides the keys Vantrel reads, the document names its "source": "live" or "session".

Signing in is the CLI's business: this script never reads or copies the account's tokens.
"""

# Only what every run needs is imported here; each way of reading imports what it uses.
import json
import os
import signal
import sys
import time

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
# A kept server ends after this long (s) without a read; Vantrel reads every 60 s.
KEEP_IDLE = 180.0
# How long a run waits for a keeper it started to listen (s) before it starts a server of its own.
KEEPER_START = 2.0
CLIENT_INFO = {"name": "vantrel", "title": "Vantrel", "version": "0.1.0"}
RATE_LIMITS_READ = ("account/rateLimits/read", {"excludeResetCreditDetails": True})
INTERRUPTS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
PRIMARY_BUCKET = "codex"
NUMBER_LIMIT = 10**15
SLOTS = (("primary", "krátkodobý limit"), ("secondary", "dlouhodobý limit"))
# Where npm's launcher (bin/codex.js of @openai/codex) finds the CLI's own binary, by system and machine.
NATIVE_TARGETS = {("linux", "x86_64"): ("x86_64-unknown-linux-musl", "codex-linux-x64"),
                  ("linux", "aarch64"): ("aarch64-unknown-linux-musl", "codex-linux-arm64"),
                  ("darwin", "x86_64"): ("x86_64-apple-darwin", "codex-darwin-x64"),
                  ("darwin", "arm64"): ("aarch64-apple-darwin", "codex-darwin-arm64")}
# Larger frames are not the daemon's (it sends at most 16 MiB unfragmented).
FRAME_LIMIT = 16 * 1024 * 1024
USAGE = "usage: vantrel.py [--live] [--json]"


class Unavailable(Exception):
    """The limits could not be read from this source; the message says why, in one line."""


class Refused(Unavailable):
    """The app server answered the request with an error (no sign-in, the service failed)."""


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
    import re
    from datetime import datetime

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


class Channel:
    """A connection to an app server: JSON-RPC messages out and in, every wait bounded by `deadline`."""

    name = "codex app-server"

    def __init__(self, deadline):
        self.deadline = deadline
        self.buffer = b""

    def reply(self, request_id, method, params):
        """The server's answer to one request; notifications and other replies in between are skipped."""
        self.send({"method": method, "id": request_id, "params": params})
        while True:
            message = self.receive()
            if message.get("id") == request_id:
                return message

    def request(self, request_id, method, params):
        message = self.reply(request_id, method, params)
        error = message.get("error")
        if error is not None:
            text = error.get("message") if isinstance(error, dict) else error
            raise Refused(f"{self.name}: {method}: {' '.join(str(text).split())}")
        return message.get("result")

    def handshake(self):
        self.request(1, "initialize", {"clientInfo": CLIENT_INFO})
        self.send({"method": "initialized"})

    def read_limits(self):
        """The `account/rateLimits/read` result after the handshake; the channel is ended after it."""
        try:
            self.handshake()
            return self.request(2, *RATE_LIMITS_READ)
        finally:
            self.end()

    def read_chunk(self, descriptor):
        import select

        poller = select.poll()
        poller.register(descriptor, select.POLLIN)
        remaining = self.deadline - time.monotonic()
        if remaining <= 0 or not poller.poll(remaining * 1000):
            raise Unavailable(f"{self.name} gave no answer in time")
        try:
            chunk = os.read(descriptor, 65536)
        except OSError:
            chunk = b""
        if not chunk:
            raise Unavailable(f"{self.name} ended without an answer")
        return chunk

    def write_all(self, descriptor, data):
        try:
            while data:
                data = data[os.write(descriptor, data):]
        except OSError:
            raise Unavailable(f"{self.name} stopped reading its input") from None


class LineChannel(Channel):
    """One JSON object per line, as the app server speaks on its standard input and output."""

    def __init__(self, read_from, write_to, deadline, name=Channel.name):
        super().__init__(deadline)
        self.read_from, self.write_to, self.name = read_from, write_to, name

    def send(self, message):
        self.write_all(self.write_to, json.dumps(message).encode() + b"\n")

    def receive(self):
        """The next JSON object; lines that are not objects are skipped."""
        while True:
            line, newline, rest = self.buffer.partition(b"\n")
            if not newline:
                self.buffer += self.read_chunk(self.read_from)
                continue
            self.buffer = rest
            try:
                message = json.loads(line)
            except ValueError:
                continue
            if isinstance(message, dict):
                return message

    def drain(self):
        """Drops what arrived unasked (notifications) without waiting; False once the other end is gone."""
        try:
            chunk = os.read(self.read_from, 65536)
        except BlockingIOError:
            return True
        except OSError:
            return False
        self.buffer = (self.buffer + chunk).rpartition(b"\n")[2]
        return bool(chunk)


class AppServer(LineChannel):
    """One `codex app-server` child on standard input and output; `end()` always ends it.

    If its parent is killed outright, the server sees its standard input close and exits by itself.
    """

    def __init__(self, command, deadline, environment=None):
        import subprocess

        environment = dict(os.environ if environment is None else environment)
        # A codex installed by npm is a `#!/usr/bin/env node` script whose node sits beside it.
        directory = os.path.dirname(os.path.abspath(command[0]))
        environment["PATH"] = os.pathsep.join([directory, environment.get("PATH", "")])
        # A session of its own: ending the group also ends the binary that npm's wrapper starts.
        try:
            self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                            stderr=subprocess.DEVNULL, env=environment,
                                            start_new_session=True)
        except OSError as error:
            raise Unavailable(f"cannot start {command[0]}: {error.strerror}") from None
        super().__init__(self.process.stdout.fileno(), self.process.stdin.fileno(), deadline)

    def end(self):
        """Closing standard input asks the server to exit; one that does not is killed with its group."""
        import subprocess

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
        import subprocess

        for sig, grace in ((signal.SIGTERM, TERM_GRACE), (signal.SIGKILL, None)):
            try:
                os.killpg(self.process.pid, sig)
                self.process.wait(timeout=grace)
                return
            except ProcessLookupError:
                return
            except subprocess.TimeoutExpired:
                continue


class WebSocketChannel(Channel):
    """The same messages as WebSocket text frames over a Unix socket, as a running Codex daemon serves
    them (`codex app-server --listen unix://`)."""

    name = "the Codex daemon"
    ACCEPT_SUFFIX = b"258EAFA5-E914-47DA-95CA-C5AB0DC85B11"

    def __init__(self, path, deadline):
        import base64
        import hashlib
        import socket

        super().__init__(deadline)
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            self.socket.settimeout(max(0.001, deadline - time.monotonic()))
            self.socket.connect(path)
            self.socket.settimeout(None)  # blocking again: every later wait is bounded by read_chunk
        except OSError as error:
            self.socket.close()
            raise Unavailable(f"cannot reach the Codex daemon: {error.strerror or error}") from None
        key = base64.b64encode(os.urandom(16))
        self.write_all(self.socket.fileno(), b"GET / HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\n"
                       b"Connection: Upgrade\r\nSec-WebSocket-Version: 13\r\nSec-WebSocket-Key: " + key +
                       b"\r\n\r\n")
        while b"\r\n\r\n" not in self.buffer:
            self.buffer += self.read_chunk(self.socket.fileno())
        head, _, self.buffer = self.buffer.partition(b"\r\n\r\n")
        accept = base64.b64encode(hashlib.sha1(key + self.ACCEPT_SUFFIX).digest())
        lines = head.split(b"\r\n")
        headers = {name.strip().lower(): value.strip() for name, _, value in (line.partition(b":")
                                                                              for line in lines[1:])}
        if lines[0].split(b" ")[1:2] != [b"101"] or headers.get(b"sec-websocket-accept") != accept:
            self.end()
            raise Unavailable("the Codex daemon refused the connection")

    def end(self):
        self.socket.close()

    def send(self, message):
        self.send_frame(0x1, json.dumps(message).encode())

    def send_frame(self, opcode, payload):
        """A client's frames are masked (RFC 6455, 5.3)."""
        import struct

        size = len(payload)
        if size < 126:
            header = struct.pack("!BB", 0x80 | opcode, 0x80 | size)
        elif size < 65536:
            header = struct.pack("!BBH", 0x80 | opcode, 0x80 | 126, size)
        else:
            header = struct.pack("!BBQ", 0x80 | opcode, 0x80 | 127, size)
        mask = os.urandom(4)
        self.write_all(self.socket.fileno(), header + mask + masked(payload, mask))

    def receive(self):
        """The next JSON object sent as text, pieced together from its fragments; pings are answered."""
        pieces = []
        while True:
            final, opcode, payload = self.frame()
            if opcode == 0x8:
                raise Unavailable("the Codex daemon closed the connection")
            if opcode == 0x9:
                self.send_frame(0xA, payload)
            elif opcode in (0x0, 0x1):
                pieces.append(payload)
                if final:
                    try:
                        message = json.loads(b"".join(pieces))
                    except ValueError:
                        message = None
                    pieces = []
                    if isinstance(message, dict):
                        return message

    def frame(self):
        import struct

        head = self.take(2)
        size = head[1] & 0x7F
        if size == 126:
            size = struct.unpack("!H", self.take(2))[0]
        elif size == 127:
            size = struct.unpack("!Q", self.take(8))[0]
        if size > FRAME_LIMIT:
            raise Unavailable(f"the Codex daemon sent a frame of {size} bytes")
        mask = self.take(4) if head[1] & 0x80 else None
        payload = self.take(size)
        if mask is not None:
            payload = masked(payload, mask)
        return bool(head[0] & 0x80), head[0] & 0x0F, payload

    def take(self, count):
        while len(self.buffer) < count:
            self.buffer += self.read_chunk(self.socket.fileno())
        data, self.buffer = self.buffer[:count], self.buffer[count:]
        return data


def masked(payload, mask):
    """The payload masked, or unmasked, with a frame's four-byte key (RFC 6455, 5.3)."""
    return bytes(byte ^ mask[index & 3] for index, byte in enumerate(payload))


def read_one_shot(command, deadline, environment=None):
    """The `account/rateLimits/read` result of a server started for this read alone."""
    return AppServer(command, deadline, environment).read_limits()


def live_document(home):
    """The document as an app server reads it now."""
    return document_from_reply(live_result(home), round(time.time(), 3))


def live_result(home):
    """The result from a running daemon (one round trip, no server start), the kept server, or a new one."""
    deadline = time.monotonic() + LIVE_TIME_LIMIT - ENDING_TIME
    failures = []
    daemon = os.path.join(home, "app-server-control", "app-server-control.sock")
    # The daemon runs with the user's configuration, which overrides given here cannot change.
    if not os.environ.get("VANTREL_CODEX_CONFIG") and os.path.exists(daemon):
        try:
            return WebSocketChannel(daemon, deadline).read_limits()
        except Refused:
            raise
        except Unavailable as error:
            failures.append(str(error))
    codex = find_codex()
    if codex is None:
        raise Unavailable("; ".join([*failures, "Codex CLI not found (install it, or name it in VANTREL_CODEX)"]))
    command, environment = launch(codex)
    keeper = keeper_socket(command, home)
    if keeper is not None:
        try:
            return read_kept(keeper, command, environment, deadline)
        except Refused:
            raise
        except Unavailable:
            pass  # the keeper is gone or broken: this run starts a server of its own
    return read_one_shot(command, deadline, environment)


def keeper_socket(command, home):
    """Where the server kept for this command and CODEX_HOME listens, or None where none may be kept:
    without XDG_RUNTIME_DIR, or without pidfds (Linux 5.3) to see the program that runs this script end."""
    import hashlib

    runtime = os.environ.get("XDG_RUNTIME_DIR")
    if not runtime or not os.path.isabs(runtime) or not hasattr(os, "pidfd_open"):
        return None
    directory = os.path.join(runtime, "vantrel")
    try:
        os.mkdir(directory, 0o700)
    except FileExistsError:
        pass
    except OSError:
        return None
    try:
        info = os.lstat(directory)
    except OSError:
        return None
    # Only a directory of this user's that nobody else may enter.
    if info.st_mode & 0o170777 != 0o040700 or info.st_uid != os.getuid():
        return None
    key = hashlib.sha256(json.dumps([command, os.path.realpath(home)]).encode()).hexdigest()[:16]
    path = os.path.join(directory, f"codex-{key}.sock")
    return path if len(path.encode()) < 108 else None  # the size of sun_path


def read_kept(path, command, environment, deadline):
    """The result through the server kept at `path`; a keeper is started where none listens."""
    import socket

    def connected():
        connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            connection.connect(path)
            return connection
        except (FileNotFoundError, ConnectionRefusedError):
            connection.close()
            return None
        except OSError as error:
            connection.close()
            raise Unavailable(f"cannot reach the kept server: {error.strerror}") from None

    connection = connected()
    if connection is None:
        start_keeper(path, command, environment)
        give_up = min(deadline, time.monotonic() + KEEPER_START)
        while connection is None:
            if time.monotonic() > give_up:
                raise Unavailable("the kept server's keeper did not start")
            time.sleep(0.02)
            connection = connected()
    try:
        return LineChannel(connection.fileno(), connection.fileno(), deadline).request(2, *RATE_LIMITS_READ)
    finally:
        connection.close()


def start_keeper(path, command, environment):
    """This script again, as the keeper, in a session of its own that holds none of this run's files."""
    null = os.devnull
    actions = [(os.POSIX_SPAWN_OPEN, 0, null, os.O_RDONLY, 0), (os.POSIX_SPAWN_OPEN, 1, null, os.O_WRONLY, 0),
               (os.POSIX_SPAWN_OPEN, 2, null, os.O_WRONLY, 0)]
    arguments = [sys.executable, os.path.abspath(__file__), "--keep", path, str(requester_pid()), "--", *command]
    try:
        os.posix_spawn(sys.executable, arguments, environment, file_actions=actions, setsid=True)
    except OSError as error:
        raise Unavailable(f"cannot start a keeper: {error.strerror}") from None


def requester_pid():
    """The program that runs this script: the parent of its process group's leader. Vantrel starts each
    run as a group of its own, and so does a shell; a wrapper between them (a measuring tool) leads it."""
    leader = os.getpgrp()
    if leader == os.getpid():
        return os.getppid()
    try:
        with open(f"/proc/{leader}/stat", encoding="ascii", errors="replace") as stream:
            return int(stream.read().rpartition(")")[2].split()[1])
    except (OSError, ValueError, IndexError):
        return os.getppid()


class Keeper:
    """Answers rate-limit reads on a Unix socket from one app server that it keeps between them.

    It ends, and its server with it, after `idle_limit` seconds without a read, when the watched program
    (Vantrel) or the server ends, or on a signal. Killed outright, it closes its server's standard input,
    which ends the server too. Only `account/rateLimits/read` is passed on.
    """

    def __init__(self, path, command):
        self.path, self.command = path, command
        self.server, self.stamp, self.last_id = None, None, 1

    def run(self, watched, idle_limit=KEEP_IDLE):
        import select
        import socket

        os.chdir("/")
        lock = self.claim()
        if lock is None:
            return
        listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            watcher = os.pidfd_open(watched)
        except OSError:
            watcher = None
        try:
            if watcher is None:
                return
            try:
                os.unlink(self.path)
            except FileNotFoundError:
                pass
            listener.bind(self.path)
            listener.listen(8)
            last_read = time.monotonic()
            while True:
                poller = select.poll()
                for descriptor in (listener.fileno(), watcher, self.server and self.server.read_from):
                    if descriptor is not None:
                        poller.register(descriptor, select.POLLIN)
                remaining = last_read + idle_limit - time.monotonic()
                events = poller.poll(remaining * 1000) if remaining > 0 else []
                if not events or any(descriptor == watcher for descriptor, _ in events):
                    return
                for descriptor, _ in events:
                    if self.server and descriptor == self.server.read_from and not self.server.drain():
                        return
                    if descriptor == listener.fileno():
                        connection, _ = listener.accept()
                        self.answer(connection)
                        last_read = time.monotonic()
        finally:
            self.end_server()
            listener.close()
            if watcher is not None:
                os.close(watcher)
            for leftover in (self.path, lock.name):
                try:
                    os.unlink(leftover)
                except OSError:
                    pass
            lock.close()

    def claim(self):
        """The keepers' lock for this socket, or None while another keeper holds it."""
        import fcntl

        try:
            lock = open(self.path + ".lock", "a", encoding="ascii")
        except OSError:
            return None
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            # A keeper that ended meanwhile removed the file this one locked.
            if os.fstat(lock.fileno()).st_ino != os.stat(lock.name).st_ino:
                raise OSError
        except OSError:
            lock.close()
            return None
        lock.truncate(0)
        lock.write(f"{os.getpid()}\n")  # who to signal to end it
        lock.flush()
        return lock

    def answer(self, connection):
        deadline = time.monotonic() + LIVE_TIME_LIMIT - ENDING_TIME
        client = LineChannel(connection.fileno(), connection.fileno(), deadline, "the reader")
        try:
            request = client.receive()
            if request.get("method") == RATE_LIMITS_READ[0]:
                reply = self.forward(request.get("params"), deadline)
            else:
                reply = {"error": {"message": f"only {RATE_LIMITS_READ[0]} is answered here"}}
            if reply is not None:
                client.send({"id": request.get("id"), **reply})
        except Unavailable:
            pass  # the reader went away; its own deadline tells it
        finally:
            connection.close()

    def forward(self, params, deadline):
        """The server's answer to one read, or None when the server failed (the reader then starts one of
        its own). The server is started first where none runs or what it started from has changed: the
        binary, or the sign-in and configuration under CODEX_HOME (by their stamps, not their contents)."""
        home = codex_home()
        stamp = [file_stamp(self.command[0]), file_stamp(os.path.join(home, "auth.json")),
                 file_stamp(os.path.join(home, "config.toml"))]
        try:
            if self.server is None or stamp != self.stamp:
                self.end_server()
                self.server, self.stamp = AppServer(self.command, deadline), stamp
                self.server.handshake()
            self.server.deadline = deadline
            self.last_id += 1
            reply = self.server.reply(self.last_id, RATE_LIMITS_READ[0], params)
            return {key: reply[key] for key in ("result", "error") if key in reply}
        except Unavailable:
            self.end_server()
            return None

    def end_server(self):
        if self.server is not None:
            self.server.end()
            self.server = None


def local_time(seconds):
    from datetime import datetime, timezone

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
            document = live_document(home)
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


def keep_main(arguments):
    """`--keep SOCKET PID -- COMMAND…`: the keeper of one server, started by a run of this script."""
    if len(arguments) < 4 or arguments[2] != "--" or not arguments[1].isdigit():
        print(f"vantrel.py: --keep needs SOCKET PID -- COMMAND…\n{USAGE}", file=sys.stderr)
        return 2
    try:
        Keeper(arguments[0], arguments[3:]).run(int(arguments[1]))
    except Interrupted as interruption:
        return 128 + interruption.signal
    except OSError as error:
        # Its socket could not be made; the run that started it has started a server of its own.
        print(f"vantrel.py: --keep: {error}", file=sys.stderr)
        return 1
    return 0


def main(argv=None):
    arguments = sys.argv[1:] if argv is None else argv
    for sig in INTERRUPTS:
        signal.signal(sig, interrupt)
    if arguments[:1] == ["--keep"]:
        return keep_main(arguments[1:])
    if any(argument in ("-h", "--help") for argument in arguments):
        print(__doc__)
        return 0
    unknown = [argument for argument in arguments if argument not in ("--live", "--json")]
    if unknown:
        print(f"{USAGE}\nvantrel.py: error: unrecognized arguments: {' '.join(unknown)}", file=sys.stderr)
        return 2
    try:
        document = limits_document("--live" in arguments)
    except Unavailable as error:
        print(f"vantrel.py: {error}", file=sys.stderr)
        return 1
    except Interrupted as interruption:
        print(f"vantrel.py: interrupted by {interruption.signal.name}", file=sys.stderr)
        return 128 + interruption.signal
    print(json.dumps(document, ensure_ascii=False, allow_nan=False) if "--json" in arguments else summary(document))
    return 0


if __name__ == "__main__":
    sys.exit(main())
