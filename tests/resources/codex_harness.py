"""The real Codex CLI for the tests: installed once from npm into a cache outside the clone, signed in
with a test token, and pointed at a mock of its backend on 127.0.0.1."""

import base64
import json
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

CODEX_VERSION = "0.169.0"
CODEX_PACKAGE = f"@openai/codex@{CODEX_VERSION}"
INSTALL_TIME_LIMIT = 600


class InstallFailed(Exception):
    """The CLI could not be installed here (no npm, no registry); the tests that need it are skipped."""


def cache_directory():
    cache = os.environ.get("XDG_CACHE_HOME") or os.path.join(os.path.expanduser("~"), ".cache")
    return os.path.join(cache, "vantrel", f"codex-{CODEX_VERSION}")


def installed_codex():
    """The npm launcher of the pinned CLI, as a global npm install puts it; installs it on first use."""
    target = cache_directory()
    launcher = os.path.join(target, "node_modules", ".bin", "codex")
    if os.access(launcher, os.X_OK):
        return launcher
    npm = shutil.which("npm")
    if npm is None:
        raise InstallFailed("npm is not installed")
    os.makedirs(os.path.dirname(target), exist_ok=True)
    # A half-finished install never takes the final name, so a later run cannot mistake it for a whole one.
    staging = tempfile.mkdtemp(prefix=f"codex-{CODEX_VERSION}.", suffix=".partial",
                               dir=os.path.dirname(target))
    try:
        command = [npm, "install", "--prefix", staging, "--no-save", "--no-audit", "--no-fund",
                   "--loglevel=error", CODEX_PACKAGE]
        finished = subprocess.run(command, capture_output=True, text=True, timeout=INSTALL_TIME_LIMIT,
                                  stdin=subprocess.DEVNULL)
        if finished.returncode != 0:
            errors = [line for line in finished.stderr.splitlines() if "complete log" not in line]
            message = " / ".join(errors[:2]) or "no message"
            raise InstallFailed(f"npm install {CODEX_PACKAGE} failed: {message}")
        version = subprocess.run([os.path.join(staging, "node_modules", ".bin", "codex"), "--version"],
                                 capture_output=True, text=True, timeout=60, stdin=subprocess.DEVNULL).stdout
        if CODEX_VERSION not in version:
            raise InstallFailed(f"the installed CLI reports {version.strip()!r}")
        os.chmod(staging, 0o755)
        try:
            os.rename(staging, target)
        except OSError:
            if not os.access(launcher, os.X_OK):
                raise
    except subprocess.TimeoutExpired:
        raise InstallFailed(f"npm install {CODEX_PACKAGE} took over {INSTALL_TIME_LIMIT} s") from None
    finally:
        shutil.rmtree(staging, ignore_errors=True)
    return launcher


def unsigned_jwt(claims):
    def part(value):
        return base64.urlsafe_b64encode(json.dumps(value).encode()).rstrip(b"=").decode()

    return ".".join([part({"alg": "none", "typ": "JWT"}), part(claims), part({"test": True})])


def write_auth(codex_home):
    """A ChatGPT sign-in whose token expires in a year, so the CLI never tries to refresh it."""
    claims = {"exp": int(time.time()) + 365 * 86400, "email": "tester@example.invalid",
              "https://api.openai.com/auth": {"chatgpt_account_id": "acct-test", "chatgpt_plan_type": "plus",
                                              "chatgpt_user_id": "user-test"}}
    token = unsigned_jwt(claims)
    auth = {"auth_mode": "chatgpt", "OPENAI_API_KEY": None,
            "tokens": {"id_token": token, "access_token": token, "refresh_token": "refresh-test",
                       "account_id": "acct-test"},
            "last_refresh": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())}
    with open(os.path.join(codex_home, "auth.json"), "w", encoding="utf-8") as stream:
        json.dump(auth, stream)


def usage_window(used_percent, window_seconds, reset_at):
    return {"used_percent": used_percent, "limit_window_seconds": window_seconds,
            "reset_after_seconds": max(0, reset_at - int(time.time())), "reset_at": reset_at}


def usage_payload(primary_used=37, secondary_used=12, reached=False):
    """A /wham/usage answer: a 5-hour and a weekly window, credits, and one extra metered limit."""
    now = int(time.time())
    return {
        "plan_type": "plus",
        "rate_limit": {"allowed": not reached, "limit_reached": reached,
                       "primary_window": usage_window(primary_used, 18000, now + 3600),
                       "secondary_window": usage_window(secondary_used, 604800, now + 86400)},
        "credits": {"has_credits": True, "unlimited": False, "balance": "12.50"},
        "additional_rate_limits": [{
            "limit_name": "Spark", "metered_feature": "codex_spark",
            "rate_limit": {"allowed": True, "limit_reached": False,
                           "primary_window": usage_window(5, 18000, now + 600), "secondary_window": None}}],
        "spend_control": {"reached": reached, "individual_limit": None},
        "rate_limit_reached_type": {"type": "workspace_member_credits_depleted"} if reached else None,
    }


class MockBackend:
    """The backend's usage endpoint on 127.0.0.1; every other path answers 404. Records every request."""

    def __init__(self):
        self.status, self.body = 200, usage_payload()
        self.requests = []
        backend = self

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self):
                self.answer()

            def do_POST(self):
                self.rfile.read(int(self.headers.get("Content-Length") or 0))
                self.answer()

            def answer(self):
                backend.requests.append((self.client_address[0], self.command, self.path))
                if self.path.split("?")[0] == "/backend-api/wham/usage":
                    status, body = backend.status, backend.body
                else:
                    status, body = 404, {"detail": "Not Found"}
                data = json.dumps(body).encode()
                self.send_response(status)
                self.send_header("Content-Type", "application/json")
                self.send_header("Content-Length", str(len(data)))
                self.end_headers()
                self.wfile.write(data)

            def log_message(self, *_):
                pass

        class Server(ThreadingHTTPServer):
            def handle_error(self, request, client_address):
                # A client that hangs up before its answer (a read ended at its time limit) is no error.
                if not isinstance(sys.exc_info()[1], ConnectionError):
                    super().handle_error(request, client_address)

        self.server = Server(("127.0.0.1", 0), Handler)
        self.port = self.server.server_address[1]
        self.thread = threading.Thread(target=self.server.serve_forever, daemon=True)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.server.shutdown()
        self.server.server_close()

    def config_overrides(self):
        """What VANTREL_CODEX_CONFIG carries: every URL of the CLI on this mock, tokens in auth.json."""
        base = f"http://127.0.0.1:{self.port}/backend-api"
        return "\n".join([f'chatgpt_base_url="{base}/"', f'openai_base_url="{base}/codex"',
                          'cli_auth_credentials_store="file"'])
