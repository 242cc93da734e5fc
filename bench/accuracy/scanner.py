"""From the scene's light to the file that a scanner leaves."""
import cv2
import numpy as np
from PIL import Image

from . import fields


def _tinted(picture, scene):
    """Three planes: paper a little yellow, more so when old; the surround of a tint of its own."""
    rng = scene.rng
    yellow = rng.uniform(0.68, 0.88) if scene.plan.aged else rng.uniform(0.88, 1)
    paper = np.float32([yellow, rng.uniform(0.94, 1), 1])
    behind = np.float32(rng.uniform(0.9, 1.05, 3))
    share = scene.cover[..., None]
    return picture[..., None] * (paper * share + behind * (1 - share))


def _exposed(picture, scene):
    rng = scene.rng
    picture = cv2.GaussianBlur(picture.astype(np.float32), (0, 0), float(rng.uniform(0.35, 0.75)))
    noise = scene.plan.noise * fields.white_noise(rng, scene.width, scene.height)
    if scene.plan.colour:
        picture = _tinted(picture, scene)
        noise = noise[..., None]
    return np.clip(picture + noise, 0, 255).astype(np.uint8)


def _bits(levels, share_of_otsu):
    grey = levels if levels.ndim == 2 else cv2.cvtColor(levels, cv2.COLOR_BGR2GRAY)
    otsu, _ = cv2.threshold(grey, 0, 255, cv2.THRESH_OTSU)
    return grey > np.clip(otsu * share_of_otsu, 20, 200)


def scan(picture, scene, path):
    """Writes the page; returns the file's name with the ending that its kind takes."""
    levels = _exposed(picture, scene)
    plan = scene.plan
    if plan.bit_threshold is not None:
        name = path + ".tif"
        image = Image.fromarray((_bits(levels, plan.bit_threshold) * 255).astype(np.uint8)).convert(
            "1", dither=0
        )
        image.save(name, compression="group4")
    elif plan.quality is not None:
        name = path + ".jpg"
        cv2.imwrite(name, levels, [cv2.IMWRITE_JPEG_QUALITY, plan.quality])
    else:
        name = path + ".png"
        cv2.imwrite(name, levels, [cv2.IMWRITE_PNG_COMPRESSION, 1])
    return name
