"""Composes pages: each from the seed and its own number, so that any of them can be made alone."""
import os
from concurrent.futures import ProcessPoolExecutor

import cv2
import numpy as np

from . import conditions, geometry, glass, neighbours, planning, scanner, surrounds, truth
from .scene import Scene

_EMPTY_LIGHT = (surrounds.flat(200.0), surrounds.flat(250.0))


def page_list(scale, only=None):
    """(number, name of the condition) of every page; numbers do not change with `only`."""
    pages, number = [], 0
    for condition in conditions.TABLE:
        for _ in range(max(2, round(condition.count * scale))):
            if only is None or condition.name in only:
                pages.append((number, condition.name))
            number += 1
    return pages


def _empty_picture(scene):
    """Only the surround, or an empty light lid."""
    choice = int(scene.rng.integers(0, 4))
    if choice < 2:
        return scene.behind
    return _EMPTY_LIGHT[choice - 2](scene.rng, scene.width, scene.height)


def _picture(scene, condition):
    for change in condition.behind:
        change(scene)
    if not condition.seen:
        picture = _empty_picture(scene)
        scene.cover[:] = 0
    else:
        if not condition.behind:
            neighbours.shade_edge(scene, 0.3, 3.0)
        picture = scene.put_together()
    picture = np.ascontiguousarray(picture, dtype=np.float32)
    for change in (glass.specks,) + condition.over:
        picture = np.ascontiguousarray(change(picture, scene), dtype=np.float32)
    return picture


def _truth_of(scene, condition, name):
    plan = scene.plan
    sides = geometry.side_angles(scene.corners)
    sides_seen, print_seen = "sides" in condition.seen, "print" in condition.seen
    ink = scene.ink if print_seen else np.zeros((0, 2))
    return truth.Truth(
        file=name,
        condition=condition.name,
        sheet=plan.sheet if condition.seen else "none",
        width=scene.width,
        height=scene.height,
        onebit=plan.bit_threshold is not None,
        paper=[round(float(sides.min()), 4), round(float(sides.max()), 4)] if sides_seen else None,
        print=round(plan.turned + plan.print_off, 4) if print_seen and scene.lined else None,
        corners=np.round(scene.corners, 2).tolist(),
        edge=np.round(scene.edge, 2).tolist() if sides_seen else [],
        light=np.round(scene.light, 2).tolist() if sides_seen else [],
        ink=np.round(ink, 1).tolist(),
    )


def compose(folder, seed, number, condition_name):
    """Writes one page into `folder`; returns what is known of it."""
    condition = conditions.BY_NAME[condition_name]
    cv2.setNumThreads(1)
    rng = np.random.default_rng([seed, number])
    plan = planning.usual_plan(rng)
    for change in condition.plan:
        change(plan, rng)
    scene = Scene(plan, rng, condition.on_sheet)
    path = os.path.join(
        folder, "%03d-%s-%s" % (number, condition.name, plan.sheet.replace(" ", "-"))
    )
    name = os.path.basename(scanner.scan(_picture(scene, condition), scene, path))
    return _truth_of(scene, condition, name)


def compose_all(folder, seed, pages, workers):
    """Writes all pages and their truth.jsonl; returns the truths in the pages' order."""
    os.makedirs(folder, exist_ok=True)
    with ProcessPoolExecutor(workers) as pool:
        jobs = [pool.submit(compose, folder, seed, number, name) for number, name in pages]
        truths = [job.result() for job in jobs]
    truth.write(os.path.join(folder, "truth.jsonl"), truths)
    return truths
