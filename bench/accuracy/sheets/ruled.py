"""Sheets whose print is mostly rules: music and account tables."""
import numpy as np

from .. import words
from . import lettering
from .sheet import InkLayer, Sheet


def _note(layer, x, y, space, up):
    layer.pen.ellipse(
        (x - 0.62 * space, y - 0.45 * space, x + 0.62 * space, y + 0.45 * space), fill=255
    )
    stem_x = x + 0.58 * space if up else x - 0.58 * space
    layer.rule(stem_x, y, stem_x, y - 3.3 * space if up else y + 3.3 * space, space / 7)


def music(rng, long_side):
    """Staves in systems of one or two, with notes, bar lines and a title."""
    width, height = int(long_side / float(rng.choice([1.29, 1.38]))), int(long_side)
    layer = InkLayer(width, height)
    space = height / float(rng.uniform(125, 165))
    left, right = width * 0.08, width * 0.93
    layer.pen.text(
        (width * 0.36, height * 0.05),
        words.few_words(rng, 2),
        font=lettering.face(rng, "serif bold", 4 * space),
        fill=255,
    )
    paired = rng.random() < 0.5
    y, staff = height * 0.12, 0
    while y + 4 * space < height * 0.93:
        for line in range(5):
            layer.rule(left, y + line * space, right, y + line * space, space / 9)
        for bar in np.linspace(left, right, int(rng.integers(4, 7))):
            layer.rule(bar, y, bar, y + 4 * space, space / 6)
        x = left + 5 * space
        while x < right - 2 * space:
            pitch = y + space * float(rng.integers(-1, 10)) / 2
            _note(layer, x, pitch, space, pitch > y + 2 * space)
            x += space * float(rng.choice([2.2, 3.0, 4.2]))
        staff += 1
        y += space * (8 if paired and staff % 2 else 12)
    return Sheet(layer.coverage(), lined=True)


def account_table(rng, long_side):
    """A ledger page: columns of figures between rules, headings above."""
    upright = rng.random() < 0.6
    width, height = (
        (int(long_side / 1.414), int(long_side))
        if upright
        else (int(long_side), int(long_side / 1.414))
    )
    layer = InkLayer(width, height)
    em = long_side / float(rng.uniform(75, 100))
    left, top, right, bottom = width * 0.06, height * 0.12, width * 0.94, height * 0.92
    font, bold = lettering.face(rng, "serif", em), lettering.face(rng, "serif bold", 1.6 * em)
    layer.pen.text((left, height * 0.06), words.few_words(rng, 3), font=bold, fill=255)
    edges = [left, left + (right - left) * 0.3] + np.linspace(
        left + (right - left) * 0.3, right, int(rng.integers(4, 8))
    )[1:].tolist()
    for x in edges:
        layer.rule(x, top, x, bottom, em / 9)
    for y in (top, top + 2 * em, bottom):
        layer.rule(left, y, right, y, em / 8)
    lined = rng.random() < 0.5
    y = top + 2.4 * em
    while y + 1.3 * em < bottom:
        layer.pen.text((left + 0.4 * em, y), words.few_words(rng, 2), font=font, fill=255)
        for x in edges[2:]:
            if rng.random() < 0.85:
                figure = "%d.%02d" % (rng.integers(0, 9999), rng.integers(0, 100))
                layer.pen.text(
                    (x - font.getlength(figure) - 0.4 * em, y), figure, font=font, fill=255
                )
        y += 1.5 * em
        if lined:
            layer.rule(left, y - 0.1 * em, right, y - 0.1 * em, em / 16)
    return Sheet(layer.coverage(), lined=True)
