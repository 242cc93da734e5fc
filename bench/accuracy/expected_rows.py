"""The shares by evidence as rows that the engine compiles in, to say what is to be expected."""
from collections import Counter

HEAD = """\
// Right answers by confidence, sides of the paper that agreed, and whether the print did; written
// by scripts/accuracy: {confidence, sides, print, right, answers}.
"""


def rows(shares):
    """C++ initialisers from evidence.shares()."""
    right, answers = Counter(), Counter()
    for share in shares:
        key = (share["confidence"], share["sides"], share["print"])
        right[key] += share["right"]
        answers[key] += share["answers"]
    lines = [
        "{Confidence::k%s, %d, %s, %d, %d},\n"
        % (
            confidence.capitalize(),
            sides,
            str(printed).lower(),
            right[confidence, sides, printed],
            answers[confidence, sides, printed],
        )
        for confidence, sides, printed in sorted(answers, reverse=True)
    ]
    return HEAD + "".join(lines)
