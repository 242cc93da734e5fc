// Outlines over scans, and results drawn from a small picture of the scan.

import { cornersOf, cutAround, wholeCut } from './geometry.js';
import { makeShape } from './dom.js';

/** The corners of what a turn keeps, in the picture. */
export function keptCorners(page, turn) {
  const cut = turn.corners
    ? cutAround(page, turn.angle, turn.corners)
    : wholeCut(page, turn.angle);
  return cornersOf(page, turn.angle, cut);
}

/** An outline that is laid over a scan by showOutline. */
export function makeOutline() {
  const outline = makeShape('svg', { class: 'outline', 'aria-hidden': 'true' });
  const scan = makeShape('svg'); // nothing beyond it is darkened
  scan.append(makeShape('path', { class: 'outside', 'fill-rule': 'evenodd' }));
  outline.append(
    scan,
    makeShape('polygon', { class: 'kept-under', 'vector-effect': 'non-scaling-stroke' }),
    makeShape('polygon', { class: 'kept', 'vector-effect': 'non-scaling-stroke' }),
    makeShape('path', { class: 'way-up', 'vector-effect': 'non-scaling-stroke' }),
  );
  return outline;
}

/**
 * Draws what a turn keeps; with a turn of null nothing. `view` is the part of the picture that the
 * outline covers: left, top, width and height in its pixels.
 */
export function showOutline(outline, page, turn, view) {
  outline.setAttribute('viewBox', `${view.left} ${view.top} ${view.width} ${view.height}`);
  const corners = turn ? keptCorners(page, turn) : [];
  const points = corners.map(([x, y]) => `${x + 0.5},${y + 0.5}`);
  const [scan, under, kept, wayUp] = outline.children;
  scan.setAttribute('width', page.width);
  scan.setAttribute('height', page.height);
  under.setAttribute('points', points.join(' '));
  kept.setAttribute('points', points.join(' '));
  const picture = `M0,0H${page.width}V${page.height}H0Z`;
  scan.firstChild.setAttribute('d', turn ? `${picture}M${points.join('L')}Z` : '');
  wayUp.setAttribute('d', turn ? wayUpOf(corners) : '');
}

/** A short stroke inwards from the middle of the upper side. */
function wayUpOf([a, b, , d]) {
  const length = 0.06;
  const x = (a[0] + b[0]) / 2 + 0.5;
  const y = (a[1] + b[1]) / 2 + 0.5;
  return `M${x},${y}l${(d[0] - a[0]) * length},${(d[1] - a[1]) * length}`;
}

/**
 * Draws a page that will be made as large as it fits into width x height screen pixels. Returns
 * the size of the drawing on the screen.
 */
export function drawResult(canvas, picture, page, plan, width, height) {
  const fit = Math.min(width / plan.width, height / plan.height);
  const density = window.devicePixelRatio || 1;
  canvas.width = Math.max(1, Math.round(plan.width * fit * density));
  canvas.height = Math.max(1, Math.round(plan.height * fit * density));
  canvas.style.width = `${plan.width * fit}px`;
  canvas.style.height = `${plan.height * fit}px`;
  const context = canvas.getContext('2d', { alpha: false });
  context.fillStyle = 'white';
  context.fillRect(0, 0, canvas.width, canvas.height);
  // Output pixel `to` lies over the picture's pixel `from`, and all turns about it.
  context.scale(canvas.width / plan.width, canvas.height / plan.height);
  context.translate(plan.to[0] + 0.5, plan.to[1] + 0.5);
  context.rotate((plan.angle * Math.PI) / 180);
  context.translate(-plan.from[0], -plan.from[1]);
  context.imageSmoothingQuality = 'high';
  context.drawImage(picture, -0.5, -0.5, page.width, page.height);
}

/**
 * Draws what lies around a place of the scan, `scale` screen pixels for one of its own, with the
 * outline of what is kept.
 */
export function drawLoupe(canvas, picture, page, corners, [x, y], scale) {
  const density = window.devicePixelRatio || 1;
  const { clientWidth, clientHeight } = canvas;
  canvas.width = clientWidth * density;
  canvas.height = clientHeight * density;
  const context = canvas.getContext('2d');
  context.scale(density, density);
  context.translate(clientWidth / 2, clientHeight / 2);
  context.scale(scale, scale);
  context.translate(-x, -y);
  context.imageSmoothingQuality = 'high';
  context.drawImage(picture, -0.5, -0.5, page.width, page.height);
  context.beginPath();
  for (const corner of corners) context.lineTo(...corner);
  context.closePath();
  context.lineWidth = 1.5 / scale;
  context.strokeStyle = '#1f6fe0';
  context.stroke();
}
