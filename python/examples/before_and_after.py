#!/usr/bin/env python3
"""Shows a scan with what was found on it, and the upright page beside it.

    before_and_after.py SCAN FIGURE.png

Takes vorlane, Pillow and matplotlib.
"""

import sys

import matplotlib

matplotlib.use("Agg")

import numpy as np
from matplotlib import pyplot
from PIL import Image

import vorlane


def show(axes, picture, title):
    axes.imshow(picture, cmap="gray", vmin=0, vmax=255 if picture.dtype == np.uint8 else 1)
    axes.set_title(title, fontsize=9)
    axes.axis("off")


def main(scan_path, figure_path):
    with Image.open(scan_path) as picture:
        scan = np.asarray(picture if picture.mode in ("1", "L", "RGB") else picture.convert("RGB"))

    finding = vorlane.detect(scan)
    figure, (before, after) = pyplot.subplots(1, 2, figsize=(10, 7), layout="constrained")
    show(before, scan, f"{finding.turn:+.2f} degrees: {finding.turn_confidence.name.lower()}")
    before.plot(*zip(*finding.corners, finding.corners[0]), color="red")
    try:
        page = vorlane.apply(scan, finding)
        show(after, page, f"{page.shape[1]} x {page.shape[0]} pixels")
    except vorlane.NotConfident as doubt:
        show(after, scan, f"left as it is: {doubt}")
    figure.suptitle("; ".join(reason.text for reason in finding.reasons), fontsize=9, wrap=True)
    figure.savefig(figure_path, dpi=120)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
