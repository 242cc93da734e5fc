import json
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import vorlane
from scans import draw_colour_scan, draw_scan

PYTHON = Path(__file__).parents[2] / "python"
Image = pytest.importorskip("PIL.Image")


def run(script, *arguments, status=0):
    done = subprocess.run(
        [sys.executable, PYTHON / script, *arguments], capture_output=True, text=True, timeout=100
    )
    assert done.returncode == status, done.stderr
    return done.stdout


def test_dask_straightens_a_folder(tmp_path):
    pytest.importorskip("distributed", reason="python3-distributed is missing")
    pages, straight = tmp_path / "pages", tmp_path / "straight"
    pages.mkdir()
    scans = {
        "bits.tif": draw_scan(turn=2) > 128,
        "grey.png": draw_scan(turn=-4),
        "colour.png": draw_colour_scan(turn=1),
        "blank.png": np.full((300, 200), 200, np.uint8),
    }
    for name, scan in scans.items():
        Image.fromarray(scan).save(pages / name, dpi=(300, 300))
    (pages / "broken.png").write_bytes(b"\x89PNG\r\n\x1a\n")
    lines = run("recipes/straighten_folder.py", pages, straight, status=1).splitlines()
    outcomes = {Path(line["file"]).name: line["outcome"] for line in map(json.loads, lines)}
    assert outcomes == {
        **dict.fromkeys(("bits.tif", "grey.png", "colour.png"), "straightened"),
        "blank.png": "left as it is",
        "broken.png": "failed",
    }
    assert {path.name for path in straight.iterdir()} == {"bits.tif", "grey.png", "colour.png"}
    for path in straight.iterdir():
        with Image.open(path) as picture:
            assert np.allclose([float(dots) for dots in picture.info["dpi"]], 300, atol=0.1)
            np.testing.assert_array_equal(
                np.asarray(picture), vorlane.straighten(scans[path.name]).page
            )
    (pages / "broken.png").unlink()
    again = run("recipes/straighten_folder.py", pages, straight)
    assert json.loads(again)["outcome"] == "left as it is"


def test_example_shows_before_and_after(tmp_path):
    pytest.importorskip("matplotlib", reason="python3-matplotlib is missing")
    Image.fromarray(draw_scan()).save(tmp_path / "scan.png")
    run("examples/before_and_after.py", tmp_path / "scan.png", tmp_path / "figure.png")
    with Image.open(tmp_path / "figure.png") as figure:
        shown = np.asarray(figure.convert("L"))
    assert figure.size == (1200, 840) and (shown < 60).sum() > shown.size / 20
