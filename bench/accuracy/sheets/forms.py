"""Printed forms: boxes, dotted lines, bars, mark fields, payment slips."""
from .. import words
from . import lettering
from .sheet import InkLayer, Sheet


def _field(layer, font, box, em, rng):
    left, top, right, bottom = box
    layer.pen.rectangle(box, outline=255, width=max(1, int(em / 10)))
    layer.pen.text((left + 0.3 * em, top + 0.2 * em), words.few_words(rng, 1), font=font, fill=255)
    if rng.random() < 0.3:
        cells = int(rng.integers(5, 14))
        for index in range(1, cells):
            x = left + (right - left) * index / cells
            layer.rule(x, (top + bottom) / 2, x, bottom, em / 14)


def boxed_form(rng, long_side):
    """Rows of labelled boxes below a heading."""
    width, height = int(long_side / float(rng.choice([1.29, 1.414]))), int(long_side)
    layer = InkLayer(width, height)
    em = height / float(rng.uniform(75, 95))
    small = lettering.face(rng, "sans", 0.85 * em)
    left, right = width * 0.07, width * 0.93
    layer.pen.text(
        (left, height * 0.05),
        words.few_words(rng, 3),
        font=lettering.face(rng, "sans bold", 2 * em),
        fill=255,
    )
    y = height * 0.1
    while y < height * 0.9:
        row = em * float(rng.choice([2.6, 2.6, 3.4, 6]))
        cuts = sorted(rng.uniform(left, right, int(rng.integers(0, 4))).tolist())
        edges = [left] + cuts + [right]
        for x0, x1 in zip(edges, edges[1:]):
            if x1 - x0 > 3 * em:
                _field(layer, small, (x0, y, x1, min(y + row, height * 0.93)), em, rng)
        y += row + (em * 2 if rng.random() < 0.15 else 0)
    if rng.random() < 0.5:
        layer.rule(left, height * 0.035, right, height * 0.035, em * float(rng.uniform(0.6, 1.4)))
    return Sheet(layer.coverage(), lined=True)


def mark_sheet(rng, long_side):
    """Answer rows of ovals with thick timing bars along a side and a bar across the top."""
    width, height = int(long_side / 1.414), int(long_side)
    layer = InkLayer(width, height)
    em = height / 90.0
    small = lettering.face(rng, "sans", em)
    layer.rule(width * 0.06, height * 0.05, width * 0.94, height * 0.05, 1.1 * em)
    layer.pen.text((width * 0.1, height * 0.075), words.few_words(rng, 5), font=small, fill=255)
    pitch = 1.9 * em
    left_bars = rng.random() < 0.5
    row, y = 0, height * 0.13
    while y < height * 0.93:
        bar = width * 0.04 if left_bars else width * 0.93
        layer.pen.rectangle((bar, y, bar + 1.6 * em, y + 0.55 * em), fill=255)
        for block in range(3):
            x = width * (0.12 + 0.28 * block)
            layer.pen.text((x, y - 0.2 * em), str(row + 1 + 35 * block), font=small, fill=255)
            for choice in range(5):
                oval = (
                    x + (3 + 2 * choice) * em,
                    y - 0.2 * em,
                    x + (4.4 + 2 * choice) * em,
                    y + 0.8 * em,
                )
                chosen = rng.random() < 0.15
                layer.pen.ellipse(
                    oval, outline=255, width=max(1, int(em / 9)), fill=255 if chosen else None
                )
        row += 1
        y += pitch
    return Sheet(layer.coverage(), lined=True)


def barred_sheet(rng, long_side):
    """Long thick bars, vertical and horizontal, with a little print between."""
    width, height = int(long_side / 1.414), int(long_side)
    layer = InkLayer(width, height)
    em = height / 70.0
    font = lettering.face(rng, "sans", em)
    for share in (0.06, 0.94)[: int(rng.integers(1, 3))]:
        layer.rule(
            width * 0.08,
            height * share,
            width * 0.92,
            height * share,
            em * float(rng.uniform(0.8, 2)),
        )
    if rng.random() < 0.6:
        x = width * float(rng.choice([0.06, 0.94]))
        layer.rule(
            x,
            height * 0.1,
            x,
            height * float(rng.uniform(0.5, 0.9)),
            em * float(rng.uniform(0.8, 2)),
        )
    for _ in range(int(rng.integers(4, 12))):
        x, y = width * float(rng.uniform(0.12, 0.5)), height * float(rng.uniform(0.12, 0.88))
        layer.pen.text((x, y), words.few_words(rng, int(rng.integers(2, 6))), font=font, fill=255)
    return Sheet(layer.coverage(), lined=True)


def payment_slip(rng, long_side):
    """A slip lying across: two halves parted by a dashed line, digits in boxes."""
    width, height = int(long_side), int(long_side / float(rng.uniform(1.8, 2.3)))
    layer = InkLayer(width, height)
    em = height / 26.0
    font, digits = lettering.face(rng, "sans", em), lettering.face(rng, "mono", 1.4 * em)
    part = width * 0.34
    for y in range(0, height, max(6, int(em))):
        layer.rule(part, y, part, y + em * 0.5, em / 8)
    for x0, x1 in ((width * 0.03, part - em), (part + em, width * 0.97)):
        y = height * 0.08
        while y < height * 0.8:
            layer.pen.text((x0, y), words.few_words(rng, 2), font=font, fill=255)
            box = (x0, y + 1.3 * em, x1, y + 3.2 * em)
            layer.pen.rectangle(box, outline=255, width=max(1, int(em / 10)))
            number = " ".join(str(int(d)) for d in rng.integers(0, 10, 9))
            layer.pen.text((x0 + em, y + 1.5 * em), number, font=digits, fill=255)
            y += float(rng.uniform(4, 5.5)) * em
    layer.rule(
        width * 0.03, height * 0.94, width * 0.97, height * 0.94, em * float(rng.uniform(0.4, 1.2))
    )
    return Sheet(layer.coverage(), lined=True)
