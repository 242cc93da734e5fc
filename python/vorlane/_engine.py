"""The page engine: detect, apply, and both at once."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _core, _pages
from ._finding import Confidence, Error, Finding, NotConfident, Status

_BY = {
    "auto": _core.BY_AUTO,
    "paper": _core.BY_PAPER,
    "print": _core.BY_PRINT,
    "bar": _core.BY_BAR,
}
_CROP = {"paper": _core.CROP_PAPER, "content": _core.CROP_CONTENT, "none": _core.CROP_NONE}
_INTERPOLATION = {
    "nearest": _core.NEAREST,
    "bilinear": _core.BILINEAR,
    "bicubic": _core.BICUBIC,
}

Fill = Union[int, Sequence[int]]


class Straightened(NamedTuple):
    page: npt.NDArray[Any]  # the upright page
    finding: Finding


def detect(
    page: npt.ArrayLike,
    *,
    by: str = "auto",
    crop: str = "paper",
    min_confidence: int = Confidence.DOUBTFUL,
    is_form: bool = False,
    has_no_mount: bool = False,
    max_turn: float = 45.0,
    min_turn: float = 0.05,
    margin: float = 0.0,
    width: Optional[int] = None,
    order: str = "rgb",
    set_is_dark: bool = False,
) -> Finding:
    """Finds how the page lies in its picture.

    page            H x W uint8 or bool, H x W x 3 or H x W x 4 uint8; packed bits with `width`
    by              which evidence is to stand straight where print and paper differ: "auto",
                    "paper", "print" or "bar"
    crop            what the cut keeps: the "paper", the "content" on it, or all ("none")
    min_confidence  answers below it are refused
    is_form         the page carries a long printed bar: look for it
    has_no_mount    nothing lies under the sheet, so that four sides that agree are believed without
                    a look at the print, which is faster
    max_turn        degrees, 0..45; a page that lies steeper is left alone
    min_turn        degrees, 0..45; a page that lies straighter is not turned
    margin          pixels kept around the cut; negative trims
    width           pixels in a row of a packed page
    order           "rgb" or "bgr": which colour comes first
    set_is_dark     bool and packed pages: True and set bits are dark, as fax pages have it

    That nothing can be said of a page is an answer too: look at turn_confidence before acting, or
    leave that to apply. Raises Error, TypeError or ValueError for a page or an option that cannot
    be worked on.
    """
    options = _core.DetectOptions()
    options.by = _choice("by", _BY, by)
    options.crop = _choice("crop", _CROP, crop)
    options.min_confidence = min_confidence
    options.is_form = is_form
    options.has_no_mount = has_no_mount
    options.max_turn = max_turn
    options.min_turn = min_turn
    options.margin = margin
    return _detect(_pages.read(page, width, order, set_is_dark), options)


def apply(
    page: npt.ArrayLike,
    finding: Finding,
    *,
    interpolation: str = "bicubic",
    quarter_turns: int = 0,
    keep_whole: bool = False,
    min_confidence: int = Confidence.LIKELY,
    threads: int = 1,
    fill: Fill = 255,
    margin: float = 0.0,
    min_turn: float = 0.05,
    max_turn: float = 45.0,
    max_growth: float = 8.0,
    width: Optional[int] = None,
    order: str = "rgb",
    set_is_dark: bool = False,
) -> npt.NDArray[Any]:
    """Makes the upright page: turned by the finding's turn and cut around its corners.

    page            the one that the finding was made on, or one of the same size
    finding         from detect or decide, or edited by dataclasses.replace
    interpolation   "nearest", "bilinear" or "bicubic"; pages of bits take the nearest pixel
    quarter_turns   0..3, clockwise, after the page stands upright
    keep_whole      the page is turned and nothing is cut off
    min_confidence  a finding with less is not applied (NotConfident), a cut with less not cut
    threads         1..64, for this one page; the result is the same. For many pages a thread each
                    is the better use of the cores
    fill            what lies outside the picture: a level, or red, green and blue, 0..255. Grey
                    pages take its luminance, pages of bits the nearer end
    margin          pixels kept around the corners besides what they hold; negative trims
    min_turn        degrees; a smaller turn is not made: the page is cut only, no pixel resampled
    max_turn        degrees, 0..180; a larger one is refused
    max_growth      a result with more than so many times the page's pixels is refused
    width, order, set_is_dark  as detect takes them

    Returns a new array of the page's dtype and number of channels; of a packed page, a packed one
    whose width result_size tells. A fourth channel is 255. Raises Error or its NotConfident,
    TypeError or ValueError.
    """
    options = _apply_options(
        interpolation,
        quarter_turns,
        keep_whole,
        min_confidence,
        threads,
        fill,
        margin,
        min_turn,
        max_turn,
        max_growth,
    )
    return _apply(_pages.read(page, width, order, set_is_dark), finding, options)


def result_size(
    page: npt.ArrayLike,
    finding: Finding,
    *,
    quarter_turns: int = 0,
    keep_whole: bool = False,
    min_confidence: int = Confidence.LIKELY,
    margin: float = 0.0,
    min_turn: float = 0.05,
    max_turn: float = 45.0,
    max_growth: float = 8.0,
    width: Optional[int] = None,
) -> Tuple[int, int]:
    """Tells the width and the height, in pixels, of what apply makes with the same arguments."""
    options = _apply_options(
        "nearest",
        quarter_turns,
        keep_whole,
        min_confidence,
        1,
        0,
        margin,
        min_turn,
        max_turn,
        max_growth,
    )
    read = _pages.read(page, width, "rgb", False)
    try:
        return _core.result_size(read.rows, read.format, read.width, finding._placement, options)
    except Error as error:
        raise _with_finding(error, finding) from None


def straighten(
    page: npt.ArrayLike,
    *,
    by: str = "auto",
    crop: str = "paper",
    is_form: bool = False,
    has_no_mount: bool = False,
    max_turn: float = 45.0,
    min_turn: float = 0.05,
    margin: float = 0.0,
    interpolation: str = "bicubic",
    quarter_turns: int = 0,
    min_confidence: int = Confidence.LIKELY,
    threads: int = 1,
    fill: Fill = 255,
    max_growth: float = 8.0,
    width: Optional[int] = None,
    order: str = "rgb",
    set_is_dark: bool = False,
) -> Straightened:
    """Finds how the page lies and makes the upright page: detect, then apply.

    The arguments are theirs. Returns the page and the finding. A page that is less sure than
    min_confidence raises NotConfident, whose `finding` says why.
    """
    look = _core.DetectOptions()
    look.by = _choice("by", _BY, by)
    look.crop = _choice("crop", _CROP, crop)
    look.is_form = is_form
    look.has_no_mount = has_no_mount
    look.max_turn = max_turn
    look.min_turn = min_turn
    look.margin = margin
    make = _apply_options(
        interpolation,
        quarter_turns,
        False,
        min_confidence,
        threads,
        fill,
        0.0,
        min_turn,
        max_turn,
        max_growth,
    )
    read = _pages.read(page, width, order, set_is_dark)
    finding = _detect(read, look)
    return Straightened(_apply(read, finding, make), finding)


def decide(
    page: npt.ArrayLike,
    turn: float,
    corners: Optional[Sequence[Tuple[float, float]]] = None,
    *,
    width: Optional[int] = None,
) -> Finding:
    """Makes a person's decision into a finding that counts as sure.

    turn     degrees, -180..180, clockwise: what sets the page upright
    corners  four places (x, y) in the picture: upper left of the upright page, upper right, lower
             right, lower left; what is kept is the upright rectangle around them. None: all
    width    pixels in a row of a packed page
    """
    shape = np.shape(page)
    columns = shape[1] if width is None else width
    return Finding._of(_core.decide(columns, shape[0], turn, corners))


def _detect(read: _pages.Page, options: _core.DetectOptions) -> Finding:
    return Finding._of(_core.detect(read.rows, read.format, read.width, options))


def _apply(
    read: _pages.Page, finding: Finding, options: _core.ApplyOptions
) -> npt.NDArray[Any]:
    try:
        rows, width = _core.apply(
            read.rows, read.format, read.width, finding._placement, options
        )
    except Error as error:
        raise _with_finding(error, finding) from None
    return read.restore(rows, width)


def _with_finding(error: Error, finding: Finding) -> Error:
    return NotConfident(finding) if error.code == Status.NOT_CONFIDENT else error


def _apply_options(
    interpolation: str,
    quarter_turns: int,
    keep_whole: bool,
    min_confidence: int,
    threads: int,
    fill: Fill,
    margin: float,
    min_turn: float,
    max_turn: float,
    max_growth: float,
) -> _core.ApplyOptions:
    options = _core.ApplyOptions()
    options.interpolation = _choice("interpolation", _INTERPOLATION, interpolation)
    options.quarter_turns = quarter_turns
    options.keep_whole = keep_whole
    options.min_confidence = min_confidence
    options.threads = threads
    options.fill = _colour(fill)
    options.margin = margin
    options.min_turn = min_turn
    options.max_turn = max_turn
    options.max_growth = max_growth
    return options


def _colour(fill: Fill) -> Tuple[int, int, int]:
    levels = (fill, fill, fill) if isinstance(fill, int) else tuple(fill)
    if len(levels) != 3 or not all(0 <= level <= 255 for level in levels):
        raise ValueError(f"fill is a level or red, green and blue, each 0..255, not {fill!r}")
    return levels[0], levels[1], levels[2]


def _choice(name: str, codes: dict[str, int], chosen: str) -> int:
    if chosen not in codes:
        raise ValueError(f"{name} is one of {', '.join(codes)}, not {chosen!r}")
    return codes[chosen]
