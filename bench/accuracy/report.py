"""docs/accuracy.md: what was measured, in tables and in sentences made from the figures."""
from . import conditions, evidence, tables
from .board import Board
from .markdown import listed

_INTRODUCTION = """# Accuracy

How often `vorlane detect` finds the turn and the cut of a page, beside four peers, on pages whose
turn and corners are known because they were composed.

```sh
scripts/accuracy            # draws the pages, runs everything on them, writes this page anew
scripts/accuracy --help     # another seed, fewer pages, some conditions, keeping the pages
```

## How it is measured

Sheets are drawn: typeset pages in one to three columns, letters, forms, mark sheets, music, tables,
slips, receipts, punched cards, index cards, illustrated pages, photographs, album leaves, title
pages, handwriting, blank ones. Each is laid with a known turn on a drawn surround under one of the
conditions below, and scanned: light, blur, noise, file format. Turns are up to 10 degrees, half of
them even, half close to upright; steep ones 12 to 40. The pages depend on the seed alone.

- **right**: given as sure or likely, and within 0.2 degrees of the paper's sides or of the print
  (of what lies between the sides where these differ); **near**: within 0.5; **wrong**: further off,
  or any answer where there is no page; **left alone**: doubtful, or refused.
- **sheet lost**: over 0.5 % of what the picture shows of the sheet lies outside the cut; **print
  lost**: over 0.5 % of the print does; **surround left**: over 5 % of the cut shows something else
  than the sheet, be it that the page was turned only and **kept whole**. Of pages that were
  answered.
- **OpenCV outline**: Otsu's split, the largest outline, the smallest rectangle around it. It never
  refuses.
- **Leptonica sweep**: its search for the print's skew over ±45 degrees, on ink by Sauvola's
  binarisation, the best of its own ways on these pages; believed from its confidence of 3 on. It
  finds no cut.
- **ImageMagick**: `-deskew 40%`. It never refuses, and finds no cut.
- **unpaper**: its own search, over ±15 degrees, cleaning filters off, which would remove pages on a
  dark surround. A turn of 0, by which it says that it found nothing, counts as left alone.
"""


def _machine_line(facts):
    return (
        "All tables are made by `scripts/accuracy --seed %(seed)d --scale %(scale)g` (%(pages)d pages), "
        "here on %(machine)s; commit %(commit)s, %(ours)s; %(peers)s.\n" % facts
    )


def _ahead_in_words(board):
    lines = []
    for peer in board.peers:
        found = [
            "%s (%d right, ours %d)" % (conditions.BY_NAME[condition].title, theirs, ours)
            for condition, theirs, ours in board.ahead(peer)
        ]
        lines.append("- **%s**: %s." % (peer, listed(found) if found else "in no condition"))
    return "\n".join(lines) + "\n"


def _in_short(board):
    """One sentence for each detector, over all pages."""
    lines = []
    for name in board.results:
        tally = board.total(name)
        counts = [tally.verdicts[found] for found in ("right", "near", "wrong", "left")]
        lines.append("- **%s**: %d right, %d near, %d wrong, %d left alone." % (name, *counts))
    return "Of all %d pages:\n\n%s\n" % (len(board.truths), "\n".join(lines))


def write(facts, truths, results):
    """The page. `results`: answers by file name for each detector by name, ours first."""
    board = Board(truths, results)
    parts = [_INTRODUCTION, _machine_line(facts), "## Results\n", _in_short(board)]
    for group in (conditions.ORDINARY, conditions.HARD):
        part = board.of_group(group)
        if part.truths:
            title = "### %s pages\n" % group.capitalize()
            parts += [title, tables.totals(part), tables.cuts(part)]
    parts += [
        "## Where a peer is ahead\n",
        "More right answers than ours, by condition:\n",
        _ahead_in_words(board),
        "## By condition\n",
        tables.turns_by_condition(board),
        "### Cuts\n",
        tables.cuts_by_condition(board),
        "## By evidence\n",
        "Right answers by the evidence that agreed. `vorlane detect --json` tells the last column as"
        " `expected`: (right + 1) / (answers + 2), so that a kind of few pages promises little;"
        " 0.5 for a kind that is not here, and for doubtful answers.\n",
        tables.by_evidence(evidence.shares(truths, results[board.ours])),
    ]
    return "\n".join(parts)
