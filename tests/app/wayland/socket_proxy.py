"""A Unix socket standing in for a compositor's: it passes bytes through to the real socket until the test
cuts every connection, or, instead of the compositor, answers garbage or nothing at all. Enough for the
connections Vantrel makes itself (sway's IPC, and a Wayland connection that binds no interface passing
file descriptors)."""

import os
import socket
import sys
import threading


class SocketProxy:
    def __init__(self, path, upstream=None, answer=None):
        """upstream: the real socket to pass through to; answer: bytes sent once to each client instead
        (b"" answers nothing and keeps the connection open)."""
        self.path, self.upstream, self.answer = str(path), upstream, answer
        self.connections = []
        self.listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.listener.bind(self.path)
        self.listener.listen()
        self.lock = threading.Lock()
        threading.Thread(target=self._accept, daemon=True).start()

    def _accept(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:  # closed
                return
            with self.lock:
                self.connections.append(client)
            if self.upstream is None:
                if self.answer:
                    client.sendall(self.answer)
                continue
            server = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            server.connect(self.upstream)
            with self.lock:
                self.connections.append(server)
            for source, target in ((client, server), (server, client)):
                threading.Thread(target=self._pump, args=(source, target), daemon=True).start()

    @staticmethod
    def _pump(source, target):
        try:
            while data := source.recv(65536):
                target.sendall(data)
        except OSError:
            pass
        finally:
            for end in (source, target):
                try:
                    end.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass

    def cut(self):
        """Every connection closed, as when the compositor goes away."""
        with self.lock:
            for connection in self.connections:
                try:
                    connection.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass
                connection.close()
            self.connections.clear()

    def close(self):
        self.listener.close()
        self.cut()
        os.unlink(self.path)


if __name__ == "__main__":
    # A proxy in a process of its own, passing through until it is killed (which drops every connection):
    # socket_proxy.py PATH UPSTREAM. It says "ready" once it listens.
    SocketProxy(sys.argv[1], sys.argv[2])
    print("ready", flush=True)
    threading.Event().wait()
