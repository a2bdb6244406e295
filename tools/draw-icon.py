#!/usr/bin/env python3
"""Draws src/plugin/Dravel64R.ico: an open book with a rising line, at 16, 32 and 48 pixels."""
import struct
import sys

COVER, PAGE, EDGE, LINE = (0x6B, 0x3A, 0x1E, 255), (0xFF, 0xFF, 0xFF, 255), (0xC8, 0xB4, 0xA0, 255), (0x1E, 0x7A, 0x2E, 255)
NONE = (0, 0, 0, 0)  # blue, green, red, opacity
RISE = [(0.18, 0.66), (0.36, 0.50), (0.54, 0.58), (0.82, 0.30)]


def colour(x, y):
    """Of the point x, y of the unit square, y downwards."""
    for (x0, y0), (x1, y1) in zip(RISE, RISE[1:]):
        if x0 <= x <= x1 and abs(y - (y0 + (y1 - y0) * (x - x0) / (x1 - x0))) < 0.055:
            return LINE
    if not (0.04 <= x <= 0.96 and 0.12 <= y <= 0.90):
        return NONE
    if not (0.10 <= x <= 0.90 and y <= 0.82):
        return COVER
    return EDGE if abs(x - 0.5) < 0.03 else PAGE


def image(size):
    rows = [[colour((x + 0.5) / size, (y + 0.5) / size) for x in range(size)] for y in range(size)]
    pixels = b"".join(bytes(p) for row in reversed(rows) for p in row)
    mask = b"".join(
        sum((row[x + i][3] == 0) << (7 - i) for i in range(8)).to_bytes(1, "big") for row in reversed(rows) for x in range(0, size, 8)
    )
    width = size // 8
    padded = b"".join(mask[i : i + width] + bytes(-width % 4) for i in range(0, len(mask), width))
    return struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, len(pixels) + len(padded), 0, 0, 0, 0) + pixels + padded


def icon(sizes):
    images = [image(size) for size in sizes]
    head, at = struct.pack("<HHH", 0, 1, len(sizes)), 6 + 16 * len(sizes)
    for size, data in zip(sizes, images):
        head += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), at)
        at += len(data)
    return head + b"".join(images)


open(sys.argv[1] if len(sys.argv) > 1 else "src/plugin/Dravel64R.ico", "wb").write(icon([16, 32, 48]))
