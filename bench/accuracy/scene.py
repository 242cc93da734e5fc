"""One page in the making: what was planned, the sheet where it lies, and what lies round it."""
from dataclasses import dataclass, field

import cv2
import numpy as np

from . import geometry, outline, sheets, stock, surrounds

INK_POINTS = 400


@dataclass
class Plan:
    """What is chosen before anything is drawn; conditions change it."""

    sheet: str
    long_side: int  # of the sheet, pixels
    turned: float  # degrees clockwise as seen
    margins: list  # round the turned sheet: left, top, right, bottom, shares of its extent
    surround: str
    white: float  # level of the paper
    noise: float  # deviation of the sensor's noise, levels
    aged: bool = False
    colour: bool = False
    print_off: float = 0.0  # degrees that the print lies turned on the paper
    shear: float = 0.0
    shifts: np.ndarray = None  # of the corners by perspective, shares
    waves: list = field(default_factory=lambda: [None] * 4)
    damages: list = field(default_factory=list)
    specks: int = 0  # of dust on the surround
    bit_threshold: float = (
        None  # share of Otsu's threshold at which a 1-bit page is cut; None: grey
    )
    quality: int = None  # of JPEG; None: losslessly packed


def _turn_layers(sheet, degrees):
    centre = (sheet.width / 2, sheet.height / 2)
    matrix = cv2.getRotationMatrix2D(centre, -degrees, 1)
    for name in ("ink", "picture", "pictured"):
        layer = getattr(sheet, name)
        if layer is not None:
            setattr(
                sheet,
                name,
                cv2.warpAffine(layer, matrix, (sheet.width, sheet.height), flags=cv2.INTER_CUBIC),
            )


class Scene:
    """Sheet and surround apart, so that conditions can change either before they are put together.

    `behind`, `page`  float32 (height, width), levels of the surround and of the sheet's plane
    `cover`           share of each pixel that the sheet covers
    `corners`         the sheet's four, in the picture; `edge` its outline, without what is torn off
    `light`           what may stay in a cut: the sheet, its missing corners, and what cannot be
                      told from it
    """

    def __init__(self, plan, rng, on_sheet=()):
        self.plan, self.rng = plan, rng
        sheet = sheets.ALL[plan.sheet](rng, plan.long_side)
        for change in on_sheet:
            change(sheet, rng)
        if plan.print_off:
            _turn_layers(sheet, plan.print_off)
        self.lined = sheet.lined
        own_corners = geometry.frame(sheet.width, sheet.height)
        turned = geometry.turned_corners(own_corners, plan.turned, plan.shear, plan.shifts)
        self.corners, (self.width, self.height) = geometry.framed(turned, plan.margins)
        self.matrix = cv2.getPerspectiveTransform(
            own_corners.astype(np.float32), self.corners.astype(np.float32)
        )
        self.light = self.corners
        damages = plan.damages + sheet.damages
        own_edge = outline.of_sheet(rng, sheet.width, sheet.height, damages, plan.waves)
        self.edge = geometry.map_points(self.matrix, own_edge)
        holes = [geometry.map_points(self.matrix, hole) for hole in sheet.holes]
        self.cover = geometry.cover([self.edge] + holes, self.width, self.height)
        picture = stock.printed(rng, sheet, plan.white, plan.aged)
        self._fold_flaps(picture, own_corners)
        self.page = cv2.warpPerspective(
            picture,
            self.matrix,
            (self.width, self.height),
            flags=cv2.INTER_LINEAR,
            borderMode=cv2.BORDER_REPLICATE,
        )
        self.behind = surrounds.DARK[plan.surround](rng, self.width, self.height)
        self.ink = self._ink_points(sheet)

    def _fold_flaps(self, picture, own_corners):
        """A folded corner lies on the sheet, its back up, with a thin shadow along its edge."""
        for damage in self.plan.damages:
            if damage.kind != "folded":
                continue
            start, end = outline.fold_line(own_corners, damage)
            along = (end - start) / np.linalg.norm(end - start)
            to_corner = own_corners[damage.corner] - start
            mirrored = start + 2 * along * np.dot(to_corner, along) - to_corner
            flap = np.round([start, end, mirrored]).astype(np.int32)
            cv2.polylines(picture, [flap], True, self.plan.white * 0.7, 3, cv2.LINE_AA)
            cv2.fillPoly(picture, [flap], self.plan.white * 0.96)

    def _ink_points(self, sheet):
        rows, columns = np.nonzero(sheet.ink > 0.6)
        if len(rows) == 0:
            return np.zeros((0, 2))
        chosen = self.rng.choice(len(rows), min(INK_POINTS, len(rows)), replace=False)
        points = geometry.map_points(
            self.matrix, np.column_stack([columns[chosen], rows[chosen]]).astype(float)
        )
        inside = (points > 0).all(axis=1) & (points < [self.width - 1, self.height - 1]).all(axis=1)
        points = points[inside]
        columns, rows = np.round(points).astype(int).T
        return points[self.cover[rows, columns] > 0.5]

    def lay_behind(self, polygon, level):
        """Puts something of one level, or of a level by pixel, under the sheet."""
        share = geometry.cover([polygon], self.width, self.height)
        self.behind = self.behind * (1 - share) + level * share

    def put_together(self):
        return self.behind * (1 - self.cover) + self.page * self.cover
