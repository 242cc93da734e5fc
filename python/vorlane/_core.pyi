from typing import Any, Optional, Sequence, Tuple, TypedDict

import numpy as np
import numpy.typing as npt

BAD_ARGUMENT: int
BAD_IMAGE: int
BAD_OPTION: int
BAD_FINDING: int
TOO_LARGE: int
TURN_TOO_LARGE: int
RESULT_TOO_LARGE: int
NOT_CONFIDENT: int
NO_MEMORY: int
INTERNAL: int
BIT_LIGHT: int
BIT_DARK: int
GREY8: int
BGR24: int
RGB24: int
BGRX32: int
RGBX32: int
REFUSED: int
DOUBTFUL: int
LIKELY: int
SURE: int
NOT_LOOKED_AT: int
UNSEEN: int
BELIEVED: int
DISAGREES: int
TOO_WEAK: int
FRAME: int
BY_AUTO: int
BY_PAPER: int
BY_PRINT: int
BY_BAR: int
CROP_PAPER: int
CROP_CONTENT: int
CROP_NONE: int
NEAREST: int
BILINEAR: int
BICUBIC: int
version: str

# Page width and height, both confidences, the turn and the corners of a finding.
Placement = Tuple[int, int, int, int, float, Sequence[Tuple[float, float]]]

class FindingFields(TypedDict):
    page_width: int
    page_height: int
    turn_confidence: int
    cut_confidence: int
    turn: float
    corners: Tuple[Tuple[float, float], ...]
    by: Tuple[str, ...]
    expected: float
    evidence: Tuple[Tuple[str, float, float, int], ...]
    reasons: Tuple[Tuple[str, float, str, str], ...]

class DetectOptions:
    by: int
    crop: int
    min_confidence: int
    is_form: int
    has_no_mount: int
    max_turn: float
    min_turn: float
    margin: float

class ApplyOptions:
    interpolation: int
    quarter_turns: int
    keep_whole: int
    min_confidence: int
    threads: int
    fill: Sequence[int]
    margin: float
    min_turn: float
    max_turn: float
    max_growth: float

def detect(
    rows: npt.NDArray[np.uint8], format: int, width: int, options: DetectOptions
) -> FindingFields: ...
def result_size(
    rows: npt.NDArray[np.uint8],
    format: int,
    width: int,
    placement: Placement,
    options: ApplyOptions,
) -> Tuple[int, int]: ...
def apply(
    rows: npt.NDArray[np.uint8],
    format: int,
    width: int,
    placement: Placement,
    options: ApplyOptions,
) -> Tuple[npt.NDArray[np.uint8], int]: ...
def decide(
    width: int, height: int, turn: float, corners: Optional[Sequence[Tuple[float, float]]]
) -> FindingFields: ...
def blocks(
    rows: npt.NDArray[np.uint8],
    threshold: int,
    min_run: int,
    max_run: int,
    join_gap: int,
    left: int,
    top: int,
    right: int,
    bottom: int,
) -> Tuple[npt.NDArray[np.int32], npt.NDArray[np.uint16]]: ...
def status_text(status: int) -> str: ...
