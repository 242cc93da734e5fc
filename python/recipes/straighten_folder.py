#!/usr/bin/env python3
"""Straightens a folder of pages on the workers of a Dask cluster.

    straighten_folder.py PAGES STRAIGHT [--scheduler ADDRESS | --workers N]

Without --scheduler a scheduler and N worker processes (2) are started on this machine. With it, its
workers see both folders under the same names and have vorlane, Pillow and numpy.

Prints a line of JSON for each page as it is done: its file, what became of it ("straightened",
"left as it is" or "failed"), the turn in degrees, how sure that is, and the reasons. A page that is
left as it is or failed has no file in STRAIGHT. A page whose file is there already is not done
again, so that a run that was broken off goes on where it stopped. The exit status is 1 when a page
failed.

Takes one picture a file, 1 bit, grey or RGB, in a format that Pillow reads and writes; resolution,
colour profile and EXIF data go along.
"""

import argparse
import json
import os
import sys
import tempfile
from pathlib import Path

import numpy as np
from distributed import Client, LocalCluster, as_completed
from PIL import Image

import vorlane

KEPT = ("dpi", "icc_profile", "exif", "compression")


def write_whole(page, path, format, kept):
    """The file appears under its name only when it is whole."""
    # mkstemp's mode is for one's own eyes; what is written is for all whom the umask allows.
    descriptor, part = tempfile.mkstemp(dir=path.parent, prefix=f".{path.name}.")
    try:
        with os.fdopen(descriptor, "wb") as file:
            quality = {"quality": 95} if format == "JPEG" else {}
            Image.fromarray(page).save(file, format, **kept, **quality)
        umask = os.umask(0)
        os.umask(umask)
        os.chmod(part, 0o666 & ~umask)
        os.replace(part, path)
    except BaseException:
        os.unlink(part)
        raise


def straighten_file(source, target):
    """Runs on a worker; returns the page's line."""
    line = {"file": str(source)}
    try:
        with Image.open(source) as picture:
            if picture.mode not in ("1", "L", "RGB"):
                raise ValueError(f"pictures of mode {picture.mode} are not taken")
            if getattr(picture, "n_frames", 1) != 1:
                raise ValueError("the file holds more than one picture")
            format = picture.format
            kept = {name: picture.info[name] for name in KEPT if name in picture.info}
            scan = np.asarray(picture)
        page, finding = vorlane.straighten(scan)
        write_whole(page, target, format, kept)
        line["outcome"] = "straightened"
    except vorlane.NotConfident as doubt:
        finding = doubt.finding
        line["outcome"] = "left as it is"
    except Exception as error:  # whatever is wrong with one page, the others are done
        return {**line, "outcome": "failed", "why": f"{type(error).__name__}: {error}"}
    return {
        **line,
        "turn": round(finding.turn, 3),
        "confidence": finding.turn_confidence.name.lower(),
        "reasons": [reason.name for reason in finding.reasons],
    }


def straighten_folder(client, pages, straight):
    """Yields the lines of all pages whose file is not there yet."""
    straight.mkdir(parents=True, exist_ok=True)
    todo = [
        (source, straight / source.name)
        for source in sorted(pages.iterdir())
        if source.is_file() and not source.name.startswith(".")
        and not (straight / source.name).exists()
    ]
    futures = client.map(straighten_file, *zip(*todo), pure=False) if todo else []
    sources = {future.key: source for future, (source, _) in zip(futures, todo)}
    for future in as_completed(futures):
        if future.status == "finished":
            yield future.result()
        else:  # the worker died of it, and others after it
            why = repr(future.exception())
            yield {"file": str(sources[future.key]), "outcome": "failed", "why": why}


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("pages", type=Path)
    parser.add_argument("straight", type=Path)
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--scheduler", metavar="ADDRESS", help="tcp://HOST:PORT")
    where.add_argument("--workers", metavar="N", type=int, default=2)
    asked = parser.parse_args()

    failed = 0
    cluster = asked.scheduler or LocalCluster(
        n_workers=asked.workers, threads_per_worker=1, processes=True, dashboard_address=None
    )
    with Client(cluster) as client:
        pages, straight = asked.pages.absolute(), asked.straight.absolute()
        for line in straighten_folder(client, pages, straight):
            print(json.dumps(line), flush=True)
            failed += line["outcome"] == "failed"
    if not asked.scheduler:
        cluster.close()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
