"""Typeset pages: books, articles in columns, title pages, typed letters."""
import numpy as np

from .. import words
from . import lettering
from .sheet import InkLayer, Sheet


def _size(rng, long_side, ratios=(1.29, 1.414, 1.5, 1.6)):
    return int(long_side / float(rng.choice(ratios))), int(long_side)


def _running_head(layer, rng, box, em):
    left, top, right, _ = box
    font = lettering.face(rng, "italic", em)
    title = words.few_words(rng, 4)
    layer.pen.text((left, top - 2.6 * em), title, font=font, fill=255)
    number = str(int(rng.integers(2, 640)))
    layer.pen.text((right - font.getlength(number), top - 2.6 * em), number, font=font, fill=255)
    if rng.random() < 0.5:
        layer.rule(left, top - 1.0 * em, right, top - 1.0 * em, em / 12)


def _figure(layer, rng, box):
    """A line drawing: hatched blocks and curves inside a frame."""
    left, top, right, bottom = (int(v) for v in box)
    if rng.random() < 0.6:
        layer.pen.rectangle(
            (left, top, right, bottom), outline=255, width=max(1, (right - left) // 250)
        )
    for _ in range(int(rng.integers(2, 6))):
        x0, x1 = np.sort(rng.uniform(left, right, 2))
        y0, y1 = np.sort(rng.uniform(top, bottom, 2))
        layer.pen.ellipse((x0, y0, x1, y1), outline=255, width=2)
        for x in np.arange(x0, x1, max(3, (x1 - x0) / 25)):
            layer.pen.line((x, y0, (x + x1) / 2, y1), fill=255, width=1)


def columns(rng, long_side, count):
    """A page of `count` columns, with headings and now and then a figure."""
    width, height = _size(rng, long_side)
    layer = InkLayer(width, height)
    margin_x, margin_y = rng.uniform(0.07, 0.14, 2)
    box = (width * margin_x, height * margin_y, width * (1 - margin_x), height * (1 - margin_y))
    em = height / float(rng.uniform(52, 68) if count == 1 else rng.uniform(68, 90))
    leading = em * float(rng.uniform(1.18, 1.45))
    _running_head(layer, rng, box, em)
    gutter = 1.8 * em
    column_width = (box[2] - box[0] - gutter * (count - 1)) / count
    body = lettering.face(rng, str(rng.choice(["serif", "serif", "sans"])), em)
    text = words.sentences(rng)
    for index in range(count):
        left = box[0] + index * (column_width + gutter)
        top = box[1]
        if index == 0 and rng.random() < 0.4:
            heading = lettering.face(rng, "serif bold", 1.7 * em)
            layer.pen.text((left, top), words.few_words(rng, 2), font=heading, fill=255)
            top += 2.6 * em
        bottom = box[3]
        if rng.random() < 0.3 / count:
            figure_height = float(rng.uniform(0.15, 0.4)) * (bottom - top)
            _figure(layer, rng, (left, bottom - figure_height, left + column_width, bottom))
            bottom -= figure_height + em
        if rng.random() < 0.15:
            bottom = top + (bottom - top) * float(rng.uniform(0.3, 0.9))
        lettering.set_column(
            layer.pen,
            rng,
            body,
            (left, top, left + column_width, bottom),
            leading,
            text,
            justify=rng.random() < 0.8,
        )
        if index and rng.random() < 0.3:
            layer.rule(left - gutter / 2, box[1], left - gutter / 2, box[3], em / 14)
    return Sheet(layer.coverage(), lined=True)


def one_column(rng, long_side):
    return columns(rng, long_side, 1)


def two_columns(rng, long_side):
    return columns(rng, long_side, 2)


def three_columns(rng, long_side):
    return columns(rng, long_side, 3)


def typed_letter(rng, long_side):
    """Ragged lines of a typewriter, an address, a short text, a signature."""
    width, height = _size(rng, long_side, (1.29, 1.414))
    layer = InkLayer(width, height)
    em = height / float(rng.uniform(58, 70))
    font = lettering.face(rng, "mono", em)
    left, right = width * 0.13, width * 0.9
    y = height * 0.1
    for _ in range(int(rng.integers(2, 5))):
        layer.pen.text(
            (left, y), words.few_words(rng, int(rng.integers(2, 5))), font=font, fill=255
        )
        y += 1.5 * em
    y += 2.5 * em
    end = height * float(rng.uniform(0.45, 0.85))
    text = words.sentences(rng)
    lettering.set_column(layer.pen, rng, font, (left, y, right, end), 1.6 * em, text, justify=False)
    steps = np.cumsum(rng.normal(0, 1, (60, 2)) + [1.1, 0], axis=0) * em * 0.35
    signature = [(width * 0.55 + dx, end + 3 * em + dy) for dx, dy in steps]
    layer.pen.line(signature, fill=255, width=max(1, int(em / 9)))
    return Sheet(layer.coverage(), lined=True)


def title_page(rng, long_side):
    """A few centred lines: little print for a skew search to hold on to."""
    width, height = _size(rng, long_side)
    layer = InkLayer(width, height)
    y = height * 0.14
    for _ in range(int(rng.integers(4, 9))):
        em = height / float(rng.uniform(22, 60))
        font = lettering.face(rng, str(rng.choice(["serif", "serif bold", "italic"])), em)
        line = words.few_words(rng, int(rng.integers(1, 4)))
        if font.getlength(line) > 0.8 * width:
            line = line.split()[0]
        layer.pen.text(((width - font.getlength(line)) / 2, y), line, font=font, fill=255)
        y += em * float(rng.uniform(1.6, 4))
        if y > 0.8 * height:
            break
    layer.rule(width * 0.35, height * 0.88, width * 0.65, height * 0.88, height / 500)
    return Sheet(layer.coverage(), lined=True)


def handwriting(rng, long_side):
    """Lines of a running hand, none quite straight: the print's direction is only rough."""
    width, height = _size(rng, long_side, (1.29, 1.414, 1.6))
    layer = InkLayer(width, height)
    em = height / float(rng.uniform(26, 38))
    y = height * float(rng.uniform(0.1, 0.2))
    while y < height * 0.88:
        x = width * float(rng.uniform(0.08, 0.12))
        end = width * float(rng.uniform(0.6, 0.92))
        sag = rng.normal(0, 0.25, 2) * em
        while x < end:
            steps = int(rng.integers(8, 26))
            run = np.arange(steps) * em * 0.11
            loops = (
                np.sin(np.arange(steps) * 2.1 + rng.uniform(0, 6))
                * em
                * rng.uniform(0.12, 0.34, steps)
            )
            drift = sag[0] * (x / width) + sag[1] * np.sin(x / width * 3)
            layer.pen.line(
                [(x + dx, y + drift + dy) for dx, dy in zip(run, loops)],
                fill=255,
                width=max(1, int(em / 12)),
                joint="curve",
            )
            x += run[-1] + em * 0.45
        y += em * 1.5
    return Sheet(layer.coverage(), lined=False)
