import numpy as np
import pytest

import vorlane

# Two marks, the second of two runs that touch at a corner.
SHEET = np.array(
    [
        [255, 255, 255, 255, 255, 255, 255],
        [255, 10, 120, 255, 255, 255, 255],
        [255, 10, 90, 255, 255, 121, 255],
        [255, 255, 255, 255, 30, 255, 255],
        [255, 255, 255, 20, 255, 255, 255],
    ],
    np.uint8,
)
FIRST = {"area": 4, "center_x": 1, "center_y": 1, "left": 1, "top": 1, "right": 2, "bottom": 2,
         "width": 2, "height": 2, "min_value": 10, "max_value": 120}
SECOND = {"area": 2, "center_x": 3, "center_y": 3, "left": 3, "top": 3, "right": 4, "bottom": 4,
          "width": 2, "height": 2, "min_value": 20, "max_value": 30}


def numbers(block):
    return {name: block[name] for name in vorlane.block_type.names if name != "points"}


def places(block):
    return sorted(map(tuple, block["points"].tolist()))


@pytest.mark.parametrize(
    "page",
    [SHEET, np.asfortranarray(SHEET), SHEET[::-1].copy()[::-1]],
    ids=["rows", "columns first", "bottom first"],
)
def test_lists_blocks_with_their_points(page):
    found = sorted(vorlane.blocks(page, 120), key=lambda block: block["left"])
    assert [numbers(block) for block in found] == [FIRST, SECOND]
    assert [places(block) for block in found] == [
        [(1, 1), (1, 2), (2, 1), (2, 2)],
        [(3, 4), (4, 3)],
    ]


def test_marks_what_is_true_in_bool_pages():
    marked = vorlane.blocks(SHEET <= 120)
    assert sorted(map(places, marked)) == sorted(map(places, vorlane.blocks(SHEET, 120)))


@pytest.mark.parametrize(
    "options, areas",
    [
        # With the pixel of the last column that a run comes up to.
        ({"threshold": 121}, [4, 4]),
        ({"threshold": 9}, []),
        ({"threshold": 120, "region": (1, 2, 3, 4)}, [1, 3]),
        ({"threshold": 120, "min_run": 2, "max_run": 5}, [4]),
    ],
)
def test_options_choose_what_is_marked(options, areas):
    assert sorted(vorlane.blocks(SHEET, **options)["area"].tolist()) == areas


@pytest.mark.parametrize(
    "page, options, error, words",
    [
        (SHEET.astype(np.int8), {"threshold": 1}, TypeError, "int8"),
        (SHEET[0], {"threshold": 1}, ValueError, "H x W"),
        (SHEET[:0], {"threshold": 1}, ValueError, "1..65536"),
        (np.zeros((1, 65537), np.uint8), {"threshold": 1}, ValueError, "1..65536"),
        (SHEET, {}, ValueError, "threshold"),
        (SHEET > 1, {"threshold": 1}, ValueError, "threshold"),
        (SHEET, {"threshold": 256}, ValueError, "0..255"),
        (SHEET, {"threshold": 1, "region": (0, 0, 7, 4)}, ValueError, "region"),
        (SHEET, {"threshold": 1, "join_gap": 40000}, ValueError, "join_gap"),
    ],
)
def test_says_what_is_wrong(page, options, error, words):
    with pytest.raises(error, match=words):
        vorlane.blocks(page, **options)
