// The contact sheet: a tile a page, of which only those in sight are in the document.

import { make } from './dom.js';
import { makeOutline, showOutline } from './drawing.js';
import { absenceWords } from './journal.js';
import { STATE_WORDS } from './filters.js';
import { CONFIDENCE_WORDS, degreesWords, reasonWords } from './words.js';

const STATE_MARKS = { open: '', accepted: '✓', edited: '✎', left: '–' };

/** Rows of tiles that are kept above and below those in sight. */
const ROWS_BEYOND = 2;

/** Screen pixels; the style has the same. */
const TILE = { width: 208, height: 296, gap: 16 };

export class Sheet {
  /**
   * Shows pages in `frame`, the element that scrolls. `actions` has accept, leave, open and select,
   * each called with a page.
   */
  constructor(frame, journal, decisions, actions) {
    this.frame = frame;
    this.journal = journal;
    this.decisions = decisions;
    this.actions = actions;
    this.room = make('div', { className: 'room' });
    frame.append(this.room);
    this.tiles = new Map(); // by place among the pages shown
    this.spare = [];
    this.pages = [];
    this.current = 0;
    this.columns = 1;
    frame.addEventListener('scroll', () => this.update(), { passive: true });
    new ResizeObserver(() => this.layOut()).observe(frame);
  }

  /** Shows these pages; the page that was current stays so where it is among them. */
  show(pages) {
    const page = this.pages[this.current];
    const place = page ? pages.indexOf(page) : -1;
    this.pages = pages;
    this.current = place >= 0 ? place : Math.max(0, Math.min(this.current, pages.length - 1));
    this.layOut();
    this.refresh();
  }

  get page() {
    return this.pages[this.current];
  }

  layOut() {
    const width = this.frame.clientWidth - TILE.gap;
    if (width <= 0) return;
    this.columns = Math.max(1, Math.floor(width / (TILE.width + TILE.gap)));
    const used = this.columns * (TILE.width + TILE.gap) - TILE.gap;
    this.left = TILE.gap + Math.max(0, Math.floor((width - TILE.gap - used) / 2));
    const rows = Math.ceil(this.pages.length / this.columns);
    this.room.style.height = `${rows * (TILE.height + TILE.gap) + TILE.gap}px`;
    this.update();
  }

  rowTop(place) {
    return TILE.gap + Math.floor(place / this.columns) * (TILE.height + TILE.gap);
  }

  /** Puts the tiles that are in sight where they belong. */
  update() {
    const pitch = TILE.height + TILE.gap;
    const top = this.frame.scrollTop;
    const first = Math.max(0, Math.floor(top / pitch) - ROWS_BEYOND) * this.columns;
    const bottom = top + this.frame.clientHeight;
    const end = Math.min(this.pages.length, (Math.ceil(bottom / pitch) + ROWS_BEYOND) * this.columns);
    for (const [place, tile] of this.tiles) {
      const isFocused = tile.element === document.activeElement;
      if (place >= this.pages.length || ((place < first || place >= end) && !isFocused)) {
        this.tiles.delete(place);
        this.spare.push(tile);
        tile.element.hidden = true;
      }
    }
    for (let place = first; place < end; ++place) this.put(place);
  }

  put(place) {
    let tile = this.tiles.get(place);
    if (!tile) {
      tile = this.spare.pop() ?? this.makeTile();
      this.tiles.set(place, tile);
      tile.page = null;
    }
    tile.element.hidden = false;
    tile.element.style.left = `${this.left + (place % this.columns) * (TILE.width + TILE.gap)}px`;
    tile.element.style.top = `${this.rowTop(place)}px`;
    this.fill(tile, place);
  }

  makeTile() {
    const tile = { page: null, place: 0 };
    tile.image = make('img', { alt: '', decoding: 'async', draggable: false });
    tile.outline = makeOutline();
    tile.absence = make('p', { className: 'absence' });
    tile.mark = make('span', { className: 'mark', 'aria-hidden': 'true' });
    tile.badge = make('span', { className: 'badge' });
    tile.angle = make('span', { className: 'angle' });
    tile.name = make('h3', { className: 'name' });
    tile.why = make('p', { className: 'why' });
    const button = (label, action) => {
      const made = make('button', { type: 'button', textContent: label, tabIndex: -1 });
      made.addEventListener('click', (event) => {
        event.stopPropagation();
        this.select(tile.place);
        this.actions[action](tile.page);
      });
      return made;
    };
    tile.buttons = [button('Accept', 'accept'), button('Leave', 'leave'), button('Edit', 'open')];
    const scan = make('div', { className: 'scan' }, tile.image, tile.outline, tile.absence);
    tile.scan = scan;
    tile.element = make(
      'article',
      { className: 'tile', tabIndex: -1 },
      make('div', { className: 'mat' }, scan, tile.mark),
      make('div', { className: 'buttons' }, ...tile.buttons),
      tile.name,
      make('p', { className: 'facts' }, tile.badge, tile.angle),
      tile.why,
    );
    tile.element.addEventListener('click', () => this.select(tile.place));
    tile.element.addEventListener('focus', () => this.setCurrent(tile.place));
    tile.element.addEventListener('dblclick', () => this.actions.open(tile.page));
    this.room.append(tile.element);
    return tile;
  }

  fill(tile, place) {
    const page = this.pages[place];
    tile.place = place;
    const isCurrent = place === this.current;
    tile.element.tabIndex = isCurrent ? 0 : -1;
    tile.element.classList.toggle('current', isCurrent);
    for (const button of tile.buttons) button.tabIndex = isCurrent ? 0 : -1;
    tile.element.setAttribute('aria-posinset', place + 1);
    tile.element.setAttribute('aria-setsize', this.pages.length);
    if (tile.page === page) return;
    tile.page = page;
    this.fillScan(tile, page);
    this.fillFacts(tile, page);
  }

  fillScan(tile, page) {
    tile.scan.classList.toggle('absent', !page.isPictured);
    tile.absence.textContent = page.isPictured ? '' : absenceWords(page);
    if (!page.isPictured) {
      tile.image.removeAttribute('src');
      tile.scan.style.width = '100%';
      tile.scan.style.height = '100%';
      return;
    }
    const room = TILE.width - 24;
    const fit = Math.min(room / page.width, room / page.height);
    tile.scan.style.width = `${Math.max(8, page.width * fit)}px`;
    tile.scan.style.height = `${Math.max(8, page.height * fit)}px`;
    tile.image.src = `${this.journal.thumbnails}/${page.picture}`;
  }

  fillFacts(tile, page) {
    const { decisions } = this;
    tile.decision = decisions.of(page);
    const state = decisions.stateOf(page);
    const turn = decisions.turnOf(page);
    const choice = decisions.choiceOf(page);
    const whole = { left: 0, top: 0, width: page.width, height: page.height };
    if (page.isPictured) showOutline(tile.outline, page, turn, whole);
    tile.element.dataset.confidence = page.confidence;
    tile.element.dataset.state = state;
    tile.element.dataset.choice = choice;
    tile.outline.toggleAttribute('hidden', !page.isPictured || !turn);
    tile.mark.textContent = STATE_MARKS[state];
    tile.badge.textContent = CONFIDENCE_WORDS[page.confidence];
    tile.angle.textContent = turn ? degreesWords(turn.angle) : '';
    tile.name.textContent = page.title;
    tile.name.title = page.name ?? page.file;
    const why = page.reasons.map((reason) => reasonWords(reason, this.journal.reasons)).join('; ');
    tile.why.textContent = why;
    tile.why.title = why;
    for (const button of tile.buttons) button.hidden = !page.isPictured;
    const becomes = choice === 'apply' ? 'will be straightened' : 'will be left as it is';
    const decided = state === 'open' ? '' : `, ${STATE_WORDS[state]}`;
    const angle = turn ? `, turn ${degreesWords(turn.angle)}` : '';
    const confidence = CONFIDENCE_WORDS[page.confidence];
    tile.element.setAttribute(
      'aria-label',
      `${page.title}: ${confidence}${angle}${decided}, ${page.isPictured ? becomes : absenceWords(page)}. ${why}`,
    );
  }

  /** Shows anew what may have changed about the pages in sight. */
  refresh() {
    for (const [place, tile] of this.tiles) {
      const isSame = tile.page && this.pages[place] === tile.page;
      if (isSame && tile.decision !== this.decisions.of(tile.page)) this.fillFacts(tile, tile.page);
    }
  }

  setCurrent(place) {
    if (place === this.current) return;
    this.current = place;
    for (const [other, tile] of this.tiles) this.fill(tile, other);
    this.actions.select(this.page);
  }

  /** Makes a page current and brings the focus to it. */
  select(place) {
    if (this.pages.length === 0) return;
    const wanted = Math.max(0, Math.min(place, this.pages.length - 1));
    this.reveal(wanted);
    this.setCurrent(wanted);
    this.tiles.get(wanted)?.element.focus({ preventScroll: true });
  }

  reveal(place) {
    const top = this.rowTop(place);
    const { scrollTop, clientHeight } = this.frame;
    if (top - TILE.gap < scrollTop) this.frame.scrollTop = top - TILE.gap;
    const bottom = top + TILE.height + TILE.gap;
    if (bottom > scrollTop + clientHeight) this.frame.scrollTop = bottom - clientHeight;
    this.update();
  }

  /** Does what a key asks for; false for a key that moves nothing. */
  move(key) {
    const rows = Math.max(1, Math.floor(this.frame.clientHeight / (TILE.height + TILE.gap)));
    const steps = {
      ArrowLeft: -1,
      ArrowRight: 1,
      ArrowUp: -this.columns,
      ArrowDown: this.columns,
      PageUp: -rows * this.columns,
      PageDown: rows * this.columns,
      Home: -Infinity,
      End: Infinity,
    };
    if (!(key in steps)) return false;
    const place = this.current + steps[key];
    // Up from the first row and down from the last go nowhere, so that the column is kept.
    const isOff = key.startsWith('Arrow') && (place < 0 || place >= this.pages.length);
    this.select(isOff ? this.current : place);
    return true;
  }
}
