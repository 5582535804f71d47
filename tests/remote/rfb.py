"""A VNC viewer in a few lines: what it sees, and a mouse."""

import socket
import struct

BYTES_OF_PIXEL = 4


class Viewer:
    """Looks at a server of version 3.8 that asks for no password, as 0xRRGGBB pixels."""

    def __init__(self, port, patience=60):
        self._socket = socket.create_connection(("127.0.0.1", port), patience)
        assert self._read(12) == b"RFB 003.008\n"
        self._socket.sendall(b"RFB 003.008\n")
        self.security = self._read(self._number("B"))
        if self.security != b"\x01":
            return  # asks for something that we do not know
        self._socket.sendall(b"\x01")
        assert self._number("I") == 0, "refused"
        self._socket.sendall(b"\x01")  # others may look on
        self.width, self.height = struct.unpack(">HH", self._read(4))
        self._read(16)  # its pixel format; ours comes next
        self.title = self._read(self._number("I")).decode()
        self._pixels = bytearray(self.width * self.height * BYTES_OF_PIXEL)
        self._socket.sendall(
            struct.pack(">B3xBBBBHHHBBB3x", 0, 32, 24, 0, 1, 255, 255, 255, 16, 8, 0)
            + struct.pack(">BxHi", 2, 1, 0)  # pixels as they are, nothing packed
        )
        self._ask(incremental=0)

    def close(self):
        self._socket.close()

    def refuses(self, answer):
        """Whether VNC authentication with these 16 bytes fails."""
        assert self.security == b"\x02", self.security
        self._socket.sendall(b"\x02")
        self._read(16)
        self._socket.sendall(answer)
        return self._number("I") != 0

    def pixel(self, x, y):
        at = (y * self.width + x) * BYTES_OF_PIXEL
        return struct.unpack("<I", self._pixels[at : at + BYTES_OF_PIXEL])[0] & 0xFFFFFF

    def part(self, x, y, width, height):
        """The pixels of a rectangle, to be compared with those of another time."""
        return [self.pixel(column, row) for row in range(y, y + height)
                for column in range(x, x + width)]

    def mouse(self, x, y, down):
        self._socket.sendall(struct.pack(">BBHH", 5, 1 if down else 0, x, y))

    def wait(self, condition):
        """Takes updates until `condition` holds; gives up when none comes for all our patience."""
        while not condition():
            self._take_message()

    def _ask(self, incremental=1):
        self._socket.sendall(struct.pack(">BBHHHH", 3, incremental, 0, 0, self.width, self.height))

    def _take_message(self):
        kind = self._number("B")
        if kind == 0:
            self._read(1)
            for _ in range(self._number("H")):
                self._take_rectangle()
            self._ask()
        elif kind == 3:
            self._read(3)
            self._read(self._number("I"))
        else:
            assert kind == 2, f"message {kind}"

    def _take_rectangle(self):
        x, y, width, height, encoding = struct.unpack(">HHHHi", self._read(12))
        assert encoding == 0, encoding
        for row in range(y, y + height):
            at = (row * self.width + x) * BYTES_OF_PIXEL
            length = width * BYTES_OF_PIXEL
            self._pixels[at : at + length] = self._read(length)

    def _number(self, kind):
        return struct.unpack(">" + kind, self._read(struct.calcsize(kind)))[0]

    def _read(self, length):
        data = b""
        while len(data) < length:
            part = self._socket.recv(length - len(data))
            assert part, "the server has closed the connection"
            data += part
        return data
