"""Composes pages, runs the command and its peers on them, and writes what they found.

    scripts/accuracy [--seed N] [--scale X] [--only CONDITION,...] [--without-peers]
                     [--keep FOLDER] [--out FILE]
"""
import argparse
import os
import sys
import tempfile
from concurrent.futures import ProcessPoolExecutor

import cv2

from . import compose, conditions, evidence, expected_rows, machine, ours, peers, report

DEFAULT_SEED = 20


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(prog="scripts/accuracy", description=__doc__.splitlines()[0])
    parser.add_argument(
        "--vorlane",
        metavar="PROGRAM",
        required=True,
        help="the command to measure (default: built from here)",
    )
    parser.add_argument(
        "--seed", type=int, default=DEFAULT_SEED, help="of the pages (default %(default)s)"
    )
    parser.add_argument(
        "--scale", type=float, default=1.0, help="of the number of pages (default 1: some 530)"
    )
    parser.add_argument(
        "--only", metavar="CONDITION,...", help="of: " + " ".join(conditions.BY_NAME)
    )
    parser.add_argument("--keep", metavar="FOLDER", help="keep pages, truth and answers there")
    parser.add_argument(
        "--without-peers", action="store_true", help="measure the command alone, which is faster"
    )
    parser.add_argument(
        "--jobs", type=int, default=os.cpu_count(), help="processes (default %(default)s)"
    )
    parser.add_argument(
        "--out",
        metavar="FILE",
        help="write the report there (default: docs/accuracy.md, and what answers are to be"
        " expected right to engine/judge/expected_rows.inc; with --only or --without-peers the"
        " report is printed instead)",
    )
    options = parser.parse_args(arguments)
    options.only = options.only.split(",") if options.only else None
    options.rows = None
    if options.out is None and not options.only and not options.without_peers:
        options.out = os.path.join(machine.ROOT, "docs", "accuracy.md")
        options.rows = os.path.join(machine.ROOT, "engine", "judge", "expected_rows.inc")
    if os.sep in options.vorlane:  # it is run in the pages' folder
        options.vorlane = os.path.abspath(options.vorlane)
    for name in options.only or ():
        if name not in conditions.BY_NAME:
            parser.error("no condition '%s'" % name)
    return options


def _say(text):
    print("accuracy: " + text, file=sys.stderr, flush=True)


def _ask_peer(index, path):
    cv2.setNumThreads(1)
    return peers.ALL[index].detect(path)


def ask_peers(folder, truths, jobs):
    """Answers by file name for each peer by name."""
    found = {}
    with ProcessPoolExecutor(jobs) as pool:
        for index, peer in enumerate(peers.ALL):
            _say("%s on %d pages" % (peer.NAME, len(truths)))
            answers = pool.map(
                _ask_peer,
                [index] * len(truths),
                [os.path.join(folder, truth.file) for truth in truths],
                chunksize=4,
            )
            found[peer.NAME] = dict(zip((truth.file for truth in truths), answers))
    return found


def ask_ours(program, folder, truths):
    _say("%s on %d pages" % (program, len(truths)))
    names = [truth.file for truth in truths]
    answers = ours.detect_all(program, folder, names)
    silent = [name for name in names if name not in answers]
    if silent:
        sys.exit(
            "accuracy: %s said nothing of %d pages, the first is %s"
            % (program, len(silent), silent[0])
        )
    return answers


def measure(options, folder):
    pages = compose.page_list(options.scale, options.only)
    _say("composing %d pages, seed %d" % (len(pages), options.seed))
    truths = compose.compose_all(folder, options.seed, pages, options.jobs)
    results = {ours.NAME: ask_ours(options.vorlane, folder, truths)}
    if not options.without_peers:
        results.update(ask_peers(folder, truths, options.jobs))
    facts = {
        "machine": machine.processor(),
        "commit": machine.commit(),
        "ours": ours.version(options.vorlane),
        "seed": options.seed,
        "scale": options.scale,
        "pages": len(truths),
        "peers": ", ".join(peer.version() for peer in peers.ALL if peer.NAME in results)
        or "no peers",
    }
    return report.write(facts, truths, results), evidence.shares(truths, results[ours.NAME])


def main(arguments):
    options = parse_arguments(arguments)
    if options.keep:
        text, shares = measure(options, options.keep)
    else:
        with tempfile.TemporaryDirectory(prefix="accuracy-") as folder:
            text, shares = measure(options, folder)
    if options.out is None:
        print(text)
    else:
        _write(options.out, text)
    if options.rows is not None:
        _write(options.rows, expected_rows.rows(shares))


def _write(path, content):
    with open(path, "w") as out:
        out.write(content)
    _say("wrote " + path)


if __name__ == "__main__":
    main(sys.argv[1:])
