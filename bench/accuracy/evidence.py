"""How often the command was right, by how sure it was and by the evidence that it says agreed."""
from collections import Counter

from .score import verdict

_SIDES = {"top", "right", "bottom", "left"}


def kind(by):
    """(number of sides that agreed, whether the print did). Which sides makes no difference, and
    bar and border vote, which never decide alone, none either."""
    return len(_SIDES & set(by)), "print" in by


def in_words(sides, printed):
    """ "4 sides and print"."""
    names = ["1 side" if sides == 1 else "%d sides" % sides] if sides else []
    return " and ".join(names + ["print"] * printed) or "neither"


def expected(right, answers):
    """The rule of succession, so that a kind of few pages promises little."""
    return (right + 1) / (answers + 2)


def shares(truths, answers):
    """Rows of {confidence, sides, print, answers, right}, the surest and the most frequent first."""
    given, right = Counter(), Counter()
    for truth in truths:
        answer = answers[truth.file]
        if not answer.is_given():
            continue
        key = (answer.confidence, *kind(answer.by))
        given[key] += 1
        right[key] += verdict(truth, answer) == "right"
    order = sorted(given, key=lambda key: (key[0] != "sure", -given[key], key))
    names = ("confidence", "sides", "print")
    return [{**dict(zip(names, key)), "answers": given[key], "right": right[key]} for key in order]
