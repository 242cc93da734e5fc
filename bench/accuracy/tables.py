"""The tables of the report, each from a Board."""
from . import conditions, evidence
from .answer import BELIEVED
from .markdown import share, table

_VERDICTS = ("right", "near", "wrong", "left")


def totals(board):
    """Every detector over all pages; ours also by how sure it was."""
    without = sum(not truth.has_answer() for truth in board.truths)
    pages = "%d pages" % len(board.truths)
    pages += ", %d of them without a page" % without if without else ""
    rows = []
    for name in board.results:
        tally = board.total(name)
        rows.append(["**%s**" % name] + [tally.verdicts[found] for found in _VERDICTS])
        for word in BELIEVED if name == board.ours else ():
            counts = [tally.by_confidence[word, found] for found in _VERDICTS[:3]]
            rows.append(["%s, %s" % (name, word)] + counts + [""])
    return table([pages, "right", "near", "wrong", "left alone"], rows)


def cuts(board):
    """What the cuts lose and leave, of the detectors that cut."""
    rows = []
    for name in board.results:
        tally = board.total(name)
        counts = (tally.losing_sheet, tally.losing_print, tally.leaving_surround)
        if tally.cuts:
            shares = [share(count, tally.cuts) for count in counts]
            rows.append([name, tally.cuts] + shares + [tally.kept_whole])
    head = ["answered, with a cut", "pages", "sheet lost", "print lost", "surround left"]
    return table(head + ["of these kept whole"], rows)


def turns_by_condition(board):
    rows = []
    for condition, ours in board.tallies[board.ours].items():
        row = [conditions.BY_NAME[condition].title, ours.pages]
        row += [ours.by_confidence[word, "right"] for word in BELIEVED]
        row += [ours.verdicts[found] for found in _VERDICTS[1:]]
        for peer in board.peers:
            theirs = board.tallies[peer][condition].verdicts
            row.append("%d / %d" % (theirs["right"], theirs["wrong"]))
        rows.append(row)
    head = ["condition", "pages", "right, sure", "right, likely", "near", "wrong", "left alone"]
    return table(head + [peer + ", right / wrong" for peer in board.peers], rows)


def cuts_by_condition(board):
    cutting = [name for name in board.results if board.total(name).cuts]
    head = ["condition"]
    for name in cutting:
        head += [name + ": cuts", "sheet lost", "print lost", "surround left (kept whole)"]
    rows = []
    for condition in board.tallies[board.ours]:
        row = [conditions.BY_NAME[condition].title]
        for name in cutting:
            tally = board.tallies[name][condition]
            row += [tally.cuts, tally.losing_sheet, tally.losing_print]
            row.append("%d (%d)" % (tally.leaving_surround, tally.kept_whole))
        rows.append(row)
    return table(head, rows)


def by_evidence(shares):
    rows = [
        [
            evidence.in_words(row["sides"], row["print"]),
            row["confidence"],
            row["answers"],
            row["right"],
            "%.3f" % evidence.expected(row["right"], row["answers"]),
        ]
        for row in shares
    ]
    return table(["evidence that agreed", "confidence", "answers", "right", "expected"], rows)
