"""The edge of a sheet as a polygon in the sheet's own pixels, clockwise from its upper left corner.

A pixel's centre has whole coordinates, so a sheet of w pixels reaches from -0.5 to w - 0.5."""
from dataclasses import dataclass

import numpy as np

from . import geometry


@dataclass
class Damage:
    """What happened to a corner (0 upper left, clockwise): `torn`, `folded`, `cut` or `rounded`,
    and how far it reaches along the two sides, in pixels."""

    corner: int
    kind: str
    along_previous: float
    along_next: float


def fold_line(corners, damage):
    """The two points between which a damaged corner is missing, the previous side's first."""
    corner = corners[damage.corner]
    previous, following = corners[damage.corner - 1], corners[(damage.corner + 1) % 4]
    back = (previous - corner) / np.linalg.norm(previous - corner)
    forth = (following - corner) / np.linalg.norm(following - corner)
    return corner + back * damage.along_previous, corner + forth * damage.along_next


def _corner_path(rng, corners, damage):
    start, end = fold_line(corners, damage)
    if damage.kind in ("folded", "cut"):
        return np.array([start, end])
    corner = corners[damage.corner]
    share = np.linspace(0, np.pi / 2, 15)[:, None]
    if damage.kind == "rounded":  # an ellipse's quarter, bulging to the corner
        return (
            corner + (start - corner) * (1 - np.sin(share)) + (end - corner) * (1 - np.cos(share))
        )
    ragged = 1 + 0.12 * np.cumsum(rng.normal(0, 1, (15, 1)), axis=0)
    ragged = np.clip(ragged, 0.5, 1.3)
    ragged[0] = ragged[-1] = 1
    return (
        corner + (start - corner) * np.cos(share) * ragged + (end - corner) * np.sin(share) * ragged
    )


def _side(start, end, wave):
    """Points from start to end, both left out; `wave` (height, periods, phase) bends them."""
    share = np.linspace(0, 1, 82)[1:-1, None]
    points = start + (end - start) * share
    if wave is None:
        return points
    height, periods, phase = wave
    normal = np.array([end[1] - start[1], start[0] - end[0]]) / np.linalg.norm(end - start)
    ends_fixed = np.sin(np.pi * share)
    return points + normal * height * ends_fixed * np.sin(2 * np.pi * periods * share + phase)


def of_sheet(rng, width, height, damages, waves):
    """The whole polygon; `waves` has one wave or None for each side, upper side first."""
    corners = geometry.frame(width, height)
    by_corner = {damage.corner: damage for damage in damages}
    paths = [
        _corner_path(rng, corners, by_corner[index])
        if index in by_corner
        else corners[index : index + 1]
        for index in range(4)
    ]
    pieces = []
    for index in range(4):
        pieces.append(paths[index])
        pieces.append(_side(paths[index][-1], paths[(index + 1) % 4][0], waves[index]))
    return np.vstack(pieces)
