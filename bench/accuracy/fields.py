"""Random fields that paper, light and surrounds are made of: float32, mean 0, deviation about 1."""
import cv2
import numpy as np


def white_noise(rng, width, height):
    return rng.standard_normal((height, width), dtype=np.float32)


def cloud(rng, width, height, cells):
    """Slow unevenness: `cells` knots along each side, smooth between them."""
    knots = rng.standard_normal((cells, cells)).astype(np.float32)
    return cv2.resize(knots, (width, height), interpolation=cv2.INTER_CUBIC)


def grain(rng, width, height, size_x, size_y=None):
    """Noise whose spots are some size_x by size_y pixels; longer one way, it looks like fibre."""
    size_y = size_x if size_y is None else size_y
    small = white_noise(rng, max(4, int(width / size_x)), max(4, int(height / size_y)))
    return cv2.resize(small, (width, height), interpolation=cv2.INTER_LINEAR)


def slope(width, height, degrees):
    """0 at one end of the picture and 1 at the other, along a direction."""
    direction = np.radians(degrees)
    along = (
        np.cos(direction) * np.linspace(0, 1, width, dtype=np.float32)[None, :]
        + np.sin(direction) * np.linspace(0, 1, height, dtype=np.float32)[:, None]
    )
    along -= along.min()
    return along / along.max()


def side_distance(width, height, side):
    """Pixels to a side of the picture: 0 left, 1 top, 2 right, 3 bottom."""
    across = np.arange(width, dtype=np.float32)[None, :]
    down = np.arange(height, dtype=np.float32)[:, None]
    distance = (across, down, across[:, ::-1], down[::-1])[side]
    return np.broadcast_to(distance, (height, width))
