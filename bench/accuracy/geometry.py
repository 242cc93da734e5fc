"""Where a sheet comes to lie in the picture, and polygons there.

Degrees are those by which a sheet lies turned clockwise as seen; y grows downwards."""
import cv2
import numpy as np

_FINER = 4  # sub-pixels along each side of a pixel that a polygon's cover is counted in


def turned_corners(corners, degrees, shear_degrees=0.0, shifts=None):
    """Corners about their centre, sheared, shifted by shares of their distance, then turned."""
    points = corners - corners.mean(axis=0)
    points = points + np.stack(
        [np.tan(np.radians(shear_degrees)) * points[:, 1], np.zeros(4)], axis=1
    )
    if shifts is not None:
        points = points * (1 + shifts)
    angle = np.radians(degrees)
    turn = np.array([[np.cos(angle), -np.sin(angle)], [np.sin(angle), np.cos(angle)]])
    return points @ turn.T


def framed(points, margins):
    """Moves points into a frame that leaves `margins` (left, top, right, bottom; shares of the
    points' extent, below 0 where they run off). Returns the points and the frame's (width, height).
    """
    low, extent = points.min(axis=0), np.ptp(points, axis=0)
    left, top, right, bottom = margins
    width = int(round(extent[0] * (1 + left + right)))
    height = int(round(extent[1] * (1 + top + bottom)))
    return points - low + extent * [left, top] - 0.5, (max(width, 64), max(height, 64))


def map_points(matrix, points):
    mapped = np.column_stack([points, np.ones(len(points))]) @ matrix.T
    return mapped[:, :2] / mapped[:, 2:]


def side_angles(corners):
    """How far each side leans from the nearest axis, upper, right, lower, left."""
    steps = np.roll(corners, -1, axis=0) - corners
    degrees = np.degrees(np.arctan2(steps[:, 1], steps[:, 0])) - [0, 90, 180, 270]
    return (degrees + 180) % 360 - 180


def cover(polygons, width, height):
    """The share (0..1) of each pixel that the polygons cover; one inside another is a hole."""
    fine = np.zeros((height * _FINER, width * _FINER), np.uint8)
    scaled = [np.round((polygon + 0.5) * _FINER * 16 - 8).astype(np.int32) for polygon in polygons]
    cv2.fillPoly(fine, scaled, 255, shift=4)
    small = cv2.resize(fine, (width, height), interpolation=cv2.INTER_AREA)
    return small.astype(np.float32) / 255


def rotated_box(centre, half_width, half_height, degrees):
    corners = np.array(
        [
            [-half_width, -half_height],
            [half_width, -half_height],
            [half_width, half_height],
            [-half_width, half_height],
        ]
    )
    return turned_corners(corners, degrees) + centre


def _signed_area(polygon):
    x, y = polygon[:, 0], polygon[:, 1]
    return float(np.dot(x, np.roll(y, -1)) - np.dot(y, np.roll(x, -1))) / 2


def area(polygon):
    return abs(_signed_area(polygon))


def clockwise(polygon):
    """The same polygon, going round clockwise as seen."""
    return polygon if _signed_area(polygon) >= 0 else polygon[::-1]


def frame(width, height):
    """The outer edge of a picture's pixels."""
    return np.array(
        [[-0.5, -0.5], [width - 0.5, -0.5], [width - 0.5, height - 0.5], [-0.5, height - 0.5]]
    )


def clip(polygon, window):
    """The part of any polygon inside a convex window (Sutherland and Hodgman). Its area is right
    even where the part falls into pieces: these are joined by edges that run there and back."""
    window = clockwise(window)
    points = polygon
    for start, end in zip(window, np.roll(window, -1, axis=0)):
        if len(points) == 0:
            break
        points = _clip_by_line(points, start, end - start)
    return points


def _clip_by_line(points, origin, direction):
    signed = direction[0] * (points[:, 1] - origin[1]) - direction[1] * (points[:, 0] - origin[0])
    kept = []
    for index in range(len(points)):
        here, before = signed[index], signed[index - 1]
        if (here >= 0) != (before >= 0):
            share = before / (before - here)
            kept.append(points[index - 1] + share * (points[index] - points[index - 1]))
        if here >= 0:
            kept.append(points[index])
    return np.array(kept).reshape(-1, 2)
