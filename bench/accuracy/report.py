"""docs/accuracy.md: what was measured, in tables and in sentences that are made from the figures."""
from . import conditions, evidence, score
from .markdown import listed, share, table

_VERDICTS = ("right", "near", "wrong", "left")
_HEAD = ("right", "near", "wrong", "left alone")
_TITLES = {condition.name: condition.title for condition in conditions.TABLE}
_GROUPS = {condition.name: condition.group for condition in conditions.TABLE}

_INTRODUCTION = """# Accuracy

How often `vorlane detect` finds the turn and the cut of a page, beside four peers, on pages whose turn
and corners are known because they were composed.

```sh
scripts/accuracy            # draws the pages, runs everything on them, writes this page anew
scripts/accuracy --help     # another seed, fewer pages, one condition, keeping the pages
```

## How it is measured

Sheets are drawn: typeset pages in one to three columns, letters, forms, mark sheets, music, tables, slips,
receipts, punched cards, index cards, illustrated pages, photographs, album leaves, title pages, handwriting,
blank ones. Each is laid with a known turn on a drawn surround under one of the conditions below, and scanned:
light, blur, noise, file format. Turns are up to 10 degrees, half of them even, half close to upright; steep
ones 12 to 40. The pages depend on the seed alone, and were made for measuring only.

- **right**: given as sure or likely, and within 0.2 degrees of the paper's sides or of the print (of what lies
  between the sides where these differ); **near**: within 0.5; **wrong**: further off, or any answer where there
  is no page; **left alone**: doubtful, or refused.
- **sheet lost**: over 0.5 % of what the picture shows of the sheet lies outside the cut; **print lost**: over
  0.5 % of the print does; **surround left**: over 5 % of the cut shows something else than the sheet, be it that
  the page was turned only and **kept whole**. Of pages that were answered.
- **OpenCV outline**: Otsu's split, the largest outline, the smallest rectangle around it. It never refuses.
- **Leptonica sweep**: its search for the print's skew over ±45 degrees, on ink by Sauvola's binarisation, the
  best of its own ways on these pages; believed from its confidence of 3 on. It finds no cut.
- **ImageMagick**: `-deskew 40%`. It never refuses, and finds no cut.
- **unpaper**: its own search, over ±15 degrees, cleaning filters off, which would remove pages on a dark
  surround. A turn of 0, by which it says that it found nothing, counts as left alone.
"""


def _machine_line(facts):
    return ("Measured on %(machine)s; commit %(commit)s, %(ours)s; seed %(seed)d, scale %(scale)g: %(pages)d pages; "
            "%(peers)s.\n" % facts)


def _counts(tally):
    return [tally.verdicts[name] for name in _VERDICTS]


def _totals(title, truths, results):
    """A table of every detector over some pages; ours also by how sure it was."""
    rows = []
    for name, answers in results.items():
        tally = score.total(score.tallies(truths, answers).values())
        rows.append(["**%s**" % name] + _counts(tally))
        if name == next(iter(results)):
            rows += [["%s, %s" % (name, word)] + [tally.by_confidence[word, found] for found in _VERDICTS[:3]] + [""]
                     for word in ("sure", "likely")]
    return "### %s\n\n" % title + table([_pages(truths)] + list(_HEAD), rows)


def _pages(truths):
    without = sum(not truth.has_answer() for truth in truths)
    return "%d pages" % len(truths) + (", %d of them without a page" % without if without else "")


def _cuts(truths, results):
    rows = []
    for name, answers in results.items():
        tally = score.total(score.tallies(truths, answers).values())
        if tally.cuts:
            rows.append([name, tally.cuts, share(tally.losing_sheet, tally.cuts), share(tally.losing_print, tally.cuts),
                         share(tally.leaving_surround, tally.cuts), tally.kept_whole])
    return table(["answered, with a cut", "pages", "sheet lost", "print lost", "surround left", "of these kept whole"],
                 rows)


def _by_condition(truths, results):
    tallies = {name: score.tallies(truths, answers) for name, answers in results.items()}
    ours = next(iter(results))
    rows = []
    for condition in tallies[ours]:
        own = tallies[ours][condition]
        row = [_TITLES[condition], own.pages, own.by_confidence["sure", "right"], own.by_confidence["likely", "right"]]
        row += [own.verdicts[name] for name in _VERDICTS[1:]]
        row += ["%d / %d" % (tallies[name][condition].verdicts["right"], tallies[name][condition].verdicts["wrong"])
                for name in results if name != ours]
        rows.append(row)
    head = ["condition", "pages", "right, sure", "right, likely", "near", "wrong", "left alone"]
    return table(head + [name + ", right / wrong" for name in results if name != ours], rows)


def _cuts_by_condition(truths, results):
    tallies = {name: score.tallies(truths, answers) for name, answers in results.items()}
    cutting = [name for name in results if sum(tally.cuts for tally in tallies[name].values())]
    rows = []
    for condition in tallies[cutting[0]] if cutting else ():
        row = [_TITLES[condition]]
        for name in cutting:
            tally = tallies[name][condition]
            row += [tally.cuts, tally.losing_sheet, tally.losing_print,
                    "%d (%d)" % (tally.leaving_surround, tally.kept_whole)]
        rows.append(row)
    head = ["condition"] + [words for name in cutting for words in
                            (name + ": cuts", "sheet lost", "print lost", "surround left (kept whole)")]
    return table(head, rows)


def peers_ahead(truths, results):
    """(peer, condition, its right answers, ours) wherever a peer has more of them."""
    ours = next(iter(results))
    own = score.tallies(truths, results[ours])
    ahead = []
    for name in results:
        if name == ours:
            continue
        for condition, tally in score.tallies(truths, results[name]).items():
            if tally.verdicts["right"] > own[condition].verdicts["right"]:
                ahead.append((name, condition, tally.verdicts["right"], own[condition].verdicts["right"]))
    return ahead


def _ahead_in_words(truths, results):
    ahead = peers_ahead(truths, results)
    lines = []
    for name in list(results)[1:]:
        found = ["%s (%d right, ours %d)" % (_TITLES[condition], theirs, own)
                 for peer, condition, theirs, own in ahead if peer == name]
        lines.append("- **%s**: %s." % (name, listed(found) if found else "in no condition"))
    return "\n".join(lines) + "\n"


def _expected(truths, results):
    rows = [[row["by"], row["confidence"], row["answers"], share(row["right"], row["answers"])]
            for row in evidence.shares(truths, next(iter(results.values())))]
    return table(["evidence that agreed", "confidence", "answers", "right"], rows)


def write(facts, truths, results):
    """The page. `results`: answers by file name for each detector by name, ours first."""
    ordinary = [truth for truth in truths if _GROUPS[truth.condition] == conditions.ORDINARY]
    hard = [truth for truth in truths if _GROUPS[truth.condition] == conditions.HARD]
    parts = [_INTRODUCTION, _machine_line(facts), "## Results\n"]
    for title, some in (("Ordinary pages", ordinary), ("Hard pages", hard)):
        if some:
            parts += [_totals(title, some, results), _cuts(some, results)]
    parts += ["## Where a peer is ahead\n", "More right answers than ours, by condition:\n", _ahead_in_words(truths, results),
              "## By condition\n", _by_condition(truths, results),
              "### Cuts\n", _cuts_by_condition(truths, results),
              "## By evidence\n",
              "The share of right answers for each kind of evidence, which `vorlane detect --json` reports as `expected`:\n",
              _expected(truths, results)]
    return "\n".join(parts)
