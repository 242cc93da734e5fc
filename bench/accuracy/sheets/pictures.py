"""Sheets with photographs: album leaves, illustrated pages, bare photographs."""
import cv2
import numpy as np

from .. import fields, words
from . import lettering
from .sheet import InkLayer, Sheet


def photograph(rng, width, height):
    """A made-up view, grey 0..255: sky, hills, houses, trees, all soft and uneven."""
    view = 200 - 60 * fields.slope(width, height, 90) + 14 * fields.cloud(rng, width, height, 6)
    for layer in range(3):
        ridge = height * (0.35 + 0.17 * layer) + height * 0.12 * np.cumsum(rng.normal(0, 0.25, 12))
        points = np.stack([np.linspace(0, width, 12), ridge], axis=1)
        hill = np.vstack([points, [[width, height], [0, height]]]).astype(np.int32)
        cv2.fillPoly(view, [hill], float(150 - 45 * layer + rng.uniform(-15, 15)))
    for _ in range(int(rng.integers(2, 9))):
        x, y = rng.uniform(0, width), rng.uniform(0.4, 0.9) * height
        w, h = rng.uniform(0.04, 0.2, 2) * [width, height]
        level = float(rng.uniform(20, 220))
        if rng.random() < 0.5:
            cv2.rectangle(view, (int(x), int(y)), (int(x + w), int(y + h)), level, -1)
        else:
            cv2.ellipse(view, (int(x), int(y)), (int(w), int(h)), 0, 0, 360, level, -1)
    view = cv2.GaussianBlur(view, (0, 0), max(0.8, width / 500))
    view += 10 * fields.grain(rng, width, height, 3) + 5 * fields.white_noise(rng, width, height)
    contrast = float(rng.uniform(0.6, 1.15))
    return np.clip((view - 120) * contrast + float(rng.uniform(85, 140)), 8, 245)


def _paste(sheet, rng, box, white_border=0):
    left, top, right, bottom = (int(v) for v in box)
    if white_border:
        sheet.picture[top:bottom, left:right] = 225
        sheet.pictured[top:bottom, left:right] = 1
        left, top, right, bottom = (
            left + white_border,
            top + white_border,
            right - white_border,
            bottom - white_border,
        )
    sheet.picture[top:bottom, left:right] = photograph(rng, right - left, bottom - top)
    sheet.pictured[top:bottom, left:right] = 1


def _with_room_for_pictures(layer, lined, tone=1.0):
    ink = layer.coverage()
    return Sheet(ink, lined, np.zeros_like(ink), np.zeros_like(ink), tone)


def album_leaf(rng, long_side):
    """A leaf of brown or black card with photographs mounted on it."""
    width, height = int(long_side), int(long_side / float(rng.uniform(1.25, 1.5)))
    sheet = _with_room_for_pictures(
        InkLayer(width, height), lined=False, tone=float(rng.uniform(0.45, 0.8))
    )
    across, down = int(rng.integers(1, 4)), int(rng.integers(1, 3))
    for column in range(across):
        for row in range(down):
            cell_w, cell_h = width / across, height / down
            inset_x, inset_y = rng.uniform(0.08, 0.2, 2) * [cell_w, cell_h]
            _paste(
                sheet,
                rng,
                (
                    column * cell_w + inset_x,
                    row * cell_h + inset_y,
                    (column + 1) * cell_w - inset_x,
                    (row + 1) * cell_h - inset_y,
                ),
                white_border=int(long_side / 90),
            )
    return sheet


def illustrated_page(rng, long_side):
    """Print with one or two halftone pictures let into the columns."""
    width, height = int(long_side / 1.35), int(long_side)
    layer = InkLayer(width, height)
    em = height / float(rng.uniform(70, 85))
    font = lettering.face(rng, "serif", em)
    left, right = width * 0.09, width * 0.91
    split = height * float(rng.uniform(0.35, 0.6))
    on_top = rng.random() < 0.5
    picture_box = (
        (left, height * 0.09, right, split)
        if on_top
        else (left, split + 2 * em, right, height * 0.91)
    )
    text_top, text_bottom = (split + 2 * em, height * 0.91) if on_top else (height * 0.09, split)
    text = words.sentences(rng)
    middle = (left + right) / 2
    for x0, x1 in ((left, middle - em), (middle + em, right)):
        lettering.set_column(layer.pen, rng, font, (x0, text_top, x1, text_bottom), 1.3 * em, text)
    sheet = _with_room_for_pictures(layer, lined=True)
    _paste(sheet, rng, picture_box)
    return sheet


def bare_photograph(rng, long_side):
    """A photographic print with a narrow white border, or none."""
    width, height = int(long_side), int(long_side / float(rng.uniform(1.25, 1.5)))
    sheet = _with_room_for_pictures(InkLayer(width, height), lined=False)
    border = int(long_side * float(rng.choice([0.02, 0.035])))
    _paste(sheet, rng, (0, 0, width, height), white_border=border)
    return sheet


def blank(rng, long_side):
    """Nothing on it."""
    width, height = int(long_side / float(rng.choice([1.29, 1.414, 1.6]))), int(long_side)
    return Sheet(np.zeros((height, width), np.float32), lined=False)


def bleed(sheet, rng):
    """Lets one or two dark pictures run to the sheet's edge, under what is printed."""
    if sheet.picture is None:
        sheet.picture, sheet.pictured = np.zeros_like(sheet.ink), np.zeros_like(sheet.ink)
    for _ in range(int(rng.integers(1, 3))):
        box = np.array([[0.0, 0.0], rng.uniform(0.25, 0.6, 2)]) + rng.uniform(0.05, 0.4, 2)
        side = int(rng.integers(0, 4))
        box[side // 2, side % 2] = side // 2  # one of left, top, right, bottom
        (left, top), (right, bottom) = (box * [sheet.width, sheet.height]).astype(int)
        dark = photograph(rng, right - left, bottom - top) * float(rng.uniform(0.1, 0.35))
        sheet.picture[top:bottom, left:right] = dark
        sheet.pictured[top:bottom, left:right] = 1
        sheet.ink[top:bottom, left:right] = 0
