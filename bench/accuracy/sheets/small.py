"""Small formats: till receipts, punched cards, index cards."""
import numpy as np

from .. import outline, words
from . import lettering
from .sheet import InkLayer, Sheet


def receipt(rng, long_side):
    """A long narrow strip: a heading, items with prices, a total, a row of bars."""
    height = int(long_side)
    width = int(long_side / float(rng.uniform(1.9, 3.2)))
    layer = InkLayer(width, height)
    em = width / float(rng.uniform(22, 30))
    font = lettering.face(rng, "mono", em)
    bold = lettering.face(rng, "sans bold", 1.9 * em)
    name = words.few_words(rng, 1).upper()
    layer.pen.text(((width - bold.getlength(name)) / 2, 1.5 * em), name, font=bold, fill=255)
    y, end = 5 * em, height - 7 * em
    while y < end:
        layer.pen.text((width * 0.06, y), words.few_words(rng, 1)[:12], font=font, fill=255)
        price = "%d,%02d" % (rng.integers(0, 200), rng.integers(0, 100))
        layer.pen.text((width * 0.94 - font.getlength(price), y), price, font=font, fill=255)
        y += em * 1.35
        if rng.random() < 0.06:
            layer.pen.text((width * 0.06, y), "-" * 20, font=font, fill=255)
            y += em * 1.35
    x = width * 0.15
    while x < width * 0.85:
        bar = float(rng.choice([1, 2, 3])) * width / 160
        layer.pen.rectangle((x, height - 5 * em, x + bar, height - 2 * em), fill=255)
        x += bar + float(rng.choice([1, 2, 3])) * width / 160
    return Sheet(layer.coverage(), lined=True, tone=float(rng.uniform(0.9, 1.0)))


def punched_card(rng, long_side):
    """Eighty columns by twelve rows of holes that show the surround, one corner cut off."""
    width, height = int(long_side), int(long_side * 0.4436)
    layer = InkLayer(width, height)
    font = lettering.face(rng, "sans", height / 26)
    holes = []
    pitch_x, pitch_y = width * 0.0118, height / 13.0
    for column in range(80):
        x = width * 0.033 + column * pitch_x
        for row in range(12):
            y = pitch_y * (row + 0.7)
            if rng.random() < 0.12:
                holes.append(
                    np.array(
                        [
                            [x, y],
                            [x + 0.55 * pitch_x, y],
                            [x + 0.55 * pitch_x, y + 0.5 * pitch_y],
                            [x, y + 0.5 * pitch_y],
                        ]
                    )
                )
            elif row > 1:
                layer.pen.text((x, y), str(row - 2), font=font, fill=150)
    corner = outline.Damage(0, "cut", height * 0.21, height * 0.13)
    return Sheet(
        layer.coverage(),
        lined=False,
        tone=float(rng.uniform(0.78, 0.97)),
        holes=holes,
        damages=[corner],
    )


def index_card(rng, long_side):
    """A catalogue card lying across, a few typed lines."""
    width, height = int(long_side), int(long_side / 1.65)
    layer = InkLayer(width, height)
    em = height / float(rng.uniform(22, 30))
    font = lettering.face(rng, "mono", em)
    if rng.random() < 0.5:
        layer.rule(0, height * 0.2, width, height * 0.2, em / 10)
    text = words.sentences(rng)
    end = height * float(rng.uniform(0.5, 0.9))
    lettering.set_column(
        layer.pen,
        rng,
        font,
        (width * 0.12, height * 0.1, width * 0.92, end),
        1.5 * em,
        text,
        justify=False,
    )
    return Sheet(layer.coverage(), lined=True, tone=float(rng.uniform(0.85, 1.0)))
