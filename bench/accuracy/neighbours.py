"""What else lies on the glass: mounts, further sheets, things."""
import cv2
import numpy as np

from . import fields, geometry, sheets, stock


def _sheet_at(scene, kind, long_side, centre, degrees, white):
    """Lays another drawn sheet below the page."""
    rng = scene.rng
    sheet = sheets.ALL[kind](rng, long_side)
    picture = stock.printed(rng, sheet, white, aged=False)
    half_w, half_h = sheet.width / 2, sheet.height / 2
    corners = geometry.rotated_box(centre, half_w, half_h, degrees)
    own = geometry.frame(sheet.width, sheet.height)
    matrix = cv2.getPerspectiveTransform(own.astype(np.float32), corners.astype(np.float32))
    scene.lay_behind(
        corners,
        cv2.warpPerspective(
            picture, matrix, (scene.width, scene.height), borderMode=cv2.BORDER_REPLICATE
        ),
    )


def shade_edge(scene, strength=0.35, spread=6.0):
    """The page's own shadow on what lies below it, down and to the right."""
    soft = cv2.GaussianBlur(scene.cover, (0, 0), spread)
    soft = cv2.warpAffine(
        soft, np.float32([[1, 0, spread / 2], [0, 1, spread / 2]]), (scene.width, scene.height)
    )
    scene.behind *= 1 - strength * soft


def light_lid(scene):
    """A white or grey lid, the page's shadow on it."""
    level = float(
        scene.rng.uniform(110, 160) if scene.rng.random() < 0.3 else scene.rng.uniform(175, 218)
    )
    level = min(level, scene.plan.white - 22)
    scene.behind = (
        level
        + 4 * fields.cloud(scene.rng, scene.width, scene.height, 4)
        + fields.white_noise(scene.rng, scene.width, scene.height)
    )
    shade_edge(scene)


def half_light_lid(scene):
    """Light behind one half of the picture, dark behind the other."""
    dark = scene.behind
    light_lid(scene)
    light_side = fields.slope(scene.width, scene.height, int(scene.rng.integers(0, 4)) * 90) > 0.5
    scene.behind = np.where(light_side, scene.behind, dark)


def mount(scene):
    """A board below the page that is turned otherwise and may leave the frame."""
    rng = scene.rng
    degrees = scene.plan.turned + float(rng.choice([-1, 1]) * rng.uniform(1, 5))
    low, high = scene.corners.min(axis=0), scene.corners.max(axis=0)
    half = (high - low) / 2 * float(rng.uniform(1.02, 1.12))
    level = float(rng.uniform(90, min(185, scene.plan.white - 20)))
    board = (
        level
        + 3 * fields.cloud(rng, scene.width, scene.height, 6)
        + 2 * fields.grain(rng, scene.width, scene.height, 3)
    )
    scene.lay_behind(geometry.rotated_box((low + high) / 2, half[0], half[1], degrees), board)
    shade_edge(scene, 0.25, 4.0)


def rim_of_the_glass(scene):
    """A light lid that ends in the dark rim of the glass, along the frame."""
    rng = scene.rng
    dark = scene.behind
    light_lid(scene)
    left, top, right, bottom = (
        int(v) for v in rng.uniform(0.004, 0.02, 4) * max(scene.width, scene.height)
    )
    inside = np.zeros((scene.height, scene.width), bool)
    inside[top : scene.height - bottom, left : scene.width - right] = True
    scene.behind = np.where(inside, scene.behind, dark)


def second_page(scene):
    """A facing page, its inner edge along the gutter, or a loose one, both leaving the frame."""
    rng, plan = scene.rng, scene.plan
    to_left = plan.margins[0] > plan.margins[2]
    facing = rng.random() < 0.5
    degrees = (
        plan.turned if facing else plan.turned + float(rng.choice([-1, 1]) * rng.uniform(0.8, 5))
    )
    height = float(np.linalg.norm(scene.corners[3] - scene.corners[0]))
    inner = scene.corners[[0, 3] if to_left else [1, 2]].mean(axis=0)
    gap = float(rng.uniform(4, 14) if facing else rng.uniform(8, 60))
    kind = str(rng.choice(["one column", "two columns", "letter", "table"]))
    long_side = int(height * (1 if facing else rng.uniform(0.8, 1.2)))
    half_width = long_side / 2.8
    direction = np.array([np.cos(np.radians(degrees)), np.sin(np.radians(degrees))]) * (
        -1 if to_left else 1
    )
    _sheet_at(scene, kind, long_side, inner + direction * (gap + half_width), degrees, plan.white)


def stack(scene):
    """Sheets below that peep out, at slightly other angles."""
    rng = scene.rng
    for _ in range(int(rng.integers(1, 4))):
        degrees = float(rng.uniform(-1.3, 1.3))
        centre = scene.corners.mean(axis=0)
        turn = cv2.getRotationMatrix2D(tuple(map(float, centre)), -degrees, 1)
        turn[:, 2] += rng.uniform(-14, 14, 2)
        below = np.column_stack([scene.corners, np.ones(4)]) @ turn.T
        scene.lay_behind(below, float(rng.uniform(140, max(150, scene.plan.white - 12))))
        scene.behind *= 1 - 0.2 * cv2.GaussianBlur(scene.cover, (0, 0), 3)


def several_receipts(scene):
    """Two to four smaller receipts, each turned on its own, partly below the large one."""
    rng = scene.rng
    for _ in range(int(rng.integers(2, 5))):
        degrees = scene.plan.turned + float(rng.choice([-1, 1]) * rng.uniform(2, 9))
        centre = rng.uniform(0, 1, 2) * [scene.width, scene.height]
        long_side = int(scene.plan.long_side * float(rng.uniform(0.3, 0.55)))
        _sheet_at(scene, "receipt", long_side, centre, degrees, scene.plan.white)
        shade_edge(scene, 0.2, 3.0)


def _ruler(scene, centre, degrees, reach):
    box = geometry.rotated_box(centre, reach, reach * 0.12, degrees)
    scene.lay_behind(box, float(scene.rng.uniform(150, 230)))
    direction = (box[1] - box[0]) / 60
    inward = (box[3] - box[0]) * 0.3
    for tick in range(61):
        start = box[0] + direction * tick
        end = start + inward * (1.6 if tick % 10 == 0 else 1)
        cv2.line(
            scene.behind,
            tuple(int(v) for v in start),
            tuple(int(v) for v in end),
            40.0,
            1,
            cv2.LINE_AA,
        )


def _colour_chart(scene, centre, degrees, reach):
    outer = geometry.rotated_box(centre, reach, reach * 0.35, degrees)
    scene.lay_behind(outer, 235.0)
    for index in range(6):
        share = (index + 0.5) / 6
        middle = outer[0] * (1 - share) + outer[1] * share
        middle = middle * 0.5 + (outer[3] * (1 - share) + outer[2] * share) * 0.5
        patch = geometry.rotated_box(middle, reach * 0.13, reach * 0.22, degrees)
        scene.lay_behind(patch, float(scene.rng.uniform(20, 220)))


def _coin(scene, centre, degrees, reach):
    radius = max(6, int(reach * 0.25))
    spot = tuple(int(v) for v in centre)
    cv2.circle(scene.behind, spot, radius, float(scene.rng.uniform(110, 190)), -1, cv2.LINE_AA)
    cv2.circle(scene.behind, spot, int(radius * 0.8), 90.0, 1, cv2.LINE_AA)


def _slip_of_paper(scene, centre, degrees, reach):
    scene.lay_behind(
        geometry.rotated_box(centre, reach * 0.7, reach * 0.3, degrees),
        float(scene.rng.uniform(130, 235)),
    )


def objects(scene):
    """A ruler, a colour chart, coins, slips in the surround, each turned on its own."""
    rng = scene.rng
    for _ in range(int(rng.integers(1, 4))):
        side = int(rng.integers(0, 4))
        along = float(rng.uniform(0.1, 0.9))
        near, far = float(rng.uniform(0.0, 0.07)), 1 - float(rng.uniform(0.0, 0.07))
        share = [(near, along), (along, near), (far, along), (along, far)][side]
        lies_along = 90 if side in (0, 2) else 0
        draw = (_ruler, _colour_chart, _coin, _slip_of_paper)[int(rng.integers(0, 4))]
        draw(
            scene,
            np.array(share) * [scene.width, scene.height],
            lies_along + float(rng.uniform(-15, 15)),
            float(rng.uniform(0.04, 0.16)) * max(scene.width, scene.height),
        )


def paper_everywhere(scene):
    """No edge of the sheet shows: the page's white goes on to the frame."""
    white = (
        scene.plan.white
        + fields.cloud(scene.rng, scene.width, scene.height, 7)
        + fields.white_noise(scene.rng, scene.width, scene.height)
    )
    scene.page = white * (1 - scene.cover) + scene.page * scene.cover
    scene.cover = np.ones_like(scene.cover)


def black_strips(scene):
    """White goes on to the frame but at one or two sides, where it is black beyond the sheet."""
    rng = scene.rng
    chosen = rng.choice(4, int(rng.integers(1, 3)), replace=False)
    reach = 4.0 * max(scene.width, scene.height)
    light = geometry.frame(scene.width, scene.height)
    for side in chosen:
        start, end = scene.corners[side], scene.corners[(side + 1) % 4]
        along, inward = (end - start), (scene.corners.mean(axis=0) - start)
        along = along / np.linalg.norm(along) * reach
        inward = inward / np.linalg.norm(inward) * reach
        light = geometry.clip(
            light,
            np.array(
                [
                    start - along,
                    start + along,
                    start + along + 2 * inward,
                    start - along + 2 * inward,
                ]
            ),
        )
    paper_everywhere(scene)
    scene.cover = geometry.cover([light], scene.width, scene.height)
    scene.edge = scene.light = light
