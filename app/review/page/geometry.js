// Where things lie on a page and what the engine makes of a decision: its arithmetic, so that the
// preview has the very size of the page that will be made.
//
// Picture coordinates are pixels of the scan, x to the right and y down; the middle of the first
// pixel is [0, 0]. Page coordinates are those of the turned page, whose middle is [0, 0]. Turns are
// degrees, clockwise. A page is anything with a width and a height, in pixels.

/** What of a pixel a cut must touch for the pixel to be kept; less is rounding. */
const LEAST_SHARE = 1 / 64;

function axesOf(page, degrees) {
  const radians = (degrees * Math.PI) / 180;
  return {
    cosine: Math.cos(radians),
    sine: Math.sin(radians),
    x: (page.width - 1) / 2,
    y: (page.height - 1) / 2,
  };
}

/** Where the turn takes a place of the picture. */
export function toPage(page, degrees, [x, y]) {
  const axes = axesOf(page, degrees);
  const dx = x - axes.x;
  const dy = y - axes.y;
  return [dx * axes.cosine - dy * axes.sine, dx * axes.sine + dy * axes.cosine];
}

/** Where in the picture a place of the turned page lies. */
export function toPicture(page, degrees, [u, v]) {
  const axes = axesOf(page, degrees);
  return [
    axes.x + u * axes.cosine + v * axes.sine,
    axes.y - u * axes.sine + v * axes.cosine,
  ];
}

/** The upright rectangle of the turned page around places of the picture. */
export function cutAround(page, degrees, corners) {
  const places = corners.map((corner) => toPage(page, degrees, corner));
  const us = places.map(([u]) => u);
  const vs = places.map(([, v]) => v);
  return {
    left: Math.min(...us),
    top: Math.min(...vs),
    right: Math.max(...us),
    bottom: Math.max(...vs),
  };
}

/** The corners of a cut in the picture, clockwise from the upper left. */
export function cornersOf(page, degrees, cut) {
  return [
    [cut.left, cut.top],
    [cut.right, cut.top],
    [cut.right, cut.bottom],
    [cut.left, cut.bottom],
  ].map((place) => toPicture(page, degrees, place));
}

/** The corners of the whole picture. */
export function pictureCorners(page) {
  const right = page.width - 0.5;
  const bottom = page.height - 0.5;
  return [
    [-0.5, -0.5],
    [right, -0.5],
    [right, bottom],
    [-0.5, bottom],
  ];
}

/** The rectangle of the turned page that holds the whole picture. */
export function wholeCut(page, degrees) {
  return cutAround(page, degrees, pictureCorners(page));
}

/** What of a cut lies within another. */
export function cutWithin(cut, bounds) {
  return {
    left: Math.max(cut.left, bounds.left),
    top: Math.max(cut.top, bounds.top),
    right: Math.min(cut.right, bounds.right),
    bottom: Math.min(cut.bottom, bounds.bottom),
  };
}

/** The same cut, turned with its page about its own middle. */
export function turnCorners(page, corners, from, to) {
  const cut = cutAround(page, from, corners);
  const middle = toPicture(page, from, [(cut.left + cut.right) / 2, (cut.top + cut.bottom) / 2]);
  const [u, v] = toPage(page, to, middle);
  const halfWidth = (cut.right - cut.left) / 2;
  const halfHeight = (cut.bottom - cut.top) / 2;
  return cornersOf(page, to, {
    left: u - halfWidth,
    top: v - halfHeight,
    right: u + halfWidth,
    bottom: v + halfHeight,
  });
}

/** Degrees within -180..180, rounded to what can be told apart. */
export function tidyAngle(degrees) {
  const turned = degrees - 360 * Math.round(degrees / 360);
  return Math.round(turned * 1e4) / 1e4 + 0;
}

function touchedPixels(from, to, size) {
  const first = Math.floor(from + size / 2 + LEAST_SHARE);
  const end = Math.ceil(to + size / 2 - LEAST_SHARE);
  return { first, count: Math.max(end - first, 1) };
}

function planStraight(page, cut) {
  const columns = touchedPixels(cut.left, cut.right, page.width);
  const rows = touchedPixels(cut.top, cut.bottom, page.height);
  return {
    angle: 0,
    width: columns.count,
    height: rows.count,
    from: [columns.first, rows.first],
    to: [0, 0],
    centre: [columns.first + ((columns.count - 1) >> 1), rows.first + ((rows.count - 1) >> 1)],
  };
}

/** The odd number of pixels around `centre` that reaches from `from` to `to`. */
function pixelsAround(centre, from, to) {
  const reach = Math.max(centre - from, to - centre);
  return 2 * Math.ceil(Math.max(0, reach - 0.5 - LEAST_SHARE)) + 1;
}

function roundAwayFromZero(value) {
  return Math.sign(value) * Math.round(Math.abs(value));
}

function planSlanted(page, cut, angle) {
  // The whole pixel nearest to the cut's middle, and where the turn takes it.
  const middle = toPicture(page, angle, [(cut.left + cut.right) / 2, (cut.top + cut.bottom) / 2]);
  const centre = middle.map(roundAwayFromZero);
  const [u, v] = toPage(page, angle, centre);
  const width = pixelsAround(u, cut.left, cut.right);
  const height = pixelsAround(v, cut.top, cut.bottom);
  return { angle, width, height, from: centre, to: [(width - 1) / 2, (height - 1) / 2], centre };
}

/**
 * The page that will be made: its size, its turn, and that it shows the picture's pixel `from` at
 * its own pixel `to`. Null when there is none: the cut holds nothing of the picture, or the page
 * would be far larger than the picture.
 *
 *   turn    angle in degrees; corners in the picture, or null for the whole page
 *   engine  minTurn, below which no page is turned, and maxGrowth, in pictures
 */
export function planResult(page, turn, engine) {
  const angle = Math.abs(turn.angle) >= engine.minTurn ? turn.angle : 0;
  const whole = wholeCut(page, angle);
  const cut = turn.corners ? cutWithin(cutAround(page, angle, turn.corners), whole) : whole;
  if (cut.right - cut.left < LEAST_SHARE || cut.bottom - cut.top < LEAST_SHARE) return null;
  const plan = angle === 0 ? planStraight(page, cut) : planSlanted(page, cut, angle);
  const growth = (plan.width * plan.height) / (page.width * page.height);
  const [x, y] = plan.centre;
  const isOnPicture = x >= 0 && x < page.width && y >= 0 && y < page.height;
  return isOnPicture && growth <= engine.maxGrowth ? plan : null;
}
