"""Chromium without a window, driven through its debugging port."""

import base64
import http.client
import json
import os
import socket
import struct
import subprocess
import tempfile
import time


class WebSocket:
    """A client's end, for text of any length."""

    def __init__(self, port, path, patience):
        self._socket = socket.create_connection(("127.0.0.1", port), patience)
        key = base64.b64encode(os.urandom(16)).decode()
        self._socket.sendall(
            (f"GET {path} HTTP/1.1\r\nHost: 127.0.0.1:{port}\r\nUpgrade: websocket\r\n"
             f"Connection: Upgrade\r\nSec-WebSocket-Key: {key}\r\n"
             "Sec-WebSocket-Version: 13\r\n\r\n").encode())
        reply = b""
        while not reply.endswith(b"\r\n\r\n"):
            reply += self._read(1)
        assert b" 101 " in reply.split(b"\r\n")[0], reply

    def send(self, text):
        data = text.encode()
        mask = os.urandom(4)
        masked = bytes(byte ^ mask[i % 4] for i, byte in enumerate(data))
        self._socket.sendall(struct.pack(">BBQ", 0x81, 0xFF, len(data)) + mask + masked)

    def receive(self):
        message = b""
        while True:
            first, length = self._read(2)
            if length == 126:
                length = struct.unpack(">H", self._read(2))[0]
            elif length == 127:
                length = struct.unpack(">Q", self._read(8))[0]
            data = self._read(length)
            if first & 0x0F in (0, 1):
                message += data
                if first & 0x80:
                    return message.decode()

    def _read(self, length):
        data = b""
        while len(data) < length:
            part = self._socket.recv(length - len(data))
            assert part, "the browser has closed the connection"
            data += part
        return data


class Browser:
    """One page. `patience` in seconds is for everything that it is waited for."""

    def __init__(self, program, url, patience=120):
        self._patience = patience
        self._number = 0
        self._directory = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self._process = subprocess.Popen(
            [program, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--window-size=1000,700", "--remote-debugging-port=0",
             f"--user-data-dir={self._directory.name}", url],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self._page = self._connect()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.wait()
        self._directory.cleanup()

    def wait(self, condition):
        end = time.monotonic() + self._patience
        while True:
            result = condition()
            if result:
                return result
            assert time.monotonic() < end, "the browser does not come to that"
            time.sleep(0.1)

    def evaluate(self, expression):
        reply = self.command("Runtime.evaluate", expression=expression, returnByValue=True)
        return reply["result"].get("value")

    def mouse(self, kind, x, y):
        self.command("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def picture(self):
        """Of the page, as a PNG file's content."""
        return base64.b64decode(self.command("Page.captureScreenshot")["data"])

    def command(self, method, **parameters):
        self._number += 1
        self._page.send(json.dumps(
            {"id": self._number, "method": method, "params": parameters}))
        while True:
            message = json.loads(self._page.receive())
            if message.get("id") == self._number:
                assert "result" in message, message
                return message["result"]

    def _connect(self):
        place = os.path.join(self._directory.name, "DevToolsActivePort")

        def port():
            assert self._process.poll() is None, "the browser has ended"
            if os.path.exists(place):
                with open(place, encoding="ascii") as file:
                    return int(file.readline() or 0)
            return 0

        number = self.wait(port)

        def page():
            connection = http.client.HTTPConnection("127.0.0.1", number, timeout=self._patience)
            connection.request("GET", "/json")
            pages = json.loads(connection.getresponse().read())
            return next((entry for entry in pages if entry["type"] == "page"), None)

        path = self.wait(page)["webSocketDebuggerUrl"].split(str(number), 1)[1]
        return WebSocket(number, path, self._patience)
