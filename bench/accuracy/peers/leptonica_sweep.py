"""Leptonica's search for the skew of print, over +-45 degrees, believed from a confidence of 3."""
import ctypes
import ctypes.util
import functools

from ..answer import Answer

NAME = "Leptonica sweep"
_LEAST_CONFIDENCE = 3.0
# Sauvola's binarisation with 17 x 17 windows: of the library's ways the one that finds most here.
_HALF_WINDOW, _SAUVOLA_FACTOR = 8, 0.35
_SWEEP_REDUCTION, _SEARCH_REDUCTION = 4, 2
_RANGE, _STEP, _PRECISION = 45.0, 1.0, 0.01  # degrees
_SILENT = 6  # a page without print is no news


@functools.lru_cache(maxsize=None)
def _library():
    library = ctypes.CDLL(ctypes.util.find_library("lept") or "liblept.so.5")
    pix, number, real = ctypes.c_void_p, ctypes.c_int, ctypes.c_float
    library.pixRead.restype, library.pixRead.argtypes = pix, [ctypes.c_char_p]
    library.pixConvertTo8.restype, library.pixConvertTo8.argtypes = pix, [pix, number]
    library.pixDestroy.restype, library.pixDestroy.argtypes = None, [ctypes.POINTER(pix)]
    library.pixSauvolaBinarize.argtypes = [
        pix,
        number,
        real,
        number,
        pix,
        pix,
        pix,
        ctypes.POINTER(pix),
    ]
    library.pixFindSkewSweepAndSearch.argtypes = [
        pix,
        ctypes.POINTER(real),
        ctypes.POINTER(real),
        number,
        number,
        real,
        real,
        real,
    ]
    library.getLeptonicaVersion.restype = ctypes.c_char_p
    library.setMsgSeverity(_SILENT)
    return library


def version():
    return _library().getLeptonicaVersion().decode().replace("leptonica-", "Leptonica ")


def _ink(path):
    """The page's ink at 1 bit, None where it cannot be had; the caller destroys it."""
    library = _library()
    page = ctypes.c_void_p(library.pixRead(path.encode()))
    grey = ctypes.c_void_p(library.pixConvertTo8(page, 0))
    ink = ctypes.c_void_p()
    failed = library.pixSauvolaBinarize(
        grey, _HALF_WINDOW, _SAUVOLA_FACTOR, 1, None, None, None, ctypes.byref(ink)
    )
    library.pixDestroy(ctypes.byref(page))
    library.pixDestroy(ctypes.byref(grey))
    return None if failed else ink


def detect(path):
    ink = _ink(path)
    if ink is None:
        return Answer()
    angle, confidence = ctypes.c_float(), ctypes.c_float()
    failed = _library().pixFindSkewSweepAndSearch(
        ink,
        ctypes.byref(angle),
        ctypes.byref(confidence),
        _SWEEP_REDUCTION,
        _SEARCH_REDUCTION,
        _RANGE,
        _STEP,
        _PRECISION,
    )
    _library().pixDestroy(ctypes.byref(ink))
    if failed or confidence.value < _LEAST_CONFIDENCE:
        return Answer()
    return Answer(-angle.value, "likely")  # it gives the clockwise turn that sets the print upright
