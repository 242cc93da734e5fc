"""What was found on a page, and what can go wrong."""

from __future__ import annotations

import dataclasses
import enum
from typing import NamedTuple, Optional, Tuple

from . import _core


class Status(enum.IntEnum):
    """Why a call failed; str(error) says it in words."""

    BAD_ARGUMENT = _core.BAD_ARGUMENT
    BAD_IMAGE = _core.BAD_IMAGE
    BAD_OPTION = _core.BAD_OPTION
    BAD_FINDING = _core.BAD_FINDING
    TOO_LARGE = _core.TOO_LARGE
    TURN_TOO_LARGE = _core.TURN_TOO_LARGE
    RESULT_TOO_LARGE = _core.RESULT_TOO_LARGE
    NOT_CONFIDENT = _core.NOT_CONFIDENT
    NO_MEMORY = _core.NO_MEMORY
    INTERNAL = _core.INTERNAL


class Confidence(enum.IntEnum):
    """How far an answer may be trusted, in the order of trust."""

    REFUSED = _core.REFUSED  # nothing speaks: there is no answer
    DOUBTFUL = _core.DOUBTFUL  # an answer that nobody should act on unseen
    LIKELY = _core.LIKELY
    SURE = _core.SURE


class Verdict(enum.IntEnum):
    """What became of one piece of evidence."""

    NOT_LOOKED_AT = _core.NOT_LOOKED_AT
    UNSEEN = _core.UNSEEN  # looked for and not there
    BELIEVED = _core.BELIEVED  # speaks for the turn that was given
    DISAGREES = _core.DISAGREES  # speaks for another turn
    TOO_WEAK = _core.TOO_WEAK
    FRAME = _core.FRAME  # it is the picture's own frame, not the page's side


class Point(NamedTuple):
    """A place in the picture, in pixels."""

    x: float
    y: float


class Evidence(NamedTuple):
    """One piece of evidence: a side of the page, the print, a form's bar or the borders' vote."""

    name: str
    turn: float  # the turn that it speaks for, in degrees; 0 where unseen
    strength: float  # 0..1
    verdict: Verdict


class Reason(NamedTuple):
    """Why an answer is what it is."""

    name: str  # for programs; stays as it is from version to version
    value: float  # in `unit`; 0 where it has none
    unit: str
    text: str  # for people


@dataclasses.dataclass(frozen=True)
class Finding:
    """What was found on a page.

    Findings can be compared, pickled and kept. dataclasses.replace makes an edited one, and
    dataclasses.asdict what json.dump takes; vorlane.decide makes a finding of a person's decision.
    Apply reads the page's size, both confidences, the turn and the corners.
    """

    page_width: int  # of the page that it was found on, in pixels
    page_height: int
    turn_confidence: Confidence  # may the page be turned
    cut_confidence: Confidence  # may it be cut out; if not, it is turned and kept whole
    turn: float  # the turn that sets the page upright, in degrees
    # Those of the cut: upper left of the upright page, upper right, lower right, lower left. They
    # may lie outside the picture.
    corners: Tuple[Point, Point, Point, Point]
    by: Tuple[str, ...] = ()  # names of the evidence that agreed on the turn
    expected: float = 0.0  # share of right answers among evidence of this kind, 0..1
    evidence: Tuple[Evidence, ...] = ()
    reasons: Tuple[Reason, ...] = ()  # the most telling first

    @classmethod
    def _of(cls, fields: _core.FindingFields) -> Finding:
        upper_left, upper_right, lower_right, lower_left = (Point(*at) for at in fields["corners"])
        return cls(
            fields["page_width"],
            fields["page_height"],
            Confidence(fields["turn_confidence"]),
            Confidence(fields["cut_confidence"]),
            fields["turn"],
            (upper_left, upper_right, lower_right, lower_left),
            fields["by"],
            fields["expected"],
            tuple(
                Evidence(name, turn, strength, Verdict(verdict))
                for name, turn, strength, verdict in fields["evidence"]
            ),
            tuple(Reason(*reason) for reason in fields["reasons"]),
        )

    @property
    def _placement(self) -> _core.Placement:
        return (
            self.page_width,
            self.page_height,
            self.turn_confidence,
            self.cut_confidence,
            self.turn,
            self.corners,
        )


class Error(Exception):
    """A page, an option or a finding that cannot be worked on; `code` says which, str() says why."""

    code: Status

    def __init__(self, code: int) -> None:
        super().__init__(code)
        self.code = Status(code)

    def __str__(self) -> str:
        return _core.status_text(self.code)


class NotConfident(Error):
    """The finding is less sure than asked for, so that the page is better left as it is.

    `finding` says why.
    """

    finding: Finding

    def __init__(self, finding: Finding) -> None:
        super().__init__(Status.NOT_CONFIDENT)
        self.args = (finding,)
        self.finding = finding

    def __str__(self) -> str:
        words = "; ".join(reason.text for reason in self.finding.reasons)
        return f"{super().__str__()}: {words}" if words else super().__str__()
