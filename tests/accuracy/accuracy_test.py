"""Checks the measuring itself: that composed pages are what their truth says, and that answers of
known worth are scored as such."""
import os
import sys
import tempfile
import unittest

import cv2
import numpy as np

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "bench"))

from accuracy import compose, conditions, evidence, geometry, planning, report, scanner, score
from accuracy.answer import Answer
from accuracy.board import Board
from accuracy.peers import leptonica_sweep, opencv_outline
from accuracy.scene import Plan, Scene

SEED = 5
LONG_SIDE = 640  # small pages, so that every condition is drawn once within seconds


def turned_rightly(truth, off=0.0):
    highest = max(
        ([truth.paper[1]] if truth.paper else [])
        + ([truth.print] if truth.print is not None else [])
    )
    return Answer(highest + off, "sure", truth.light or None, ["top", "left", "print"])


class EveryCondition(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        usual = planning.LENGTHS
        planning.LENGTHS = (LONG_SIDE,) * len(usual)
        cls.addClassCleanup(setattr, planning, "LENGTHS", usual)
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.truths = [
            compose.compose(cls.folder.name, SEED, number, condition.name)
            for number, condition in enumerate(conditions.TABLE)
        ]
        cls.answerable = [truth for truth in cls.truths if truth.has_answer()]

    def test_only_pages_without_a_page_have_no_answer(self):
        self.assertEqual(
            [truth.condition for truth in self.truths if not truth.has_answer()], ["no-page"]
        )

    def test_the_truth_is_right_and_cuts_nothing_off(self):
        answers = {truth.file: turned_rightly(truth) for truth in self.answerable}
        tally = score.total(score.tallies(self.answerable, answers).values())
        self.assertEqual(tally.verdicts, {"right": len(self.answerable)})
        self.assertGreater(tally.cuts, 30)
        # A curved edge bulges beyond the straight sides that are told here: that one may lose some.
        self.assertLessEqual(tally.losing_sheet, 1)
        self.assertEqual((tally.losing_print, tally.leaving_surround), (0, 0))

    def test_three_tenths_of_a_degree_off_is_near_and_six_wrong(self):
        for off, expected in ((0.3, "near"), (0.6, "wrong")):
            found = {score.verdict(truth, turned_rightly(truth, off)) for truth in self.answerable}
            self.assertEqual(found, {expected})

    def test_who_always_says_upright_is_wrong_where_the_page_is_turned(self):
        for truth in self.truths:
            found = score.verdict(truth, Answer(0.0, "likely"))
            miss = truth.miss(0.0)
            self.assertEqual(found == "wrong", miss is None or miss > 0.5, truth.file)
        self.assertGreater(
            sum(truth.has_answer() and truth.miss(0.0) > 0.5 for truth in self.truths), 20
        )

    def test_doubtful_answers_are_not_counted_as_given(self):
        self.assertEqual(score.verdict(self.answerable[0], Answer(80.0, "doubtful")), "left")

    def test_narrow_cuts_lose_and_wide_cuts_leave(self):
        for truth in self.answerable:
            if truth.condition not in ("clean", "textured", "upright"):
                continue
            corners, centre = np.array(truth.corners), np.mean(truth.corners, axis=0)
            self.assertGreater(
                score.sheet_lost(truth, centre + 0.97 * (corners - centre)), score.LOST_FROM
            )
            self.assertGreater(
                score.surround_left(truth, centre + 1.05 * (corners - centre)), score.SURROUND_FROM
            )
            self.assertGreater(score.sheet_lost(truth, corners + [truth.width, 0]), 0.5)

    def test_a_page_is_the_same_whenever_it_is_composed(self):
        number = [condition.name for condition in conditions.TABLE].index("objects")
        first = os.path.join(self.folder.name, self.truths[number].file)
        with tempfile.TemporaryDirectory() as other:
            again = compose.compose(other, SEED, number, "objects")
            self.assertEqual(again, self.truths[number])
            with open(first, "rb") as one, open(os.path.join(other, again.file), "rb") as two:
                self.assertEqual(one.read(), two.read())

    def test_a_peer_with_more_right_answers_is_named(self):
        ours = {truth.file: Answer() for truth in self.truths}
        peer = {
            truth.file: turned_rightly(truth) if truth.condition == "mount" else Answer()
            for truth in self.truths
        }
        board = Board(self.truths, {"ours": ours, "peer": peer})
        self.assertEqual(board.ahead("peer"), [("mount", 1, 0)])
        names = ("machine", "commit", "ours", "peers", "seed", "scale", "pages")
        page = report.write(dict.fromkeys(names, 0), self.truths, board.results)
        self.assertIn("- **peer**: on a mount turned otherwise (1 right, ours 0).", page)


class OnePage(unittest.TestCase):
    def scene(self, sheet, long_side, **changes):
        plan = Plan(
            sheet=sheet,
            long_side=long_side,
            turned=3.0,
            margins=[0.08] * 4,
            surround="black",
            white=230.0,
            noise=0.0,
            **changes
        )
        return Scene(plan, np.random.default_rng(SEED))

    def test_the_light_begins_at_the_corners_sides(self):
        scene = self.scene("blank", 700)
        picture = scene.put_together()
        for side in range(4):
            start, end = scene.corners[side], scene.corners[(side + 1) % 4]
            outward = np.array([end[1] - start[1], start[0] - end[0]]) / np.linalg.norm(end - start)
            along = start + (end - start) * np.linspace(0.1, 0.9, 200)[:, None]
            distances = np.linspace(-4, 4, 81)
            places = (along[:, None] + outward * distances[:, None]).astype(np.float32)
            profile = cv2.remap(picture, places[..., 0], places[..., 1], cv2.INTER_LINEAR).mean(
                axis=0
            )
            level = (profile[0] + profile[-1]) / 2
            self.assertLess(abs(distances[np.argmax(profile < level)]), 0.3)

    def test_print_and_paper_lie_as_they_are_said_to(self):
        with tempfile.TemporaryDirectory() as folder:
            scene = self.scene("one column", 1500, print_off=1.0)
            path = scanner.scan(scene.put_together(), scene, os.path.join(folder, "page"))
            self.assertAlmostEqual(leptonica_sweep.detect(path).turned, 4.0, delta=0.2)
            self.assertAlmostEqual(opencv_outline.detect(path).turned, 3.0, delta=0.2)

    def test_evidence_is_told_by_the_number_of_sides(self):
        self.assertEqual(evidence.kind(["print", "left", "top", "vote"]), (2, True))
        self.assertEqual(evidence.in_words(2, True), "2 sides and print")
        self.assertEqual(evidence.in_words(0, False), "neither")

    def test_an_area_is_clipped_exactly(self):
        notched = np.array([[0.0, 0], [10, 0], [10, 10], [5, 5], [0, 10]])
        window = np.array([[0.0, 5], [10, 5], [10, 20], [0, 20]])
        self.assertAlmostEqual(geometry.area(geometry.clip(notched, window)), 25.0)


if __name__ == "__main__":
    unittest.main()
