"""The paper that sheets are printed on, and how ink lies on it."""
import cv2
import numpy as np

from . import fields


def _stains(rng, tone, width, height, count):
    """Rings and patches where something was spilt or stood for long."""
    for _ in range(count):
        centre = (int(rng.uniform(0, width)), int(rng.uniform(0, height)))
        axes = tuple(int(v) for v in rng.uniform(0.03, 0.18, 2) * max(width, height))
        patch = np.zeros((height, width), np.float32)
        cv2.ellipse(patch, centre, axes, float(rng.uniform(0, 180)), 0, 360, 1.0, -1)
        soft = cv2.GaussianBlur(
            cv2.resize(patch, None, fx=0.25, fy=0.25), (0, 0), max(axes) / 40 + 1
        )
        rim = np.clip(4 * soft * (1 - soft), 0, 1)
        mark = cv2.resize(0.35 * soft + 0.65 * rim, (width, height))
        tone *= 1 - float(rng.uniform(0.05, 0.3)) * mark


def _foxing(rng, tone, width, height, count):
    spots = np.zeros((height, width), np.float32)
    for _ in range(count):
        centre = (int(rng.uniform(0, width)), int(rng.uniform(0, height)))
        cv2.circle(spots, centre, int(rng.integers(2, max(4, max(width, height) // 150))), 1.0, -1)
    tone *= 1 - float(rng.uniform(0.1, 0.3)) * cv2.GaussianBlur(spots, (0, 0), 2.5)


def paper_tone(rng, width, height, aged):
    """The paper's lightness by pixel, about 1: fibre, unevenness; with age stains, dark edges."""
    tone = (
        1
        + 0.008 * fields.cloud(rng, width, height, 7)
        + 0.008 * fields.grain(rng, width, height, 2)
    )
    if aged:
        tone += 0.02 * fields.cloud(rng, width, height, 4)
        for side in range(4):
            width_of_browning = float(rng.uniform(0.01, 0.05)) * max(width, height)
            depth = float(rng.uniform(0.02, 0.22))
            tone *= 1 - depth * np.exp(
                -fields.side_distance(width, height, side) / width_of_browning
            )
        _stains(rng, tone, width, height, int(rng.integers(1, 5)))
        _foxing(rng, tone, width, height, int(rng.integers(10, 80)))
        if rng.random() < 0.5:  # creases where it was folded
            at = int(rng.uniform(0.4, 0.6) * height)
            tone[at - 1 : at + 2] *= float(rng.uniform(0.75, 0.92))
    return tone


def _shine_through(rng, ink):
    """The other side's print, mirrored, pale and soft."""
    soft = cv2.GaussianBlur(ink[:, ::-1], (0, 0), 1.6)
    return float(rng.uniform(0.03, 0.12)) * np.roll(soft, int(rng.integers(-20, 20)), axis=0)


def printed(rng, sheet, white, aged, ink_level=None):
    """The sheet's grey picture, 0..255 before the scanner's light: `white` is the paper's level."""
    height, width = sheet.ink.shape
    light = white * sheet.tone * paper_tone(rng, width, height, aged)
    if aged and rng.random() < 0.6:
        light *= 1 - _shine_through(rng, sheet.ink)
    if sheet.pictured is not None:
        light = light * (1 - sheet.pictured) + sheet.picture * (white / 245) * sheet.pictured
    dark = float(rng.uniform(12, 55)) if ink_level is None else ink_level
    strength = np.clip(
        0.94
        + 0.06 * fields.cloud(rng, width, height, 9)
        + (0.10 if aged else 0.03) * fields.grain(rng, width, height, 2),
        0.3,
        1,
    )
    cover = cv2.GaussianBlur(sheet.ink, (0, 0), 0.5) * strength
    return np.clip(light * (1 - cover) + np.minimum(dark, light) * cover, 0, 255).astype(np.float32)
