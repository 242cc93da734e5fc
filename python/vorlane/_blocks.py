"""Connected blocks of pixels, as mark sheets are read by."""

from __future__ import annotations

from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _core

_NUMBERS = (
    "area",  # pixels
    "center_x",  # mean x of its pixels, cut toward 0
    "center_y",
    "left",  # inclusive
    "top",
    "right",
    "bottom",
    "width",  # right - left + 1
    "height",
    "min_value",  # smallest pixel value
    "max_value",
)
# A block: its numbers in pixels, and its pixels as an area x 2 array of x and y.
block_type = np.dtype([*((name, np.int32) for name in _NUMBERS), ("points", object)])

_LARGEST_PLACE = 2**16 - 1  # that a point holds


def blocks(
    page: npt.ArrayLike,
    threshold: Optional[int] = None,
    *,
    region: Optional[Tuple[int, int, int, int]] = None,
    min_run: int = 0,
    max_run: int = 0,
    join_gap: int = 0,
) -> npt.NDArray[Any]:
    """Finds the blocks of marked pixels that touch each other, diagonals included.

    page       H x W uint8, of which pixels at or below `threshold` are marked, or H x W bool, of
               which True is marked; at most 65536 pixels on a side. Read where it lies when its
               pixels lie in one piece
    threshold  0..255; None for bool
    region     left, top, right and bottom of what is searched, in pixels, all inclusive; None: all
    min_run    shortest and longest run of marked pixels in a row that is kept, in pixels,
    max_run    1..32767; tested only when both are given
    join_gap   runs in a row whose start lies at most so many pixels behind the last end are one;
               0: none are

    A run that comes up to the region's last column includes it, marked or not.

    Returns an array of block_type, a block an item: area, center_x, center_y, left, top, right,
    bottom, width, height, min_value and max_value, int32, and points, an area x 2 array of uint16:
    x and y of each of its pixels. Raises TypeError or ValueError for what cannot be searched.
    """
    array = np.asarray(page)
    if array.dtype not in (np.uint8, np.bool_):
        raise TypeError(f"a page of blocks is uint8 or bool, not {array.dtype}")
    if array.ndim != 2 or array.size == 0 or max(array.shape) > _LARGEST_PLACE + 1:
        raise ValueError(f"a page of blocks is H x W, each 1..65536, not {array.shape}")
    if (threshold is None) != (array.dtype == np.bool_):
        raise ValueError("uint8 takes a threshold, bool none")
    if threshold is not None and not 0 <= threshold <= 255:
        raise ValueError(f"threshold is 0..255, not {threshold}")
    rows = np.ascontiguousarray(array).view(np.uint8)
    numbers, points = _core.blocks(
        rows,
        -1 if threshold is None else threshold,
        _length("min_run", min_run),
        _length("max_run", max_run),
        _length("join_gap", join_gap),
        *_inside(region, array.shape[1], array.shape[0]),
    )
    found = np.empty(len(numbers), block_type)
    for column, name in enumerate(_NUMBERS):
        found[name] = numbers[:, column]
    ends = np.cumsum(numbers[:, 0], dtype=np.int64)
    for place, (begin, end) in enumerate(zip(ends - numbers[:, 0], ends)):
        found["points"][place] = points[begin:end]
    return found


def _length(name: str, pixels: int) -> int:
    if not 0 <= pixels <= 32767:
        raise ValueError(f"{name} is 0..32767, not {pixels}")
    return pixels


def _inside(
    region: Optional[Tuple[int, int, int, int]], width: int, height: int
) -> Tuple[int, int, int, int]:
    if region is None:
        return 0, 0, width - 1, height - 1
    left, top, right, bottom = region
    if not (0 <= left <= right < width and 0 <= top <= bottom < height):
        raise ValueError(f"region {region} does not lie within {width} x {height} pixels")
    return left, top, right, bottom
