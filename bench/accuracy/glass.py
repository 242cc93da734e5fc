"""What glass, lamp and sensor add to the picture: each takes the picture and the scene and returns
the picture changed."""
import cv2
import numpy as np

from . import fields


def _speck(picture, scene, largest):
    rng = scene.rng
    x, y = int(rng.uniform(0, scene.width)), int(rng.uniform(0, scene.height))
    if scene.cover[y, x] > 0.5:
        return
    radius = float(rng.uniform(0.6, largest))
    axes = (max(1, int(radius)), max(1, int(radius * rng.uniform(0.4, 1))))
    cv2.ellipse(
        picture,
        (x, y),
        axes,
        float(rng.uniform(0, 180)),
        0,
        360,
        float(rng.uniform(80, 235)),
        -1,
        cv2.LINE_AA,
    )


def specks(picture, scene):
    for _ in range(scene.plan.specks):
        _speck(picture, scene, 4.0 if scene.plan.specks > 30 else 2.0)
    return picture


def hairs(picture, scene):
    rng = scene.rng
    for _ in range(int(rng.integers(2, 9))):
        directions = rng.uniform(0, 6.28) + np.cumsum(rng.normal(0, 0.3, 14))
        steps = np.stack([np.cos(directions), np.sin(directions)], axis=1) * rng.uniform(5, 12)
        points = rng.uniform(0, 1, 2) * [scene.width, scene.height] + np.cumsum(steps, axis=0)
        light = float(rng.uniform(90, 200)) if rng.random() < 0.8 else float(rng.uniform(10, 60))
        cv2.polylines(picture, [points.astype(np.int32)], False, light, 1, cv2.LINE_AA)
    return picture


def _streak(picture, x, width, level, strength):
    band = picture[:, x : x + width]
    picture[:, x : x + width] = band * (1 - strength) + level * strength


def streaks(picture, scene):
    """Lines that dirt under the sensor draws the whole way down, light or dark."""
    rng = scene.rng
    for _ in range(int(rng.integers(1, 5))):
        level = float(rng.uniform(150, 255) if rng.random() < 0.6 else rng.uniform(0, 140))
        _streak(
            picture,
            int(rng.uniform(0, scene.width - 4)),
            int(rng.integers(1, 4)),
            level,
            float(rng.uniform(0.4, 1)),
        )
    return picture


def streak_pair(picture, scene):
    """One light streak close to each upright side of the frame: they pass for a page's sides."""
    rng = scene.rng
    for share in (rng.uniform(0.005, 0.05), 1 - rng.uniform(0.005, 0.05)):
        x = int(share * (scene.width - 6))
        _streak(picture, x, int(rng.integers(2, 5)), float(rng.uniform(150, 250)), 1.0)
    return picture


def glow(picture, scene):
    """Daylight under the lid, along one side, on what the sheet leaves free."""
    rng = scene.rng
    reach = float(rng.uniform(0.02, 0.12)) * max(scene.width, scene.height)
    light = float(rng.uniform(50, 150)) * np.exp(
        -fields.side_distance(scene.width, scene.height, int(rng.integers(0, 4))) / reach
    )
    light *= 1 + 0.2 * fields.cloud(rng, scene.width, scene.height, 5)
    return picture + light * (1 - scene.cover)


def halo(picture, scene):
    """Light lines at or close to the frame, as sheet-fed scanners leave them."""
    rng = scene.rng
    for side in rng.choice(4, int(rng.integers(1, 3)), replace=False):
        gap = int(rng.choice([0, 0, rng.integers(1, 12)]))
        distance = fields.side_distance(scene.width, scene.height, int(side))
        band = (distance >= gap) & (distance < gap + int(rng.integers(2, 6)))
        picture[band] = float(rng.uniform(130, 255))
    return picture


def shadow_across(picture, scene):
    """The light falls off over the page, and something throws a soft shadow on it."""
    rng = scene.rng
    least = float(rng.uniform(0.35, 0.65))
    picture = picture * (
        least + (1 - least) * fields.slope(scene.width, scene.height, float(rng.uniform(0, 360)))
    )
    if rng.random() < 0.6:
        along = fields.slope(scene.width, scene.height, float(rng.uniform(0, 180)))
        centre, half_width = float(rng.uniform(0.15, 0.85)), float(rng.uniform(0.04, 0.15))
        picture = picture * (
            1 - float(rng.uniform(0.25, 0.5)) * np.exp(-(((along - centre) / half_width) ** 2))
        )
    return picture
