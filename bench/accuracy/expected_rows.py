"""The shares by evidence as rows that the engine compiles in, to say what is to be expected."""

HEAD = """\
// Right answers by confidence, sides of the paper that agreed, and whether the print did, as
// docs/accuracy.md has them: {confidence, sides, print, right, answers}. Written by scripts/accuracy.
"""


def rows(shares):
    """C++ initialisers from evidence.shares()."""
    return HEAD + "".join(
        "{Confidence::k%s, %d, %s, %d, %d},\n"
        % (
            row["confidence"].capitalize(),
            row["sides"],
            str(row["print"]).lower(),
            row["right"],
            row["answers"],
        )
        for row in shares
    )
