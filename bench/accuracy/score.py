"""Holds answers against what is known: the turn, and what the cut loses or leaves."""
from collections import Counter
from dataclasses import dataclass, field

import numpy as np

from . import geometry

RIGHT_WITHIN = 0.2  # degrees of the paper's sides or the print
NEAR_WITHIN = 0.5
LOST_FROM = 0.005  # share of the sheet or of the print
SURROUND_FROM = 0.05  # share of the cut
_INK_TOLERANCE = 1.5  # pixels: strokes end softly
_FEWEST_INK_POINTS = 50


def verdict(truth, answer):
    """right, near, wrong (also: any answer where there is no page) or left (alone)."""
    if not answer.is_given():
        return "left"
    miss = truth.miss(answer.turned)
    if miss is None or miss > NEAR_WITHIN:
        return "wrong"
    return "right" if miss <= RIGHT_WITHIN else "near"


def _grown(corners, by):
    """A polygon with its sides moved outwards by pixels; exact where its corners are right ones."""
    corners = geometry.clockwise(np.asarray(corners, float))
    steps = np.roll(corners, -1, axis=0) - corners
    steps = steps / np.maximum(np.linalg.norm(steps, axis=1, keepdims=True), 1e-9)
    return corners + by * (np.roll(steps, 1, axis=0) - steps)


def _frame(truth):
    return geometry.frame(truth.width, truth.height)


def sheet_lost(truth, corners):
    """Share of what the picture shows of the sheet outside the cut; a pixel is allowed for."""
    seen = geometry.clip(np.array(truth.edge), _frame(truth))
    inside = geometry.clip(seen, _grown(corners, 1.0))
    return 1 - geometry.area(inside) / geometry.area(seen)


def surround_left(truth, corners):
    """Share of the cut's pixels of the picture that show no sheet; the gap of a torn corner is not
    counted, nor what of the cut lies beyond the picture."""
    cut = geometry.clip(_frame(truth), np.asarray(corners, float))
    sheet = geometry.clip(
        geometry.clip(np.array(truth.light), _frame(truth)), np.asarray(corners, float)
    )
    cut_area = geometry.area(cut)
    return 1 - geometry.area(sheet) / cut_area if cut_area > 0 else 0.0


def keeps_whole(truth, corners):
    """Whether nothing of the picture is cut off: the page is turned only."""
    frame = _frame(truth)
    return geometry.area(geometry.clip(frame, _grown(corners, 1.0))) > 0.999 * geometry.area(frame)


def print_lost(truth, corners):
    """Share of the print's points outside the cut."""
    if len(truth.ink) < _FEWEST_INK_POINTS:
        return 0.0
    window = _grown(corners, _INK_TOLERANCE)
    points = np.array(truth.ink)
    inside = np.ones(len(points), bool)
    for start, end in zip(window, np.roll(window, -1, axis=0)):
        inside &= np.cross(end - start, points - start) >= 0
    return 1 - float(inside.mean())


@dataclass
class Tally:
    """Counts of one detector's answers over some pages."""

    pages: int = 0
    verdicts: Counter = field(default_factory=Counter)  # verdict -> pages
    by_confidence: Counter = field(default_factory=Counter)  # (confidence, verdict) -> pages
    cuts: int = 0  # given with corners, on a page
    losing_sheet: int = 0
    losing_print: int = 0
    leaving_surround: int = 0
    kept_whole: int = 0  # of those that leave surround

    def add(self, truth, answer):
        found = verdict(truth, answer)
        self.pages += 1
        self.verdicts[found] += 1
        self.by_confidence[answer.confidence if found != "left" else "left", found] += 1
        if found != "left" and answer.corners is not None and truth.has_answer():
            self._add_cut(truth, answer.corners)

    def _add_cut(self, truth, corners):
        self.cuts += 1
        self.losing_print += print_lost(truth, corners) > LOST_FROM
        if truth.edge:
            self.losing_sheet += sheet_lost(truth, corners) > LOST_FROM
            left = surround_left(truth, corners) > SURROUND_FROM
            self.leaving_surround += left
            self.kept_whole += left and keeps_whole(truth, corners)


def tallies(truths, answers):
    """A Tally by condition, in the truths' order; `answers` by file name."""
    by_condition = {}
    for truth in truths:
        by_condition.setdefault(truth.condition, Tally()).add(truth, answers[truth.file])
    return by_condition


def total(some):
    summed = Tally()
    for tally in some:
        summed.pages += tally.pages
        summed.verdicts.update(tally.verdicts)
        summed.by_confidence.update(tally.by_confidence)
        for name in ("cuts", "losing_sheet", "losing_print", "leaving_surround", "kept_whole"):
            setattr(summed, name, getattr(summed, name) + getattr(tally, name))
    return summed
