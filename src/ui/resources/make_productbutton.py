#!/usr/bin/env python3
"""Draws productbutton.bmp, the bitmap of the product menu's button: a shield
with a T and the arrow that says a menu drops down. An 8-bit bitmap with a
colour table whose first pixel is the background, so a window that loads it
with a transparent background and mapped 3-D colours blends it into the bar.

    python3 make_productbutton.py > productbutton.bmp
"""
import struct
import sys

ART = [
    "........................",
    ".BBBBBBBBBBBBB..........",
    ".BWWWWWWWWWWWB..........",
    ".BWBBBBBBBBBWB..........",
    ".BWBWWWWWWWBWB..........",
    ".BWBWWWWWWWBWB..........",
    ".BWBBBBWBBBBWB..........",
    ".BWBBBBWBBBBWB...KKKKK..",
    ".BWBBBBWBBBBWB....KKK...",
    "..BWBBBWBBBWB......K....",
    "..BWBBBWBBBWB...........",
    "...BWBBWBBWB............",
    "....BWBBBWB.............",
    ".....BWWWB..............",
    "......BBB...............",
    "........................",
]
# Colour table entries as (blue, green, red, 0); '.' comes first and is the
# button face grey that the 3-D colour mapping replaces.
PALETTE = {".": (192, 192, 192, 0), "B": (153, 74, 31, 0), "W": (255, 255, 255, 0), "K": (0, 0, 0, 0)}
ORDER = ".BWK"


def bitmap():
    width, height = len(ART[0]), len(ART)
    stride = (width + 3) // 4 * 4
    rows = b""
    for line in reversed(ART):  # bottom-up, as bitmaps are stored
        row = bytes(ORDER.index(c) for c in line)
        rows += row + b"\0" * (stride - width)
    table = b"".join(bytes(PALETTE[c]) for c in ORDER)
    offset = 14 + 40 + len(table)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 8, 0, len(rows), 2835, 2835, len(ORDER), 0)
    header = struct.pack("<2sIHHI", b"BM", offset + len(rows), 0, 0, offset)
    return header + info + table + rows


if __name__ == "__main__":
    sys.stdout.buffer.write(bitmap())
