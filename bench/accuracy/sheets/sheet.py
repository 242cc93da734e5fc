"""A drawn sheet: its paper, and what is printed on it as a layer of ink of its own."""
from dataclasses import dataclass, field

import numpy as np
from PIL import Image, ImageDraw


@dataclass
class Sheet:
    """`ink` is 0..1 by pixel. `picture`, where there is one, is grey 0..255 below the ink, and
    `pictured` (0..1) says where. `lined` tells whether the print has a direction of its own."""

    ink: np.ndarray
    lined: bool
    picture: np.ndarray = None
    pictured: np.ndarray = None
    tone: float = 1.0  # of the paper, as a share of usual white
    holes: list = field(default_factory=list)  # polygons that show what lies below, in pixels
    damages: list = field(default_factory=list)  # corners that this kind never has

    @property
    def width(self):
        return self.ink.shape[1]

    @property
    def height(self):
        return self.ink.shape[0]


class InkLayer:
    """A blank layer and PIL's pen on it; everything is drawn with fill=255."""

    def __init__(self, width, height):
        self.image = Image.new("L", (int(width), int(height)), 0)
        self.pen = ImageDraw.Draw(self.image)

    def rule(self, x0, y0, x1, y1, thickness):
        """A horizontal or vertical rule, thickness in pixels, at least one."""
        half = max(1.0, thickness) / 2
        if abs(x1 - x0) >= abs(y1 - y0):
            self.pen.rectangle((x0, y0 - half, x1, y0 + half - 1), fill=255)
        else:
            self.pen.rectangle((x0 - half, y0, x0 + half - 1, y1), fill=255)

    def coverage(self):
        return np.asarray(self.image, dtype=np.float32) / 255
