"""What is known of a composed page."""
import json
from dataclasses import asdict, dataclass


@dataclass
class Truth:
    """Degrees are those by which something lies turned clockwise as seen; points are [x, y] in
    pixels, a pixel's centre on whole numbers; `edge`, `light` and `ink` are empty where not to be
    told.
    """

    file: str
    condition: str
    sheet: str
    width: int
    height: int
    onebit: bool
    paper: list  # [least, most] turn of the paper's sides; None where none shows
    print: float  # turn of the print; None where it has none
    corners: list
    edge: list  # the sheet's outline, with what is torn off left out
    light: list  # what may stay in a cut: the outline without gaps
    ink: list  # some points of the print

    def has_answer(self):
        return self.paper is not None or self.print is not None

    def miss(self, turned):
        """Degrees from what the paper's sides or the print call for; None without a page."""
        ranges = [self.paper] if self.paper is not None else []
        ranges += [[self.print, self.print]] if self.print is not None else []
        if not ranges:
            return None
        return min(max(low - turned, turned - high, 0.0) for low, high in ranges)


def write(path, truths):
    with open(path, "w") as out:
        for truth in truths:
            out.write(json.dumps(asdict(truth)) + "\n")


def read(path):
    with open(path) as lines:
        return [Truth(**json.loads(line)) for line in lines]
