import dataclasses
import inspect
import json
import mmap
import os
import pickle
import subprocess
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import vorlane
from scans import draw_colour_scan, draw_scan, read_pnm, write_pnm

GREY = draw_scan()
COLOUR = draw_colour_scan()
DARK = GREY < 128


@pytest.mark.parametrize(
    "kind, scan, rows, options",
    [
        (4, np.packbits(DARK, axis=1), None, {"width": 700, "set_is_dark": True}),
        (4, DARK, np.packbits(DARK, axis=1), {"set_is_dark": True}),
        (5, GREY, None, {}),
        (6, COLOUR, None, {}),
    ],
    ids=["packed", "bool", "grey", "colour"],
)
def test_makes_the_bytes_that_the_host_in_c_makes(kind, scan, rows, options, tmp_path):
    before, after = tmp_path / "scan.pnm", tmp_path / ("page.pbm" if kind == 4 else "page.pnm")
    write_pnm(before, scan if rows is None else rows, kind, 700)
    said = subprocess.run(
        [os.environ["VORLANE_DETECT_PAGE"], before, after], check=True, capture_output=True, text=True
    ).stdout
    page, finding = vorlane.straighten(scan, **options)
    assert f"turn {finding.turn:.2f} degrees: {finding.turn_confidence.name.lower()}" in said
    width, height = vorlane.result_size(scan, finding, width=options.get("width"))
    assert f"a page of {width} x {height} pixels" in said
    made = np.packbits(page, axis=1) if page.dtype == bool else page
    np.testing.assert_array_equal(made, read_pnm(after))
    assert page.dtype == scan.dtype and abs(finding.turn + 3) < 0.1


def spread_out(scan):
    """The scan with its rows so far apart that the engine does not count that far."""
    distance = 2**22
    memory = mmap.mmap(-1, len(scan) * distance)
    memory.madvise(mmap.MADV_NOHUGEPAGE)  # so that rows alone take memory
    strides = (distance, *scan.strides[1:])
    rows = np.lib.stride_tricks.as_strided(np.frombuffer(memory, np.uint8), scan.shape, strides)
    rows[:] = scan
    return rows


GREY_VIEWS = {
    "part": lambda scan: np.concatenate([scan, scan, scan], 1)[:, 700:1400],
    "bottom first": lambda scan: scan[::-1].copy()[::-1],
    "right first": lambda scan: scan[:, ::-1].copy()[:, ::-1],
    "every other": lambda scan: scan.repeat(2, 0).repeat(2, 1)[::2, ::2],
    "columns first": np.asfortranarray,
    "far rows": spread_out,
    "read-only": lambda scan: np.frombuffer(scan.tobytes(), np.uint8).reshape(scan.shape),
}


@pytest.mark.parametrize("view", GREY_VIEWS.values(), ids=GREY_VIEWS)
@pytest.mark.parametrize("scan", [GREY, COLOUR, DARK], ids=["grey", "colour", "bool"])
def test_reads_an_array_however_it_lies(scan, view):
    lying = view(scan.view(np.uint8)).view(scan.dtype)
    np.testing.assert_array_equal(lying, scan)
    finding = vorlane.detect(scan)
    assert vorlane.detect(lying) == finding
    np.testing.assert_array_equal(vorlane.apply(lying, finding), vorlane.apply(scan, finding))


def test_keeps_the_channels_of_colour_in_their_places():
    finding = vorlane.detect(COLOUR)
    fill = (1, 2, 3)
    page = vorlane.apply(COLOUR, finding, fill=fill, margin=120)
    assert tuple(page[0, 0]) == fill
    swapped = COLOUR[..., ::-1]
    np.testing.assert_array_equal(
        vorlane.apply(swapped.copy(), finding, fill=fill, margin=120, order="bgr"), page[..., ::-1]
    )
    np.testing.assert_array_equal(  # not copied, but named blue first
        vorlane.apply(swapped, finding, fill=fill[::-1], margin=120), page[..., ::-1]
    )
    with_alpha = np.dstack([COLOUR, np.full(GREY.shape, 7, np.uint8)])
    opaque = np.dstack([page, np.full(page.shape[:2], 255, np.uint8)])
    np.testing.assert_array_equal(
        vorlane.apply(with_alpha, finding, fill=fill, margin=120), opaque
    )


@pytest.mark.parametrize(
    "page, options, error, words",
    [
        (GREY.astype(np.uint16), {}, TypeError, "uint8 or bool; this array is uint16"),
        (GREY.astype(float), {}, TypeError, "float64"),
        ([[1, 2], [3, 4]], {}, TypeError, "int64"),
        (GREY[0], {}, ValueError, r"H x W.*\(700,\)"),
        (COLOUR[..., :2], {}, ValueError, r"\(900, 700, 2\)"),
        (np.zeros((2, 3, 4, 3), np.uint8), {}, ValueError, "H x W"),
        (DARK, {"width": 700}, ValueError, "no width of its own"),
        (GREY, {"width": 5601}, ValueError, "packed page of 5601 pixels is H x 701"),
        (GREY, {"order": "gbr"}, ValueError, "order"),
        (GREY, {"by": "magic"}, ValueError, "by is one of auto, paper, print, bar"),
        (GREY, {"max_turn": "a lot"}, TypeError, ""),
        (GREY, {"max_turn": float("nan")}, vorlane.Status.BAD_OPTION, "an option is out of its range"),
        (GREY, {"margin": 1e9}, vorlane.Status.BAD_OPTION, "an option is out of its range"),
        (GREY[:0], {}, vorlane.Status.BAD_IMAGE, "the image has no size"),
        (COLOUR[:, :0], {}, vorlane.Status.BAD_IMAGE, "the image has no size"),
        (DARK[:, :0], {}, vorlane.Status.BAD_IMAGE, "the image has no size"),
        (GREY, {"width": 0}, vorlane.Status.BAD_IMAGE, "the image has no size"),
        (np.broadcast_to(GREY[:1, :1], (1, 50000)), {}, vorlane.Status.TOO_LARGE, "46,340"),
        (np.broadcast_to(GREY[:1, :1], (2**40, 2**20)), {}, vorlane.Status.TOO_LARGE, "46,340"),
    ],
)
def test_says_what_is_wrong(page, options, error, words):
    if isinstance(error, vorlane.Status):
        with pytest.raises(vorlane.Error, match=words) as raised:
            vorlane.detect(page, **options)
        assert raised.value.code == error
    else:
        with pytest.raises(error, match=words):
            vorlane.detect(page, **options)


def test_leaves_a_doubtful_page_to_the_caller():
    blank = np.full((300, 200), 200, np.uint8)
    with pytest.raises(vorlane.NotConfident, match="less sure than the options ask for: ") as doubt:
        vorlane.straighten(blank)
    assert doubt.value.code == vorlane.Status.NOT_CONFIDENT
    finding = doubt.value.finding
    assert finding == vorlane.detect(blank) and finding.turn_confidence < vorlane.Confidence.LIKELY
    assert finding.reasons[0].text in str(doubt.value)
    assert pickle.loads(pickle.dumps(doubt.value)).finding == finding
    with pytest.raises(vorlane.Error, match="of another page") as other:
        vorlane.apply(GREY, dataclasses.replace(finding, turn_confidence=vorlane.Confidence.SURE))
    assert pickle.loads(pickle.dumps(other.value)).code == vorlane.Status.BAD_FINDING


def test_findings_are_kept_edited_and_decided():
    finding = vorlane.detect(GREY)
    assert pickle.loads(pickle.dumps(finding)) == finding
    assert json.loads(json.dumps(dataclasses.asdict(finding)))["turn"] == finding.turn
    believed = [piece for piece in finding.evidence if piece.verdict == vorlane.Verdict.BELIEVED]
    assert {piece.name for piece in believed} == set(finding.by)
    decided = vorlane.decide(GREY, finding.turn, finding.corners)
    edited = dataclasses.replace(
        decided, cut_confidence=finding.cut_confidence, turn=decided.turn + 0.0
    )
    np.testing.assert_array_equal(vorlane.apply(GREY, edited), vorlane.apply(GREY, finding))
    upright = vorlane.decide(GREY, 0.0)
    np.testing.assert_array_equal(
        vorlane.apply(GREY, upright, quarter_turns=1), np.rot90(GREY, -1)
    )
    with pytest.raises(vorlane.Error, match="finding"):
        vorlane.decide(GREY, 181.0)


@pytest.mark.parametrize(
    "call, record", [("detect", "DetectOptions"), ("apply", "ApplyOptions"), ("straighten", None)]
)
def test_defaults_are_the_engines(call, record):
    records = [record] if record else ["ApplyOptions", "DetectOptions"]
    made = [getattr(vorlane._core, name)() for name in records]
    codes = {"by": "BY_AUTO", "crop": "CROP_PAPER", "interpolation": "BICUBIC"}
    seen = set()
    for name, parameter in inspect.signature(getattr(vorlane, call)).parameters.items():
        holder = next((options for options in made if hasattr(options, name)), None)
        if holder is None:
            continue
        default = getattr(vorlane._core, codes[name]) if name in codes else parameter.default
        default = [default] * 3 if name == "fill" else default
        assert getattr(holder, name) == default, name
        seen.add(name)
    if record:
        assert seen == {name for name in dir(made[0]) if not name.startswith("_")}


def test_four_threads_make_what_one_makes():
    scans = [draw_scan(turn=turn) for turn in (-4, -1, 2, 5)] * 3 + [draw_colour_scan(turn=1), DARK]
    alone = [vorlane.straighten(scan) for scan in scans]
    with ThreadPoolExecutor(4) as pool:
        together = list(pool.map(vorlane.straighten, scans))
    for (page, finding), (same_page, same_finding) in zip(alone, together):
        assert finding == same_finding
        np.testing.assert_array_equal(page, same_page)


def test_other_threads_run_while_a_page_is_worked_on():
    scan = np.zeros((3500, 2500, 3), np.uint8)
    finding = vorlane.decide(scan, 3.0)
    span = []

    def work():
        span.append(time.monotonic())
        vorlane.apply(scan, finding)
        span.append(time.monotonic())

    worker = threading.Thread(target=work)
    worker.start()
    ticks = []
    while worker.is_alive():
        ticks.append(time.monotonic())
        time.sleep(0.0005)
    # Between the two, the interpreter would switch but once or twice if the call held it.
    assert sum(span[0] < tick < span[1] for tick in ticks) > 5
