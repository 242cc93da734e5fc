// One page: the scan with what is kept of it, and beside it the page that will be made.

import { announce, byId, describe, make } from './dom.js';
import { drawLoupe, drawResult, keptCorners, makeOutline, showOutline } from './drawing.js';
import {
  cornersOf,
  cutAround,
  cutWithin,
  planResult,
  tidyAngle,
  toPage,
  turnCorners,
  wholeCut,
} from './geometry.js';
import { foundTurn } from './decisions.js';
import { absenceWords } from './journal.js';
import {
  answersOf,
  CONFIDENCE_WORDS,
  degreesWords,
  evidenceWords,
  reasonWords,
  sizeWords,
  verdictWords,
} from './words.js';

/** Places that can be dragged: which sides of the cut move with each. */
const HANDLES = [
  { words: 'Upper left corner', x: 'left', y: 'top' },
  { words: 'Upper right corner', x: 'right', y: 'top' },
  { words: 'Lower right corner', x: 'right', y: 'bottom' },
  { words: 'Lower left corner', x: 'left', y: 'bottom' },
  { words: 'Upper side', y: 'top' },
  { words: 'Right side', x: 'right' },
  { words: 'Lower side', y: 'bottom' },
  { words: 'Left side', x: 'left' },
];

const OPPOSITE = { left: 'right', right: 'left', top: 'bottom', bottom: 'top' };

/** The least that a cut keeps across and down, in pixels of the scan. */
const LEAST_SIDE = 8;

/** Degrees. */
const NUDGE = 0.05;

/** How much larger the loupe shows the scan. */
const LOUPE_SCALE = 4;

/** Screen pixels around the scan, so that handles at its rim can be taken. */
const RIM = 24;

/** The part of the plane that holds the picture and what is kept, from the picture's corner. */
function viewOf(page, corners) {
  const xs = [0, page.width, ...corners.map(([x]) => x + 0.5)];
  const ys = [0, page.height, ...corners.map(([, y]) => y + 0.5)];
  const [left, top] = [Math.min(...xs), Math.min(...ys)];
  return { left, top, width: Math.max(...xs) - left, height: Math.max(...ys) - top };
}

function lay(element, lengths) {
  Object.assign(element.style, lengths);
}

export class PageView {
  /** `actions` has close, step (by -1 or 1), changed, undo, and accept, leave and reset with a page. */
  constructor(journal, decisions, actions) {
    this.journal = journal;
    this.decisions = decisions;
    this.actions = actions;
    this.page = null;
    this.picture = new Image();
    this.picture.addEventListener('load', () => this.draw());
    this.scan = byId('scan');
    this.canvas = byId('result');
    this.outline = makeOutline();
    this.scanImage = make('img', { alt: '', draggable: false });
    this.handles = HANDLES.map((handle) => this.makeHandle(handle));
    this.loupe = make('canvas', { className: 'loupe', hidden: true, 'aria-hidden': 'true' });
    this.scan.append(this.scanImage, this.outline, ...this.handles, this.loupe);
    this.connect();
    const observer = new ResizeObserver(() => this.draw());
    observer.observe(byId('scan-frame'));
    observer.observe(byId('result-frame'));
  }

  connect() {
    byId('angle').addEventListener('change', () => this.takeTypedAngle());
    byId('angle').addEventListener('keydown', (event) => this.typeAngle(event));
    byId('turn-back').addEventListener('click', () => this.nudge(-NUDGE));
    byId('turn-on').addEventListener('click', () => this.nudge(NUDGE));
    byId('quarter-back').addEventListener('click', () => this.nudge(-90));
    byId('quarter-on').addEventListener('click', () => this.nudge(90));
    byId('whole').addEventListener('change', () => this.keepWhole(byId('whole').checked));
    byId('guides').addEventListener('change', () => this.showGuides());
    for (const name of ['paper', 'print', 'bar']) {
      byId(`by-${name}`).addEventListener('click', () => this.answerBy(name));
    }
    byId('accept').addEventListener('click', () => this.actions.accept(this.page));
    byId('leave').addEventListener('click', () => this.actions.leave(this.page));
    byId('reset').addEventListener('click', () => this.actions.reset(this.page));
    byId('undo').addEventListener('click', () => this.actions.undo());
    byId('previous').addEventListener('click', () => this.actions.step(-1));
    byId('next').addEventListener('click', () => this.actions.step(1));
    byId('close').addEventListener('click', () => this.actions.close());
    byId('result-frame').addEventListener('pointermove', (event) => this.moveCross(event));
  }

  /** Shows a page; `position` tells where it stands among those that are shown. */
  open(page, position) {
    this.page = page;
    byId('position').textContent = position;
    byId('page-title').textContent = page.title;
    byId('page-title').title = page.name ?? page.file;
    byId('page-view').dataset.confidence = page.confidence;
    byId('page-confidence').textContent = CONFIDENCE_WORDS[page.confidence];
    byId('page-view').classList.toggle('absent', !page.isPictured);
    byId('page-absence').textContent = page.isPictured ? '' : `This page ${absenceWords(page)}.`;
    this.fillReasons();
    if (page.isPictured) {
      this.picture.src = `${this.journal.pictures}/${page.picture}`;
      this.scanImage.src = this.picture.src;
      this.scanImage.alt = `Scan of ${page.title}`;
    }
    this.refresh();
  }

  fillReasons() {
    const { page } = this;
    const reasons = page.reasons.map((reason) => reasonWords(reason, this.journal.reasons));
    byId('reasons').replaceChildren(...reasons.map((words) => make('li', { textContent: words })));
    const rows = Object.entries(page.evidence ?? {}).map(([name, { verdict, angle }]) =>
      make(
        'tr',
        { className: verdict },
        make('th', { scope: 'row', textContent: evidenceWords(name) }),
        make('td', { textContent: angle === undefined ? '' : degreesWords(angle) }),
        make('td', { className: 'verdict', textContent: verdictWords(verdict) }),
      ),
    );
    byId('evidence').replaceChildren(...rows);
    byId('evidence-part').hidden = rows.length === 0;
  }

  /** The turn that is shown: the one that stands, or the whole page as it lies. */
  get turn() {
    return this.decisions.turnOf(this.page) ?? { angle: 0, corners: null };
  }

  /** Shows anew what may have changed about the page. */
  refresh() {
    const { page, decisions, turn } = this;
    const state = decisions.stateOf(page);
    const choice = decisions.choiceOf(page);
    const view = byId('page-view');
    view.dataset.state = state;
    view.dataset.choice = choice;
    byId('outcome').textContent = this.outcomeWords(state, choice);
    byId('angle').value = turn.angle.toFixed(2);
    byId('whole').checked = turn.corners === null;
    byId('accept').disabled = !page.isPictured || !decisions.turnOf(page);
    byId('leave').disabled = !page.isPictured;
    byId('reset').disabled = state === 'open';
    byId('undo').disabled = !decisions.canUndo();
    byId('controls').disabled = !page.isPictured;
    const answers = answersOf(page);
    for (const [name, angle] of Object.entries(answers)) {
      const button = byId(`by-${name}`);
      button.disabled = angle === undefined;
      button.setAttribute('aria-pressed', angle !== undefined && this.isAt(angle));
      button.querySelector('span').textContent = angle === undefined ? 'not seen' : degreesWords(angle);
    }
    this.draw();
  }

  isAt(angle) {
    return Math.abs(angle - this.turn.angle) < NUDGE / 10;
  }

  outcomeWords(state, choice) {
    if (!this.page.isPictured) return 'There is nothing to decide here.';
    if (choice === 'leave') {
      return state === 'left' ? 'You leave it as it is.' : 'It will be left as it is unless you accept it.';
    }
    if (state === 'edited') return 'It will be made as you set it.';
    return state === 'accepted' ? 'You accept it as it was found.' : 'It will be made as it was found.';
  }

  // Edits.

  /** `isContinued`: a part of the last step, which is taken back with it. */
  edit(turn, isContinued = false) {
    this.decisions.edit(this.page, turn, isContinued);
    this.refresh();
    this.actions.changed();
  }

  /** Turns what is kept about its own middle. */
  setAngle(degrees) {
    const angle = tidyAngle(degrees);
    const { turn, page } = this;
    if (angle === turn.angle) return;
    const corners = turn.corners && turnCorners(page, turn.corners, turn.angle, angle);
    this.edit({ angle, corners });
    describe(`turn ${degreesWords(angle)}`);
  }

  nudge(degrees) {
    if (this.page.isPictured) this.setAngle(this.turn.angle + degrees);
  }

  takeTypedAngle() {
    const typed = Number(byId('angle').value.trim().replace(',', '.').replace('−', '-'));
    const isAngle = byId('angle').value.trim() !== '' && Math.abs(typed) <= 180;
    // What is shown is rounded: what was not retyped is not an edit.
    if (isAngle && typed.toFixed(2) !== this.turn.angle.toFixed(2)) this.setAngle(typed);
    else byId('angle').value = this.turn.angle.toFixed(2);
    if (!isAngle) announce('An angle is a number from -180 to 180.');
  }

  typeAngle(event) {
    if (event.key === 'ArrowUp' || event.key === 'ArrowDown') {
      event.preventDefault();
      this.nudge(event.key === 'ArrowUp' ? NUDGE : -NUDGE);
    } else if (event.key === 'Enter') {
      this.takeTypedAngle();
    }
  }

  /** Lets other evidence have its way: its turn, and around all that was found to be the page. */
  answerBy(name) {
    const angle = answersOf(this.page)[name];
    if (angle === undefined || !this.page.isPictured) return;
    const corners = (foundTurn(this.page) ?? this.turn).corners;
    const cut = corners && cutAround(this.page, angle, corners);
    this.edit({ angle, corners: cut && cornersOf(this.page, angle, cut) });
    describe(`straight by the ${name}, turn ${degreesWords(angle)}`);
  }

  keepWhole(isWhole) {
    if (!this.page.isPictured || isWhole === (this.turn.corners === null)) return;
    const { angle } = this.turn;
    const corners = isWhole ? null : this.cornersToBeginWith(angle);
    this.edit({ angle, corners });
    describe(isWhole ? 'the whole page is kept' : 'the page is cut');
  }

  /** The cut that was found, or one just inside the whole page. */
  cornersToBeginWith(angle) {
    const found = foundTurn(this.page)?.corners;
    if (found) return turnCorners(this.page, found, foundTurn(this.page).angle, angle);
    const { width, height } = this.page;
    const [inX, inY] = [width / 20, height / 20];
    const middle = { left: inX - width / 2, top: inY - height / 2, right: width / 2 - inX };
    return cornersOf(this.page, angle, { ...middle, bottom: height / 2 - inY });
  }

  // Handles.

  makeHandle(handle) {
    const kind = handle.x && handle.y ? 'corner' : 'side';
    const button = make('button', { type: 'button', className: `handle ${kind}` });
    button.addEventListener('pointerdown', (event) => this.grab(event, button));
    button.addEventListener('pointermove', (event) => this.drag(event, button, handle));
    button.addEventListener('lostpointercapture', () => {
      this.isGrabbed = false;
      this.loupe.hidden = true;
      this.draw();
    });
    button.addEventListener('keydown', (event) => this.step(event, handle));
    button.addEventListener('blur', () => {
      this.loupe.hidden = true;
    });
    return button;
  }

  grab(event, button) {
    if (event.button !== 0) return;
    button.setPointerCapture(event.pointerId);
    button.focus();
    this.isGrabbed = true;
    this.isDragged = false; // nothing to take back yet
    event.preventDefault();
  }

  drag(event, button, handle) {
    if (!button.hasPointerCapture(event.pointerId)) return;
    const rim = this.scan.getBoundingClientRect();
    const { view } = this;
    const x = view.left + ((event.clientX - rim.left) / rim.width) * view.width - 0.5;
    const y = view.top + ((event.clientY - rim.top) / rim.height) * view.height - 0.5;
    const [u, v] = toPage(this.page, this.turn.angle, [x, y]);
    this.moveSides(handle, u, v, this.isDragged);
    this.isDragged = true;
  }

  /** Arrow keys move a handle by a pixel of the scan, with shift by ten. */
  step(event, handle) {
    const steps = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };
    if (!(event.key in steps)) return;
    event.preventDefault();
    event.stopPropagation();
    const far = event.shiftKey ? 10 : 1;
    const cut = this.cut();
    const [dx, dy] = steps[event.key];
    this.moveSides(handle, cut[handle.x] + dx * far, cut[handle.y] + dy * far);
  }

  cut() {
    const { page, turn } = this;
    return turn.corners ? cutAround(page, turn.angle, turn.corners) : wholeCut(page, turn.angle);
  }

  /** Moves the sides of a handle to a place of the turned page; the others stay. */
  moveSides(handle, u, v, isContinued = false) {
    const { page, turn } = this;
    const cut = this.cut();
    for (const [side, wanted] of [
      [handle.x, u],
      [handle.y, v],
    ]) {
      if (!side) continue;
      const other = cut[OPPOSITE[side]];
      const isFirst = side === 'left' || side === 'top';
      cut[side] = isFirst ? Math.min(wanted, other - LEAST_SIDE) : Math.max(wanted, other + LEAST_SIDE);
    }
    const within = cutWithin(cut, wholeCut(page, turn.angle));
    this.edit({ angle: turn.angle, corners: cornersOf(page, turn.angle, within) }, isContinued);
    this.showLoupe(this.handlePlaces()[HANDLES.indexOf(handle)]);
  }

  /** Where the handles stand in the picture: at the corners, and at the middles of the sides. */
  handlePlaces() {
    const corners = keptCorners(this.page, this.turn);
    const between = (a, b) => [(a[0] + b[0]) / 2, (a[1] + b[1]) / 2];
    return [...corners, ...corners.map((corner, i) => between(corner, corners[(i + 1) % 4]))];
  }

  /** Shows what lies around a handle, towards the middle of the scan from it. */
  showLoupe([x, y]) {
    const { page, view, loupe } = this;
    const away = 100; // screen pixels
    const fit = this.scan.clientWidth / view.width;
    const towards = (place, size) => (place < size / 2 ? away : -away);
    loupe.hidden = false;
    lay(loupe, {
      left: `${(x - view.left) * fit + towards(x, page.width)}px`,
      top: `${(y - view.top) * fit + towards(y, page.height)}px`,
    });
    const corners = keptCorners(page, this.turn);
    drawLoupe(loupe, this.picture, page, corners, [x, y], fit * LOUPE_SCALE);
  }

  // Drawing.

  draw() {
    if (!this.page?.isPictured || byId('page-view').hidden) return;
    this.drawScan();
    this.drawResult();
  }

  drawScan() {
    const { page, turn } = this;
    const frame = byId('scan-frame');
    const corners = keptCorners(page, turn);
    // The scan keeps its place under a handle that is being dragged.
    if (!this.isGrabbed || !this.view) this.view = viewOf(page, corners);
    const { view } = this;
    const fit = Math.min(
      (frame.clientWidth - 2 * RIM) / view.width,
      (frame.clientHeight - 2 * RIM) / view.height,
    );
    if (fit <= 0) return;
    lay(this.scan, { width: `${view.width * fit}px`, height: `${view.height * fit}px` });
    const across = (pixels) => `${(pixels / view.width) * 100}%`;
    const down = (pixels) => `${(pixels / view.height) * 100}%`;
    const place = { left: across(-view.left), top: down(-view.top) };
    lay(this.scanImage, { ...place, width: across(page.width), height: down(page.height) });
    showOutline(this.outline, page, turn, view);
    this.handlePlaces().forEach(([x, y], i) => {
      const handle = this.handles[i];
      lay(handle, { left: across(x + 0.5 - view.left), top: down(y + 0.5 - view.top) });
      const words = `${HANDLES[i].words}: ${Math.round(x)} across, ${Math.round(y)} down`;
      handle.setAttribute('aria-label', words);
    });
  }

  drawResult() {
    const { page, turn } = this;
    const frame = byId('result-frame');
    const plan = planResult(page, turn, this.journal);
    const isDrawn = plan !== null && this.picture.complete && this.picture.naturalWidth > 0;
    this.canvas.hidden = !isDrawn;
    byId('size').textContent = plan
      ? sizeWords(plan.width, plan.height, page.dpi)
      : 'Nothing of the picture would be left.';
    byId('result-frame').dataset.width = plan?.width ?? 0;
    byId('result-frame').dataset.height = plan?.height ?? 0;
    if (!isDrawn) return;
    const room = [frame.clientWidth - 2 * RIM, frame.clientHeight - 2 * RIM];
    if (Math.min(...room) > 0) drawResult(this.canvas, this.picture, page, plan, ...room);
    const scan = this.decisions.choiceOf(page) === 'leave' ? ' It is not made unless you accept it.' : '';
    this.canvas.setAttribute('aria-label', `The page as it will be, ${plan.width} by ${plan.height} pixels.${scan}`);
  }

  showGuides() {
    byId('result-frame').classList.toggle('guided', byId('guides').checked);
  }

  /** Lets the cross hair follow the pointer: what is straight runs along it. */
  moveCross(event) {
    const rim = byId('result-frame').getBoundingClientRect();
    byId('cross-x').style.left = `${event.clientX - rim.left}px`;
    byId('cross-y').style.top = `${event.clientY - rim.top}px`;
  }

  /** Does what a key asks for; false for a key of somebody else. */
  press(key, isShifted) {
    const nudge = isShifted ? 10 * NUDGE : NUDGE;
    const keys = {
      Escape: () => this.actions.close(),
      Backspace: () => this.actions.close(),
      ArrowLeft: () => this.actions.step(-1),
      ArrowRight: () => this.actions.step(1),
      ',': () => this.nudge(-nudge),
      '.': () => this.nudge(nudge),
      '<': () => this.nudge(-nudge),
      '>': () => this.nudge(nudge),
      ';': () => this.nudge(-nudge),
      ':': () => this.nudge(nudge),
      '-': () => this.nudge(-NUDGE),
      '+': () => this.nudge(NUDGE),
      '=': () => this.nudge(NUDGE),
      '[': () => this.nudge(-90),
      ']': () => this.nudge(90),
      1: () => this.answerBy('paper'),
      2: () => this.answerBy('print'),
      3: () => this.answerBy('bar'),
      w: () => this.keepWhole(!byId('whole').checked),
      g: () => byId('guides').click(),
    };
    if (!(key in keys)) return false;
    keys[key]();
    return true;
  }
}
