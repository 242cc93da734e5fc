"""The peers, each a module with NAME, version() and detect(path) -> Answer."""
from . import imagemagick, leptonica_sweep, opencv_outline, unpaper

ALL = (opencv_outline, leptonica_sweep, imagemagick, unpaper)
