"""How often the command was right, by the evidence that it says agreed and by how sure it was."""
from collections import Counter

from .score import verdict

_SIDES = {"top", "right", "bottom", "left"}


def kind(by):
    """The evidence in words: "4 sides, print". Which sides they are makes no difference."""
    names = []
    sides = len(_SIDES & set(by))
    if sides:
        names.append("1 side" if sides == 1 else "%d sides" % sides)
    return ", ".join(names + sorted(set(by) - _SIDES)) or "none named"


def shares(truths, answers):
    """Rows of {confidence, by, sides, print, bar, vote, answers, right}, the surest and the most
    frequent first."""
    given, right, parts = Counter(), Counter(), {}
    for truth in truths:
        answer = answers[truth.file]
        if not answer.is_given():
            continue
        key = (answer.confidence, kind(answer.by))
        given[key] += 1
        right[key] += verdict(truth, answer) == "right"
        parts[key] = {
            "sides": len(_SIDES & set(answer.by)),
            **{name: name in answer.by for name in ("print", "bar", "vote")},
        }
    order = sorted(given, key=lambda key: (key[0] != "sure", -given[key], key[1]))
    return [
        {
            "confidence": key[0],
            "by": key[1],
            **parts[key],
            "answers": given[key],
            "right": right[key],
        }
        for key in order
    ]
