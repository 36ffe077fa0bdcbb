#!/usr/bin/env python3
"""Tells by the screen whether the program's window is on it.

Usage: look_at_screen.py SCREEN PICTURE

SCREEN is the memory that Xvfb keeps as a file (-fbdir). Saves it as PICTURE, a
PNG, and ends with status 0 when there are many colours, and much gold among them.
"""

import struct
import sys
import zlib
from collections import Counter
from pathlib import Path


def rows_of(screen):
    """The pixels of a dump in the format of xwd, as rows of red, green, blue."""
    header = struct.unpack(">25I", screen[:100])
    header_size, width, height, little = header[0], header[4], header[5], header[7] == 0
    depth, bytes_per_line, colors = header[11], header[12], header[19]
    if depth != 32 or not little:
        sys.exit(f"A screen with {depth} bits per pixel is not understood.")
    start = header_size + colors * 12
    for y in range(height):
        line = screen[start + y * bytes_per_line :][: width * 4]
        row = bytearray(width * 3)
        row[0::3], row[1::3], row[2::3] = line[2::4], line[1::4], line[0::4]
        yield bytes(row)


def chunk(kind, data):
    check = zlib.crc32(kind + data)
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", check)


def png(rows):
    header = struct.pack(">IIBBBBB", len(rows[0]) // 3, len(rows), 8, 2, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows))
    parts = chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")
    return b"\x89PNG\r\n\x1a\n" + parts


def is_gold(color):
    red, green, blue = color
    return red > 220 and 130 < green < 220 and blue < 120


def main():
    screen, picture = sys.argv[1:]
    rows = list(rows_of(Path(screen).read_bytes()))
    Path(picture).write_bytes(png(rows))
    colors = Counter()
    for row in rows:
        colors.update(zip(row[0::3], row[1::3], row[2::3]))
    gold = sum(count for color, count in colors.items() if is_gold(color))
    print(f"{len(colors)} colours on the screen, {gold} pixels of gold", file=sys.stderr)
    sys.exit(0 if len(colors) > 200 and gold > 1000 else 1)


main()
