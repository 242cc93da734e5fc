"""The command vorlane: `vorlane detect FILES --json`, one record for each page."""
import json
import os
import subprocess

from .answer import Answer

NAME = "vorlane"
_FILES_AT_ONCE = 50


def version(program):
    done = subprocess.run([program, "--version"], capture_output=True, text=True, check=True)
    return done.stdout.strip().splitlines()[0]


def parse(lines):
    """Answers by file name, of first pages; `angle` is the turn to make, clockwise."""
    answers = {}
    for line in lines:
        record = json.loads(line)
        if record.get("page", 1) != 1:
            continue
        angle = record.get("angle")
        answers[os.path.basename(record["file"])] = Answer(
            turned=None if angle is None else -float(angle),
            confidence=record.get("confidence", "refused") if angle is not None else "refused",
            corners=record.get("corners"),
            by=record.get("by") or [],
        )
    return answers


def detect_all(program, folder, names):
    """Answers by file name. A page that it says nothing of stays out: the caller reports it. Its
    exit code tells of withheld pages too, so it is not looked at."""
    answers = {}
    for first in range(0, len(names), _FILES_AT_ONCE):
        part = names[first : first + _FILES_AT_ONCE]
        done = subprocess.run(
            [program, "detect"] + part + ["--json"], cwd=folder, capture_output=True, text=True
        )
        answers.update(parse(line for line in done.stdout.splitlines() if line.strip()))
    return answers
