#!/usr/bin/env python3
"""Lets what the command asks the system for fail, place by place, and looks at what it leaves.

  command_sweep.py VORLANE FAULT_LIBRARY [--places N] [--all] [--seed N]

A handful of small files of several kinds goes through straighten with a journal, detect, apply and
blocks. Whatever fails: nothing crashes or hangs; a file under its final name is whole and nothing else
is left beside it; lines of the report and the journal are true; where something was lost the exit code
and a message say so; and going on with --resume gives what an undisturbed run gives.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import random
import shutil
import struct
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../tests/app/batch"))
from pages import page, write_pgm, write_tiff  # noqa: E402

KINDS = ("malloc", "calloc", "realloc", "mmap", "pthread_create", "open", "write", "fsync", "rename")
COUNT, ONLY, FROM_THERE = 1, 2, 3
RECORD = struct.Struct("<2i4q9q")  # fault_record.h: mode, kind; n, struck, alive, largest; seen
LONGEST = 60  # seconds of a run, on a busy machine
WIDTH, HEIGHT = 160, 200


def tree(folder):
    """The bytes of all files below a folder, by their names."""
    found = {}
    for root, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(root, name)
            with open(path, "rb") as file:
                found[os.path.relpath(path, folder)] = file.read()
    return found


def lasting(line):
    """A line of a report or journal without what differs from run to run, or hangs on other pages."""
    try:
        entry = json.loads(line)
    except ValueError:
        return line
    kept = {key: value for key, value in entry.items()
            if key not in ("milliseconds", "outputSha256", "overlay", "notes")}
    return json.dumps(kept, sort_keys=True)


class Run:
    """One run in a folder of its own, and what it left there."""

    def __init__(self, sweep, folder, words, fault=None):
        os.makedirs(folder, exist_ok=True)
        record = folder + ".record"
        mode, kind, n = fault or (COUNT, 0, 0)
        with open(record, "wb") as file:
            file.write(RECORD.pack(mode, kind, n, 0, 0, 0, *[0] * len(KINDS)))
        environment = dict(os.environ, LD_PRELOAD=sweep.library, VORLANE_FAULTS=record)
        try:
            done = subprocess.run([sweep.vorlane, *words], cwd=folder, env=environment,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=LONGEST,
                                  check=False)
            self.exit, self.out, self.errors = done.returncode, done.stdout, done.stderr
        except subprocess.TimeoutExpired:
            self.exit, self.out, self.errors = None, b"", b""
        with open(record, "rb") as file:
            fields = RECORD.unpack(file.read())
        os.remove(record)
        self.struck, self.alive, self.seen = fields[3], fields[4], fields[6:]
        self.files = tree(folder)
        self.journal = self.files.pop("j.jsonl", b"").decode().splitlines()

    def report(self):
        return sorted(map(lasting, self.out.decode().splitlines())), sorted(map(lasting, self.journal))


class Request:
    def __init__(self, sweep, name, words):
        self.name, self.words, self.sweep = name, words, sweep
        self.whole = self.run(os.path.join(sweep.folder, name))
        assert self.whole.exit == 0 and self.whole.out, self.whole.errors
        # A file of several pages is whole without those that could not be made, too.
        self.variants = {path: {data} for path, data in self.whole.files.items()}
        self.first = [0] * len(KINDS)

    def run(self, folder, fault=None, more=()):
        return Run(self.sweep, folder, [*self.words, *more], fault)

    def faults(self, places, chance):
        """All places, or some of each kind; those before `self.first` are another request's."""
        for kind, seen in enumerate(self.whole.seen):
            there = range(self.first[kind], seen)
            for mode in (ONLY, FROM_THERE):
                for n in there if len(there) <= places else chance.sample(there, places):
                    yield mode, kind, n

    def complaints(self, fault):
        """What is wrong with a run that meets a fault; nothing, if all is well."""
        folder = tempfile.mkdtemp(dir=self.sweep.folder)
        try:
            run = self.run(folder, fault)
            yield from self.look(run)
            if KINDS[fault[1]] == "fsync" and run.struck and run.exit == 0:
                yield "exits with 0 though not all is on the disk"
            if "--journal" in self.words and run.exit is not None:
                again = self.run(folder, more=("--resume",))
                if again.exit != 0 or again.files != self.whole.files:
                    yield f"--resume does not mend it: {again.exit}, {again.errors[-200:]}"
                elif sorted(map(lasting, again.journal)) != self.whole.report()[1]:
                    yield "--resume leaves another journal"
        finally:
            shutil.rmtree(folder)

    def look(self, run):
        if run.exit is None:
            yield "hangs"
            return
        if run.exit not in (0, 1, 2, 3):
            yield f"ends by {run.exit}: {run.errors[-200:]}"
        elif run.exit != 0 and not run.errors:
            yield f"exits with {run.exit} and says nothing"
        elif run.exit == 0 and (run.files, run.report()) != (self.whole.files, self.whole.report()):
            yield f"exits with 0 and leaves something else: {run.out[-300:]} {run.errors[-200:]}"
        for path, data in run.files.items():
            if data not in self.variants.get(path, ()):
                yield f"leaves {path} of {len(data)} bytes"
        for line in run.journal:
            try:
                entry = json.loads(line)
            except ValueError:
                yield f"leaves a torn line in the journal: {line}"
                continue
            yield from self.look_at_names(run, entry)
            if entry["result"] != "error" and lasting(line) not in self.whole.report()[1]:
                yield f"the journal says what is not so: {line}"

    @staticmethod
    def look_at_names(run, entry):
        for key in ("output", "overlay"):
            if key in entry and entry[key] not in run.files:
                yield f"the journal names {entry[key]}, which is not there"
            elif key == "output" and key in entry:
                made = hashlib.sha256(run.files[entry[key]]).hexdigest()
                if entry.get("outputSha256", made) != made:  # without one it is done again
                    yield f"the journal has another checksum of {entry[key]}"


class Sweep:
    def __init__(self, options, folder):
        self.vorlane = os.path.abspath(options.vorlane)
        self.library = os.path.abspath(options.library)
        self.folder = folder
        self.draw(os.path.join(folder, "in"))
        inputs = os.path.join(folder, "in")
        straighten = Request(self, "straighten", ["straighten", inputs, "-o", "out/", "--journal",
                                                  "j.jsonl", "-j2"])
        for bad in (1, 2):
            self.add_variant(straighten, bad)
        detect = Request(self, "detect", ["detect", inputs, "--json", "-j1"])
        found = os.path.join(folder, "found.jsonl")
        with open(found, "wb") as file:
            file.write(detect.whole.out)
        apply = Request(self, "apply", ["apply", found, "-o", "out/", "--journal", "j.jsonl",
                                        "-j1"])
        apply.variants["out/book.tif"] |= straighten.variants["out/book.tif"]
        blocks = Request(self, "blocks", ["blocks", os.path.join(inputs, "a.pgm"), "--json"])
        self.requests = (blocks, straighten, detect, apply)
        # Until options are understood all do the same.
        refused = Run(self, os.path.join(folder, "refused"), ["straighten", "--no-such-option"])
        assert refused.exit == 2
        for request in self.requests[1:]:
            request.first = refused.seen

    def convert(self, source, result):
        """Puts a picture, turned upside down, into another format."""
        subprocess.run([self.vorlane, "straighten", source, "-o", result, "--rotate", "180",
                        "--max-angle", "0"], check=True, capture_output=True)

    def draw(self, folder):
        os.mkdir(folder)
        write_pgm(os.path.join(folder, "a.pgm"), page(2, WIDTH, HEIGHT))
        self.draw_book(folder)
        drawn = os.path.join(self.folder, "drawn.pgm")
        for degrees, name in ((-2, "b.png"), (3, "c.jpg")):
            write_pgm(drawn, page(degrees, WIDTH, HEIGHT))
            self.convert(drawn, os.path.join(folder, name))
        # Not of packed grey: short of memory the TIFF library packs the same pixels by zlib.
        self.convert(os.path.join(folder, "c.jpg"), os.path.join(folder, "d.pdf"))

    def draw_book(self, folder, bad=()):
        write_tiff(os.path.join(folder, "book.tif"),
                   [page(degrees, WIDTH, HEIGHT) for degrees in (1, -3)], bad)

    def add_variant(self, request, bad):
        folder = os.path.join(self.folder, f"without{bad}")
        os.mkdir(folder)
        self.draw_book(folder, (bad,))
        run = Run(self, folder, ["straighten", "book.tif", "-o", "out/"])
        request.variants["out/book.tif"].add(run.files["out/book.tif"])

    def go(self, options):
        chance = random.Random(options.seed)
        places = sys.maxsize if options.all else options.places
        tried = dict.fromkeys(KINDS, 0)
        failures = []
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for request in self.requests:
                faults = list(request.faults(places, chance))
                chance.shuffle(faults)
                print(f"{request.name}: {len(faults)} faults", flush=True)
                results = pool.map(lambda fault, of=request: list(of.complaints(fault)), faults)
                for (mode, kind, n), complaints in zip(faults, results):
                    tried[KINDS[kind]] += 1
                    later = " and all later ones" if mode == FROM_THERE else ""
                    for words in complaints:
                        failures.append(f"{request.name}, {KINDS[kind]} {n}{later}: {words}")
                        print(failures[-1], flush=True)
        told = ", ".join(f"{count} {name}" for name, count in tried.items() if count)
        print(f"seed {options.seed}, faults: {told}; {len(failures)} failures")
        # A sweep that lets nothing fail would pass.
        missing = [name for name, count in tried.items() if name != "mmap" and count == 0]
        if missing:
            print("not tried:", *missing)
        return 1 if failures or missing else 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("vorlane")
    parser.add_argument("library")
    parser.add_argument("--places", type=int, default=12)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="vorlane-faults-") as folder:
        return Sweep(options, folder).go(options)


if __name__ == "__main__":
    sys.exit(main())
