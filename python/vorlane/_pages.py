"""Arrays as rows that the engine reads."""

from __future__ import annotations

from typing import Any, Callable, NamedTuple, Optional

import numpy as np
import numpy.typing as npt

from . import _core
from ._finding import Error, Status

_MOST_BYTES = 2**31 - 1  # from a page's first row to behind its last


class Page(NamedTuple):
    rows: npt.NDArray[np.uint8]  # as _core takes them
    format: int
    width: int  # pixels
    # Makes an array of the caller's kind of a result's rows and its width.
    restore: Callable[[npt.NDArray[np.uint8], int], npt.NDArray[Any]]


def read(page: npt.ArrayLike, width: Optional[int], order: str, set_is_dark: bool) -> Page:
    """The rows of `page`, copied only where the engine cannot read them as they lie.

    Raises TypeError for another dtype than uint8 and bool, ValueError for another shape or order.
    """
    if order not in ("rgb", "bgr"):
        raise ValueError(f'order is "rgb" or "bgr", not {order!r}')
    array = np.asarray(page)
    bits = _core.BIT_DARK if set_is_dark else _core.BIT_LIGHT
    if array.dtype == np.bool_:
        if array.ndim != 2 or width is not None:
            raise ValueError(f"a bool page is H x W and has no width of its own{_got(array)}")
        packed = np.ascontiguousarray(np.packbits(array, axis=1))
        return Page(packed, bits, array.shape[1], _unpacked)
    if array.dtype != np.uint8:
        raise TypeError(f"a page is uint8 or bool{_got(array)}")
    if width is not None:
        if array.ndim != 2 or (width + 7) // 8 > array.shape[1]:
            raise ValueError(f"a packed page of {width} pixels is H x {(width + 7) // 8}{_got(array)}")
        return Page(_readable(array, (width + 7) // 8), bits, width, _as_made)
    if array.ndim == 2:
        return Page(_readable(array, array.shape[1]), _core.GREY8, array.shape[1], _as_made)
    if array.ndim == 3 and array.shape[2] in (3, 4):
        return _read_colour(array, order)
    raise ValueError(f"a page is H x W, H x W x 3 or H x W x 4{_got(array)}")


def _read_colour(array: npt.NDArray[np.uint8], order: str) -> Page:
    channels = array.shape[2]
    # Another library's picture with its channels turned round: read as that library has it.
    is_reversed = channels == 3 and array.strides[2] < 0
    if is_reversed:
        array = array[..., ::-1]
    if channels == 3:
        format = _core.RGB24 if (order == "rgb") != is_reversed else _core.BGR24
    else:
        format = _core.RGBX32 if order == "rgb" else _core.BGRX32
    rows = _readable(array, array.shape[1] * channels)
    return Page(rows, format, array.shape[1], _turned_round if is_reversed else _as_made)


def _readable(array: npt.NDArray[np.uint8], row_bytes: int) -> npt.NDArray[np.uint8]:
    height = array.shape[0]
    item = 1
    lies_in_rows = True
    for size, stride in zip(array.shape[:0:-1], array.strides[:0:-1]):
        lies_in_rows = lies_in_rows and (size <= 1 or stride == item)
        item *= size
    distance = abs(array.strides[0])
    fits = height <= 1 or (distance >= row_bytes and distance * height <= _MOST_BYTES)
    if row_bytes * height > _MOST_BYTES:  # however it lies
        raise Error(Status.TOO_LARGE)
    return array if lies_in_rows and fits else np.ascontiguousarray(array)


def _got(array: npt.NDArray[Any]) -> str:
    return f"; this array is {array.dtype} of shape {array.shape}"


def _as_made(rows: npt.NDArray[np.uint8], width: int) -> npt.NDArray[Any]:
    return rows


def _turned_round(rows: npt.NDArray[np.uint8], width: int) -> npt.NDArray[Any]:
    return rows[..., ::-1]


def _unpacked(rows: npt.NDArray[np.uint8], width: int) -> npt.NDArray[Any]:
    return np.unpackbits(rows, axis=1, count=width).view(np.bool_)
