"""A stand-in for a running Codex daemon: the app-server protocol as WebSocket text frames on the control
socket under CODEX_HOME, served from a thread of the test."""

import base64
import hashlib
import json
import os
import socket
import struct
import threading

GUID = b"258EAFA5-E914-47DA-95CA-C5AB0DC85B11"


class FakeDaemon:
    """Answers `initialize` and `account/rateLimits/read` with `reply`; `behaviour` picks a variation:
    normal, error (the read is refused), chatty (a ping, a notification and fragments come first),
    refuse (no WebSocket upgrade), hang up (the connection closes after the upgrade)."""

    def __init__(self, codex_home, reply, behaviour="normal"):
        self.reply, self.behaviour = reply, behaviour
        self.path = os.path.join(codex_home, "app-server-control", "app-server-control.sock")
        os.makedirs(os.path.dirname(self.path), exist_ok=True)
        # The socket of a stand-in before is left behind, as a daemon that died leaves it.
        if os.path.exists(self.path):
            os.remove(self.path)
        self.listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.listener.bind(self.path)
        self.listener.listen(4)
        self.received = []
        self.thread = threading.Thread(target=self.serve, daemon=True)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()
        self.thread.join(5)

    def serve(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            with connection:
                try:
                    self.converse(connection)
                except (OSError, ValueError):
                    pass

    def converse(self, connection):
        stream = connection.makefile("rb")
        head = b""
        while not head.endswith(b"\r\n\r\n"):
            head += stream.readline()
        key = [line.split(b":", 1)[1].strip() for line in head.split(b"\r\n")
               if line.lower().startswith(b"sec-websocket-key:")][0]
        if self.behaviour == "refuse":
            connection.sendall(b"HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n")
            return
        accept = base64.b64encode(hashlib.sha1(key + GUID).digest())
        connection.sendall(b"HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                           b"Sec-WebSocket-Accept: " + accept + b"\r\n\r\n")
        if self.behaviour == "hang up":
            return
        while True:
            opcode, payload = self.read_frame(stream)
            if opcode == 0x8 or opcode is None:
                return
            if opcode == 0xA:
                continue
            message = json.loads(payload)
            self.received.append(message)
            for text in self.answers(message):
                if self.behaviour == "chatty":
                    connection.sendall(frame(0x9, b"are you there"))
                    middle = len(text) // 2
                    connection.sendall(frame(0x1, text[:middle], final=False) + frame(0x0, text[middle:]))
                else:
                    connection.sendall(frame(0x1, text))

    def answers(self, message):
        method, request_id = message.get("method"), message.get("id")
        if method == "initialize":
            return [json.dumps({"id": request_id, "result": {"userAgent": "fake daemon"}}).encode()]
        if method != "account/rateLimits/read":
            return []
        if self.behaviour == "error":
            return [json.dumps({"id": request_id, "error": {
                "code": -32600, "message": "codex account authentication required to read rate limits"}}).encode()]
        notification = json.dumps({"method": "account/rateLimits/updated", "params": {}}).encode()
        return [notification, json.dumps({"id": request_id, "result": self.reply}).encode()]

    @staticmethod
    def read_frame(stream):
        head = stream.read(2)
        if len(head) < 2:
            return None, b""
        size = head[1] & 0x7F
        if size == 126:
            size = struct.unpack("!H", stream.read(2))[0]
        elif size == 127:
            size = struct.unpack("!Q", stream.read(8))[0]
        mask = stream.read(4) if head[1] & 0x80 else b"\0\0\0\0"
        payload = bytes(byte ^ mask[index % 4] for index, byte in enumerate(stream.read(size)))
        if not head[1] & 0x80:
            raise ValueError("a client's frame must be masked")
        return head[0] & 0x0F, payload


def frame(opcode, payload, final=True):
    """A server's frame: unmasked."""
    first = (0x80 if final else 0) | opcode
    if len(payload) < 126:
        return struct.pack("!BB", first, len(payload)) + payload
    if len(payload) < 65536:
        return struct.pack("!BBH", first, 126, len(payload)) + payload
    return struct.pack("!BBQ", first, 127, len(payload)) + payload
