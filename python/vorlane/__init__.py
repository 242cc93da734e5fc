"""Finds how scanned pages lie in their pictures, and sets them upright.

    import vorlane

    finding = vorlane.detect(scan)           # how does the page lie, how sure is that, and why
    page = vorlane.apply(scan, finding)      # the upright page
    page, finding = vorlane.straighten(scan)  # both at once
    marks = vorlane.blocks(scan, threshold=120)  # connected blocks of dark pixels

A scan is a numpy array, or what numpy.asarray makes one of, such as a picture of Pillow:

    uint8, H x W        grey, 0 is black
    uint8, H x W x 3    colour, red first unless order="bgr"
    uint8, H x W x 4    colour and a byte that is not read, and 255 in results
    bool, H x W         True is light, unless set_is_dark
    uint8, H x B        with width=W: eight pixels a byte, the first one in the highest bit

Grey, colour and packed arrays are read where they lie, whatever the distance of their rows, also
upside down; only where the pixels of a row do not lie side by side, and of bool, a copy is made. A
result is a new array of the scan's kind. No function changes what it is given.

Coordinates are pixels, x to the right and y down, and the middle of the first pixel is (0, 0).
Turns are degrees, clockwise as seen. Any number of threads may call at a time: the interpreter is
free while a page is worked on.
"""

from ._blocks import block_type, blocks
from ._core import version as __version__
from ._engine import Straightened, apply, decide, detect, result_size, straighten
from ._finding import (
    Confidence,
    Error,
    Evidence,
    Finding,
    NotConfident,
    Point,
    Reason,
    Status,
    Verdict,
)

__all__ = [
    "Confidence",
    "Error",
    "Evidence",
    "Finding",
    "NotConfident",
    "Point",
    "Reason",
    "Status",
    "Straightened",
    "Verdict",
    "__version__",
    "apply",
    "block_type",
    "blocks",
    "decide",
    "detect",
    "result_size",
    "straighten",
]
