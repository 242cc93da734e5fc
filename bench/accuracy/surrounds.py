"""What lies round the sheet: the lid, a cloth, a board; float32 levels 0..255, one plane."""
import numpy as np

from . import fields


def flat(level):
    def make(rng, width, height):
        return (
            level
            + 2.0 * fields.cloud(rng, width, height, 5)
            + fields.white_noise(rng, width, height)
        )

    return make


def cloth(rng, width, height):
    """A dark weave: threads both ways, unevenly lit."""
    thread = float(rng.uniform(3.5, 8))
    across = np.sin(np.arange(width, dtype=np.float32) * (2 * np.pi / thread))[None, :]
    down = np.sin(np.arange(height, dtype=np.float32) * (2 * np.pi / thread))[:, None]
    weave = 3 * across * down + 4 * fields.grain(rng, width, height, thread)
    return float(rng.uniform(22, 50)) * (1 + 0.15 * fields.cloud(rng, width, height, 4)) + weave


def felt(rng, width, height):
    fibres = 5 * fields.grain(rng, width, height, 9, 2) + 5 * fields.grain(rng, width, height, 2, 7)
    return float(rng.uniform(25, 55)) + fibres


def wood(rng, width, height):
    """A stained table top, its grain along one direction."""
    lengthwise = (
        fields.grain(rng, width, height, 160, 4)
        if rng.random() < 0.5
        else fields.grain(rng, width, height, 4, 160)
    )
    return float(rng.uniform(40, 75)) + 9 * lengthwise + 3 * fields.cloud(rng, width, height, 12)


def card(rng, width, height):
    """Dark grey board with fibres."""
    return (
        float(rng.uniform(45, 70))
        + 3 * fields.grain(rng, width, height, 3)
        + 2 * fields.white_noise(rng, width, height)
        + 2 * fields.cloud(rng, width, height, 6)
    )


DARK = {
    "black": flat(4.0),
    "open lid": flat(12.0),
    "dark grey": flat(28.0),
    "cloth": cloth,
    "felt": felt,
    "wood": wood,
    "card": card,
}
TEXTURED = {name: DARK[name] for name in ("cloth", "felt", "wood", "card")}
