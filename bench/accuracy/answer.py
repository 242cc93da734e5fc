"""What a detector says of one page."""
from dataclasses import dataclass, field

BELIEVED = ("sure", "likely")


@dataclass
class Answer:
    """`turned`: degrees clockwise as seen that it takes the page to lie turned by, None where it
    gives no answer. `corners`: of its cut, in the picture. `by`: the evidence it names."""

    turned: float = None
    confidence: str = "refused"
    corners: list = None
    by: list = field(default_factory=list)

    def is_given(self):
        return self.turned is not None and self.confidence in BELIEVED


def folded(degrees):
    """The same direction of a rectangle's sides, within 45 degrees of upright."""
    return (degrees + 45) % 90 - 45
