"""Drawn scans, and pictures of the pnm family."""

import numpy as np


def draw_scan(width=700, height=900, turn=3.0):
    """A light sheet with lines of print, turned clockwise by `turn` degrees, on a dark surround."""
    y, x = np.mgrid[:height, :width].astype(np.float64)
    x -= (width - 1) / 2
    y -= (height - 1) / 2
    cosine, sine = np.cos(np.radians(turn)), np.sin(np.radians(turn))
    right, down = x * cosine + y * sine, y * cosine - x * sine
    scan = np.full((height, width), 25, np.uint8)
    scan[(abs(right) <= width * 0.36) & (abs(down) <= height * 0.38)] = 230
    in_line = (down % 24 < 10) & (abs(down) < height * 0.33) & (abs(right) < width * 0.3)
    scan[in_line & (np.floor(right / 7) % 5 != 0) & (right % 7 < 5)] = 40
    return scan


def draw_colour_scan(**size):
    grey = draw_scan(**size)
    return np.dstack([grey, grey // 8 * 7, grey // 4 * 3])


def write_pnm(path, rows, kind, width):
    """P4 rows are packed, a set bit is dark; P5 rows grey; P6 rows red, green, blue."""
    levels = b"" if kind == 4 else b"255\n"
    path.write_bytes(b"P%d\n%d %d\n%s" % (kind, width, len(rows), levels) + rows.tobytes())


def read_pnm(path):
    kind, sizes, *rest = path.read_bytes().split(b"\n", 2 if path.suffix == ".pbm" else 3)
    width, height = map(int, sizes.split())
    shape = {b"P4": (height, -1), b"P5": (height, width), b"P6": (height, width, 3)}[kind]
    return np.frombuffer(rest[-1], np.uint8).reshape(shape)
