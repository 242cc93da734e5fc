"""The usual plan for a page, and changes to plans that the conditions consist of."""
import numpy as np

from . import sheets, surrounds
from .outline import Damage
from .scene import Plan

LENGTHS = (1000, 1300, 1600, 2000, 2400)  # of the longer side, pixels: A4 at some 85 to 205 dpi
LENGTH_SHARES = (0.24, 0.28, 0.28, 0.13, 0.07)
NORMAL_TURN = 2.0  # deviation, degrees
LARGEST_TURN = 10.0

_USUAL = {**sheets.TEXT, **sheets.FORMS, **sheets.SMALL, **sheets.PICTURES, **sheets.SPARSE}


def usual_plan(rng):
    turned = (
        rng.uniform(-LARGEST_TURN, LARGEST_TURN)
        if rng.random() < 0.5
        else rng.normal(0, NORMAL_TURN)
    )
    plan = Plan(
        sheet=str(rng.choice(list(_USUAL))),
        long_side=int(rng.choice(LENGTHS, p=LENGTH_SHARES)),
        turned=float(np.clip(turned, -LARGEST_TURN, LARGEST_TURN)),
        margins=rng.uniform(0.02, 0.15, 4).tolist(),
        surround=str(rng.choice(list(surrounds.DARK))),
        white=float(rng.uniform(205, 248)),
        noise=float(rng.uniform(0.3, 3)),
        aged=bool(rng.random() < 0.2),
        colour=bool(rng.random() < 0.35),
        print_off=float(np.clip(rng.normal(0, 0.06), -0.15, 0.15)),
        specks=int(rng.integers(0, 12)),
    )
    if rng.random() < 0.4:
        plan.waves = slight_waves(rng)
    if rng.random() < 0.5:
        plan.quality = int(rng.integers(80, 96))
    return plan


def slight_waves(rng):
    return [
        (float(rng.uniform(0.2, 1.0)), float(rng.uniform(0.5, 3)), float(rng.uniform(0, 6)))
        for _ in range(4)
    ]


def of_kind(kinds):
    def change(plan, rng):
        plan.sheet = str(rng.choice(list(kinds)))

    return change


def with_surround(names):
    def change(plan, rng):
        plan.surround = str(rng.choice(list(names)))

    return change


def steep(plan, rng):
    plan.turned = float(rng.choice([-1, 1]) * rng.uniform(12, 40))


def hardly_turned(plan, rng):
    plan.turned = float(rng.choice([0.0, rng.uniform(-0.3, 0.3)]))


def normally_turned(plan, rng):
    plan.turned = float(rng.normal(0, 3))


def running_off(least, most):
    """Beyond `least` to `most` sides of the frame, by up to 12 % of the sheet."""

    def change(plan, rng):
        for side in rng.choice(4, int(rng.integers(least, most + 1)), replace=False):
            plan.margins[side] = -float(rng.uniform(0.01, 0.12))

    return change


def wide_margins(low, high):
    def change(plan, rng):
        plan.margins = rng.uniform(low, high, 4).tolist()

    return change


def room_at_one_side(plan, rng):
    plan.margins[int(rng.choice([0, 2]))] = float(rng.uniform(0.15, 0.42))


def _damaged(kinds, least, most, low, high):
    def change(plan, rng):
        for corner in rng.choice(4, int(rng.integers(least, most + 1)), replace=False):
            reach = rng.uniform(low, high) * plan.long_side
            plan.damages.append(
                Damage(
                    int(corner),
                    str(rng.choice(kinds)),
                    reach * rng.uniform(0.7, 1.3),
                    reach * rng.uniform(0.7, 1.3),
                )
            )

    return change


torn = _damaged(["torn", "folded"], 1, 3, 0.03, 0.13)
rounded = _damaged(["rounded"], 4, 4, 0.012, 0.03)


def dark_page(plan, rng):
    plan.white = float(rng.uniform(75, 135))
    plan.surround = str(rng.choice(["black", "open lid", "cloth"]))
    plan.aged = bool(rng.random() < 0.6)


def old_paper(plan, rng):
    plan.white, plan.aged = float(rng.uniform(150, 215)), True
    plan.colour = bool(rng.random() < 0.7)
    if rng.random() < 0.5:
        rounded(plan, rng)


def sheared(plan, rng):
    plan.shear = float(rng.uniform(-0.5, 0.5))


def in_perspective(plan, rng):
    plan.shifts = rng.uniform(-0.03, 0.03, (4, 2))


def print_off_paper(plan, rng):
    plan.print_off = float(rng.choice([-1, 1]) * rng.uniform(0.4, 1.5))


def curved(plan, rng):
    plan.waves = [
        (float(rng.uniform(2, 12)), float(rng.uniform(0.4, 1.2)), float(rng.uniform(0, 6)))
        for _ in range(4)
    ]


def coarse(plan, rng):
    plan.long_side = int(rng.uniform(420, 800))


def one_bit(share=1.0):
    def change(plan, rng):
        if rng.random() < share:
            plan.bit_threshold = float(rng.uniform(0.6, 1.35))

    return change


def hard_jpeg(plan, rng):
    plan.quality = int(rng.integers(6, 30))


def dusty(plan, rng):
    plan.specks = int(rng.integers(40, 400))


def clean_paper(plan, rng):
    plan.aged = False


def clean_glass(plan, rng):
    plan.specks = 0
