"""A stand-in for `codex app-server` whose behaviour a test chooses.

FAKE_SERVER_MODE picks the behaviour:
  normal     answers like the real server
  chatty     sends notifications, a stray reply and lines that are no JSON object before the answer
  split      writes the answer in two pieces
  error      answers the rate-limit request with an error
  silent     never answers the rate-limit request
  lingering  answers, but stays after its input is closed and ignores SIGTERM
  exit       ends at once, reading nothing
  deaf       reads nothing, never ends by itself and ignores SIGTERM
FAKE_SERVER_REPLY holds the `account/rateLimits/read` result as JSON, and FAKE_SERVER_LOG names a file
that receives one JSON line per event: the start (pid, arguments, PATH), every message read, and the
end of the input.
"""

import json
import os
import signal
import sys
import time


def log(**event):
    with open(os.environ["FAKE_SERVER_LOG"], "a", encoding="utf-8") as stream:
        stream.write(json.dumps(event) + "\n")


def say(*lines):
    sys.stdout.write("".join(line + "\n" for line in lines))
    sys.stdout.flush()


def reply_text(request_id):
    return '{"id": %d, "result": %s}' % (request_id, os.environ.get("FAKE_SERVER_REPLY", "null"))


def answer(mode, message):
    """What the server prints for one message of the client."""
    method, request_id = message.get("method"), message.get("id")
    if method == "initialize":
        return ['{"id": 1, "result": {"userAgent": "fake", "codexHome": "/nowhere"}}']
    if method != "account/rateLimits/read":
        return []
    if mode in ("normal", "lingering"):
        return [reply_text(request_id)]
    if mode == "chatty":
        # Notifications, a stray reply, a line that is no object and one that is no JSON come first.
        return ['{"method": "account/rateLimits/updated", "params": {"rateLimits": {}}}',
                '{"id": 99, "result": {"rateLimits": null}}', "[1, 2]", "WARN not json",
                '{"method": "configWarning", "params": {"summary": "x"}}', reply_text(request_id)]
    if mode == "error":
        return ['{"id": %d, "error": {"code": -32600, "message": "codex account authentication '
                'required to read rate limits"}}' % request_id]
    return []


def main():
    mode = os.environ.get("FAKE_SERVER_MODE", "normal")
    log(event="start", pid=os.getpid(), argv=sys.argv[1:], path=os.environ.get("PATH", ""))
    if mode == "deaf":
        # Ignores the polite ways of ending it.
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
        while True:
            time.sleep(1)
    if mode == "exit":
        return
    for line in sys.stdin:
        message = json.loads(line)
        log(event="message", message=message)
        if mode == "split" and message.get("method") == "account/rateLimits/read":
            text = reply_text(message["id"])
            sys.stdout.write(text[:7])
            sys.stdout.flush()
            time.sleep(0.2)
            say(text[7:])
            continue
        if mode == "silent" and message.get("method") == "account/rateLimits/read":
            continue
        say(*answer(mode, message))
    log(event="end of input")
    if mode == "lingering":
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
        while True:
            time.sleep(1)


if __name__ == "__main__":
    main()
