"""Type: faces of Debian's DejaVu and Liberation, lines and justified paragraphs."""
import functools
import glob
import os

from PIL import ImageFont

_FOLDERS = ("/usr/share/fonts/truetype/dejavu", "/usr/share/fonts/truetype/liberation*")
_FACES = {
    "serif": ("LiberationSerif-Regular", "DejaVuSerif"),
    "serif bold": ("LiberationSerif-Bold", "DejaVuSerif-Bold"),
    "italic": ("LiberationSerif-Italic",),
    "sans": ("LiberationSans-Regular", "DejaVuSans", "LiberationSansNarrow-Regular"),
    "sans bold": ("LiberationSans-Bold", "DejaVuSans-Bold"),
    "mono": ("LiberationMono-Regular", "DejaVuSansMono"),
}


@functools.lru_cache(maxsize=None)
def _path(name):
    for folder in _FOLDERS:
        for path in sorted(glob.glob(os.path.join(folder, name + ".ttf"))):
            return path
    raise FileNotFoundError("no %s.ttf: install fonts-dejavu-core and fonts-liberation" % name)


@functools.lru_cache(maxsize=None)
def _font(name, size):
    return ImageFont.truetype(_path(name), size, layout_engine=ImageFont.Layout.BASIC)


def face(rng, style, size):
    """One of the fonts of a style, `size` pixels to the em."""
    return _font(str(rng.choice(_FACES[style])), max(6, int(round(size))))


def set_line(draw, font, left, baseline_top, words, width, justify):
    """Sets as many words as fit from the list's front, which it takes off; returns their count."""
    space = font.getlength(" ")
    taken, length = [], 0.0
    while words:
        word_length = font.getlength(words[0])
        if taken and length + space + word_length > width:
            break
        length += word_length + (space if taken else 0)
        taken.append((words.pop(0), word_length))
    gaps = len(taken) - 1
    stretch = (width - length) / gaps if justify and gaps > 0 and words else 0.0
    x = float(left)
    for word, word_length in taken:
        draw.text((x, baseline_top), word, font=font, fill=255)
        x += word_length + space + stretch
    return len(taken)


def set_column(draw, rng, font, box, leading, sentences, indent=1.4, justify=True):
    """Fills a box (left, top, right, bottom) with paragraphs taken from the endless `sentences`."""
    left, top, right, bottom = box
    y = top
    while y + leading <= bottom:
        paragraph = [word for _ in range(int(rng.integers(2, 7))) for word in next(sentences)]
        first = True
        while paragraph and y + leading <= bottom:
            inset = indent * leading if first else 0
            set_line(draw, font, left + inset, y, paragraph, right - left - inset, justify)
            first = False
            y += leading
