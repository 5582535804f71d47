#!/usr/bin/env python3
"""Writes a few inputs of each fuzzer, from which libFuzzer makes others, into DIRECTORY/FUZZER/.

    makeseeds.py DIRECTORY
"""

import os
import pathlib
import struct
import sys
import zlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
E1, E2, E3 = 0, 1, 2


def words(*values):
    return b"".join(struct.pack("<I", value & 0xFFFFFFFF) for value in values)


def display_lists():
    clear, begin, end, display = 0x26000007, 0x1F000000, 0x21000000, 0

    def vertex(x, y):  # in sixteenths of a pixel
        return 0x40000000 | x << 15 | y

    def picture(primitive, *vertices):
        return [0x02203040, clear, 0x04FF8000, begin | primitive, *vertices, end, display]

    corner, other, third = vertex(32, 48), vertex(400, 300), vertex(600, 90)
    size = [0x0D000000 | 120, 0x0E000000 | 24]
    lists = {
        f"primitive{p}": [*size, *picture(p, corner, other, third)] for p in (2, 3, 4, 5, 6, 7, 8, 9)
    }
    bitmap = [0x01000000, 0x07000000 | 1 << 19 | 16 << 9 | 16, 0x08000000 | 16 << 9 | 16]
    lists["bitmap"] = [0x05000000, *bitmap, *picture(1, 0x80000000 | 4 << 21 | 4 << 12)]
    lists["text"] = picture(1, *(0x80000000 | x << 21 | 5 << 12 | 27 << 7 | 65 + x for x in (2, 12)))
    lists["stencil"] = [0x0A000000 | 3 << 16 | 0xFF01, 0x0C00001A, *picture(2, corner, other)]
    lists["blend"] = [0x0B000000 | 3 << 3 | 4, 0x100000A0, 0x0900050A, *picture(4, corner, other)]
    lists["scissor"] = [0x1B000000 | 5 << 11 | 6, 0x1C000000 | 20 << 12 | 9, *picture(9, corner, other)]
    lists["calls"] = [0x22000000, 0x1D000004, 0x23000000, display, clear, 0x25000000, 0x24000000]
    lists["transform"] = [0x15000080, 0x19000080, 0x17001000, *lists["bitmap"]]
    macros = words(0x0D000040, 0x0E000040)
    for name, contents in lists.items():
        for generation in (E1, E3):
            yield f"{name}-{generation}", bytes([generation]) + macros + words(*contents)


def command(code):
    return bytes([0, code])


def small(*values):
    return b"".join(bytes([1, value]) for value in values)


def pair(low, high):
    return bytes([2, low, high])


def number(value):
    return bytes([4]) + words(value)


def text(string):
    data = string.encode() + b"\0"
    data += b"\0" * (-len(data) % 4)
    return b"".join(bytes([4]) + data[i : i + 4] for i in range(0, len(data), 4))


def coprocessor_streams():
    start, swap = command(0x00), small(0) + command(0x01)
    contents = {
        "text": command(0x0C) + pair(3, 4) + pair(26, 0) + text("abc"),
        "button": command(0x0D) + pair(3, 4) + pair(40, 20) + pair(26, 0) + text("OK"),
        "keys": command(0x0E) + pair(0, 4) + pair(60, 20) + pair(26, 65) + text("ABC"),
        "progress": command(0x0F) + pair(3, 4) + pair(40, 9) + pair(0, 3) + pair(9, 0),
        "slider": command(0x10) + pair(3, 4) + pair(40, 9) + pair(0, 3) + pair(9, 0),
        "scrollbar": command(0x11) + pair(3, 4) + pair(40, 9) + pair(0, 3) + pair(2, 9),
        "toggle": command(0x12) + pair(3, 4) + pair(40, 26) + pair(0, 0) + text("on off"),
        "gauge": command(0x13) + pair(30, 20) + pair(18, 0) + pair(5, 4) + pair(30, 99),
        "clock": command(0x14) + pair(30, 20) + pair(18, 0) + pair(8, 15) + pair(30, 0),
        "spinner": command(0x16) + pair(30, 20) + pair(0, 0),
        "memory": command(0x1C) + number(64) + small(9) + command(0x18) + small(64, 9, 0),
        "set": command(0x1B) + small(64, 7, 30) + command(0x1D) + small(9, 64, 20),
        "append": command(0x1E) + small(0, 16),
        "tag": command(0x1A) + number(0x3020D8) + small(4) + number(0x04FF0000) + command(0x19)
        + number(0x30207C) + small(0),
        "gradient": command(0x0B) + pair(0, 0) + number(0xFF0000) + pair(60, 40) + number(255),
        "matrix": command(0x26) + command(0x27) + number(65536) * 2 + command(0x29) + number(9000)
        + command(0x28) + number(70000) * 2 + command(0x2A),
        "dial": command(0x2D) + pair(30, 20) + pair(18, 0) + pair(0, 80),
        "number": command(0x2E) + pair(3, 4) + pair(26, 3) + small(77),
        "sketch": command(0x30) + pair(0, 0) + pair(40, 40) + small(0) + small(2),
        "track": command(0x2C) + pair(3, 4) + pair(40, 20) + small(1),
        "font": command(0x3F) + small(1, 33) + command(0x43) + small(0) + pair(2, 8) + pair(8, 0),
        "snapshot": command(0x37) + small(6) + small(0) + pair(0, 0) + pair(8, 8),
        "inflate": command(0x22) + small(0)
        + b"".join(bytes([4]) + piece for piece in pieces(zlib.compress(b"abcabcabc" * 9), 4)),
        "image": command(0x24) + small(0, 0) + number(0xE0FFD8FF),
        "format": command(0x0C) + pair(3, 4) + bytes([4, 26, 0, 0, 16]) + text("%d %x") + small(5, 6),
    }
    for name, content in contents.items():
        for generation in (E1, E3):
            yield f"{name}-{generation}", bytes([generation]) + start + content + swap


def pieces(data, size):
    data += b"\0" * (-len(data) % size)
    return [data[i : i + size] for i in range(0, len(data), size)]


def flash_streams():
    # Of flash.cpp's table of commands: 0x80 + k, where (0x80 + k) % 14 is the command's place.
    def flash(place):
        return bytes([next(code for code in range(0x80, 0x100) if code % 14 == place)])

    def byte(value):
        return bytes([0, value])

    def sector(value):
        return bytes([2, value])

    content = bytes([8]) + b"contents"
    attach = flash(5) + flash(6) + byte(0)
    yield "attach", content + attach
    yield "erase", content + attach + flash(0)
    yield "write", content + attach + flash(1) + sector(1) + bytes([1, 64]) + bytes([3]) * 64
    yield "read", content + attach + flash(2) + sector(2) + sector(1) + bytes([1, 16])
    yield "update", content + attach + flash(3) + sector(2) + sector(1) + sector(1)
    yield "detached", content + flash(4) + flash(7) + byte(4) + bytes([0, 0x9F]) + flash(8) + byte(0) + byte(3)
    yield "deselect", content + flash(4) + flash(9) + attach
    yield "inflate", content + attach + flash(10) + sector(1) + flash(11) + sector(1) + byte(8)
    yield "append", content + attach + flash(12) + sector(1) + bytes([1, 2])


def streams():
    samples = [b"", b"a", b"abc" * 100, bytes(range(256)), b"\0" * 5000, os.path.basename(__file__).encode()]
    for i, sample in enumerate(samples):
        for level in (0, 1, 9):
            yield f"{i}-{level}", bytes([i % 3, 7 * i]) + zlib.compress(sample, level)
    yield "dictionary", bytes([E3, 5]) + b"\x78\xbb\0\0\0\1" + zlib.compress(b"abc")[2:]
    yield "cut", bytes([E1, 3]) + zlib.compress(bytes(range(256)))[:-20]


def images():
    def chunk(name, content):
        return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))

    def lines_of(columns, count, samples):
        return b"".join(
            bytes([line % 5]) + bytes(range(line, columns * samples + line)) for line in range(count)
        )

    # Where the seven passes of an interlaced image begin, and their steps: x, y, x, y.
    passes = ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2))

    def png(kind, samples, *chunks, interlaced=0, depth=8):
        width, height = 4, 3
        head = struct.pack(">IIBBBBB", width, height, depth, kind, 0, 0, interlaced)
        sizes = [(width, height)]
        if interlaced:
            sizes = [(len(range(x, width, dx)), len(range(y, height, dy))) for x, y, dx, dy in passes]
        lines = b"".join(lines_of(*size, samples) for size in sizes if size[0] > 0)
        parts = [chunk(b"IHDR", head), *chunks, chunk(b"IDAT", zlib.compress(lines)), chunk(b"IEND", b"")]
        return b"\x89PNG\r\n\x1a\n" + b"".join(parts)

    palette = chunk(b"PLTE", bytes(range(48)))
    files = {
        "grey": png(0, 1),
        "rgb": png(2, 3),
        "palette": png(3, 1, palette),
        "palette-alpha": png(3, 1, palette, chunk(b"tRNS", bytes([0, 128]))),
        "grey-alpha": png(4, 2),
        "rgba": png(6, 4, chunk(b"tEXt", b"a\0b")),
        "deep": png(0, 2, depth=16),
        "interlaced": png(0, 1, interlaced=1),
        "jpeg": jpeg(),
    }
    for name, contents in files.items():
        for options in (0, 2, 3, 8, 18):
            yield f"{name}-{options}", bytes([E3, options]) + contents
        yield f"{name}-e1", bytes([E1, 2]) + contents


def jpeg():
    """Eight by eight, grey, with the smallest tables that there can be: one code each."""

    def segment(marker, content):
        return bytes([0xFF, marker]) + struct.pack(">H", len(content) + 2) + content

    quantization = bytes([0]) + bytes([1]) * 64
    frame = struct.pack(">BHHB", 8, 8, 8, 1) + bytes([1, 0x11, 0])
    codes = bytes([1] + [0] * 15 + [0])
    scan = bytes([1, 1, 0, 0, 63, 0])
    return (
        b"\xFF\xD8"
        + segment(0xDB, quantization)
        + segment(0xC0, frame)
        + segment(0xC4, b"\x00" + codes)
        + segment(0xC4, b"\x10" + codes)
        + segment(0xDA, scan)
        + b"\x3F\xFF\xD9"
    )


def bus_runs():
    select, deselect, release_power = b"\0", b"\1", b"\7\1"
    yield "read", bytes([E3]) + select + b"\2\6\x30\x20\0\0\0\0" + deselect + b"\3\x50"
    yield "write", bytes([E1]) + select + b"\2\7\x80\0\0\1\2\3\4" + deselect + b"\3\x50"
    yield "commands", bytes([E2]) + b"".join(
        select + bytes([2, 3, code, 0, 0]) + deselect + b"\3\x50" for code in (0x41, 0x42, 0x43, 0x44, 0x62, 0x68, 0)
    )
    yield "power", bytes([E3]) + b"\7\0\3\xff" + release_power + b"\3\xff"
    yield "touch", bytes([E1]) + b"\4\x09\x09\3\xff\3\xff"
    yield "register", bytes([E3]) + b"\5\x70\0\4\0\0\0\3\xff" + b"\5\x54\0\2\0\0\0\3\xff"
    yield "list", bytes([E3]) + b"\6\0\0\x30\x0c" + words(0x02FF0000, 0x26000007, 0) + b"\5\x54\0\2\0\0\0\3\xff"


def scripts():
    for session in sorted((ROOT / "tests" / "system").glob("*.session")):
        yield session.stem, session.read_bytes()
    yield "errors", b'press 1\nwait text "open\nexpect register REG_NONE 1\nserver fault what\nend now\n'
    yield "quotes", b'expect requests "START 0.5" "DAC *"\nserver reply START ""\nwait exit signal 9\n'


def requests():
    yield "run", b"\1\0START 0.5\n\xffDATA?\n\x40DATA?\n\0STOP\n\0DATA?\n"
    yield "params", b"\2\0DAC 1,0.25\n\0DAC 4,1\n\0DAC 0,-11\n\0PARAMS?\n"
    yield "nonsense", b"\3\0START nan\n\0START\n\0START 1e308\n\0DAC ,\n\0\n\0data?\n"


def replies():
    yield "ok", b"Ok\n"
    yield "error", b"Error\n"
    yield "params", b'{"TimeConst":0.5,"Ref0":0.05,"Ref1":0.15,"Ref2":0.25,"Ref3":0.35}\n'
    yield "data", b'{"TimeConst":0.5,"Channel0":1,"Channel1":2.5,"Channel2":1e9,"Channel3":-4}\n'
    yield "both", b'{"TimeConst":1e300,"Ok":[null,true,"\\u0000\xff"],"Ref0":"5"}\n'
    yield "array", b"[1,2,[3]]\n"
    yield "zero", b"Ok\0{}"


SEEDS = {
    "bus": bus_runs,
    "displaylist": display_lists,
    "coprocessor": coprocessor_streams,
    "flash": flash_streams,
    "inflate": streams,
    "image": images,
    "script": scripts,
    "requests": requests,
    "replies": replies,
}


def main():
    for fuzzer, seeds in SEEDS.items():
        directory = pathlib.Path(sys.argv[1]) / fuzzer
        directory.mkdir(parents=True, exist_ok=True)
        for name, data in seeds():
            (directory / name).write_bytes(data)


main()
