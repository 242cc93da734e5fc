"""Draws small scans and puts them into PGM and TIFF files."""

import math
import struct

WIDTH, HEIGHT = 300, 360


def page(degrees, width=WIDTH, height=HEIGHT):
    """Rows of grey bytes: a light page turned by `degrees` on a dark ground."""
    cosine, sine = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    rows = []
    for y in range(height):
        low, high = -width / 2, width / 2
        dy = y - height / 2
        for slope, shift, limit in ((cosine, dy * sine, width * 0.3),
                                    (-sine, dy * cosine, height * 0.33)):
            if abs(slope) < 1e-9:
                if abs(shift) >= limit:
                    high = low
                continue
            ends = sorted(((-limit - shift) / slope, (limit - shift) / slope))
            low, high = max(low, ends[0]), min(high, ends[1])
        left = min(max(math.ceil(low + width / 2), 0), width)
        count = max(min(int(high + width / 2), width) - left, 0) if low < high else 0
        row = bytes([30]) * left + bytes([230]) * count
        rows.append(row + bytes([30]) * (width - len(row)))
    return rows


def dark(width=WIDTH, height=HEIGHT):
    """A picture without a page."""
    return [bytes([30]) * width] * height


def write_pgm(path, rows):
    with open(path, "wb") as file:
        file.write(b"P5\n%d %d\n255\n" % (len(rows[0]), len(rows)) + b"".join(rows))


def write_tiff(path, pages, bad=()):
    """Uncompressed grey pages; the pixels of those in `bad` lie behind the file's end."""
    data = bytearray(b"II*\0\0\0\0\0")
    link = 4
    for number, rows in enumerate(pages, 1):
        strip = len(data)
        data += b"".join(rows)
        if number in bad:
            strip = 1 << 30
        data += b"\0" * (len(data) % 2)
        tags = [(256, 4, len(rows[0])), (257, 4, len(rows)), (258, 3, 8), (259, 3, 1),
                (262, 3, 1), (273, 4, strip), (277, 3, 1), (278, 4, len(rows)),
                (279, 4, len(rows) * len(rows[0]))]
        struct.pack_into("<I", data, link, len(data))
        data += struct.pack("<H", len(tags))
        for tag, kind, value in tags:
            data += struct.pack("<HHII", tag, kind, 1, value)
        link = len(data)
        data += b"\0\0\0\0"
    with open(path, "wb") as file:
        file.write(data)


def tiff_sizes(path):
    """Width and height of every page."""
    with open(path, "rb") as file:
        data = file.read()
    order = "<" if data[:2] == b"II" else ">"
    sizes = []
    at = struct.unpack_from(order + "I", data, 4)[0]
    while at:
        count = struct.unpack_from(order + "H", data, at)[0]
        values = {}
        for i in range(count):
            tag, kind, _ = struct.unpack_from(order + "HHI", data, at + 2 + 12 * i)
            form = "H" if kind == 3 else "I"
            values[tag] = struct.unpack_from(order + form, data, at + 10 + 12 * i)[0]
        sizes.append((values[256], values[257]))
        at = struct.unpack_from(order + "I", data, at + 2 + 12 * count)[0]
    return sizes
