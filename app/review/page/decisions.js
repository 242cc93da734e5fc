// What the person at the page has decided, kept in the browser while it is worked on, and the file
// that `vorlane apply` takes.

/** What apply does with a page that nobody decided on. */
function isAppliedAnyway(page) {
  return page.confidence === 'sure' || page.confidence === 'likely';
}

function isSameTurn(a, b) {
  return a.angle === b.angle && JSON.stringify(a.corners) === JSON.stringify(b.corners);
}

function isPlace(place) {
  return Array.isArray(place) && place.length === 2 && place.every(Number.isFinite);
}

function isTurn({ angle, corners }) {
  const isCut = Array.isArray(corners) && corners.length === 4 && corners.every(isPlace);
  return Number.isFinite(angle) && Math.abs(angle) <= 180 && (corners === null || isCut);
}

/** The turn that was found: angle and corners, null for the whole page; null where none was. */
export function foundTurn(page) {
  const turn = { angle: page.angle, corners: page.corners ?? null };
  return isTurn(turn) ? turn : null; // a journal may have been edited
}

/**
 * Decisions by page. One is {choice: 'apply' or 'leave', turn: as foundTurn or null}; a turn of
 * null stands for the one that was found.
 */
export class Decisions {
  /** `storage` is the browser's, or null where there is none. */
  constructor(journal, storage) {
    this.journal = journal;
    this.storage = storage;
    this.prefix = `vorlane-review:${journal.key}:`;
    this.byPlace = new Map();
    this.undoable = [];
    this.isKept = storage !== null;
    this.isSaved = true; // nothing to lose but what the browser keeps
    this.dropped = 0; // decisions about inputs that have changed since
    this.load();
  }

  load() {
    if (!this.storage) return;
    const pages = new Map(this.journal.pages.map((page) => [page.key, page]));
    for (let i = 0; i < this.storage.length; ++i) {
      const name = this.storage.key(i);
      if (!name.startsWith(this.prefix)) continue;
      const page = pages.get(name.slice(this.prefix.length));
      if (!page) continue;
      this.takeKept(page, this.storage.getItem(name));
    }
  }

  takeKept(page, text) {
    const { decision, inputSize, inputModified } = JSON.parse(text);
    if (inputSize === page.inputSize && inputModified === page.inputModified) {
      this.byPlace.set(page.place, decision);
    } else {
      ++this.dropped;
    }
  }

  of(page) {
    return this.byPlace.get(page.place) ?? null;
  }

  /** Sets a decision, or takes it back with null. */
  set(page, decision) {
    this.undoable.push({ page, decision: this.of(page) });
    this.put(page, decision);
  }

  /** Takes the last step back; returns its page, or null when there is none. */
  undo() {
    const step = this.undoable.pop();
    if (!step) return null;
    this.put(step.page, step.decision);
    return step.page;
  }

  canUndo() {
    return this.undoable.length > 0;
  }

  put(page, decision) {
    this.isSaved = false;
    if (decision) this.byPlace.set(page.place, decision);
    else this.byPlace.delete(page.place);
    if (!this.storage) return;
    try {
      const { inputSize, inputModified } = page;
      const name = this.prefix + page.key;
      if (decision) this.storage.setItem(name, JSON.stringify({ decision, inputSize, inputModified }));
      else this.storage.removeItem(name);
    } catch {
      this.isKept = false; // the storage is full
    }
  }

  /** The turn that stands for a page: the person's, else the one found; null where there is none. */
  turnOf(page) {
    return this.of(page)?.turn ?? foundTurn(page);
  }

  /** What will become of a page: 'apply' or 'leave'. */
  choiceOf(page) {
    return this.of(page)?.choice ?? (isAppliedAnyway(page) ? 'apply' : 'leave');
  }

  /** How far the person is with a page: 'open', 'accepted', 'edited' or 'left'. */
  stateOf(page) {
    const decision = this.of(page);
    if (!decision) return 'open';
    if (decision.choice === 'leave') return 'left';
    return decision.turn ? 'edited' : 'accepted';
  }

  /** Accepts a page as it stands; false where there is no turn to apply. */
  accept(page) {
    if (!page.isPictured || !this.turnOf(page)) return false;
    this.set(page, { choice: 'apply', turn: this.of(page)?.turn ?? null });
    return true;
  }

  leave(page) {
    if (!page.isPictured) return false;
    this.set(page, { choice: 'leave', turn: this.of(page)?.turn ?? null });
    return true;
  }

  /** Gives a page another turn, which accepts it. `isContinued`: a part of the last step. */
  edit(page, turn, isContinued = false) {
    const found = foundTurn(page);
    const decision = { choice: 'apply', turn: found && isSameTurn(turn, found) ? null : turn };
    if (isContinued) this.put(page, decision);
    else this.set(page, decision);
  }

  /** Whether apply makes something else of a page than it would have without the person. */
  isChange(page) {
    const decision = this.of(page);
    if (!decision) return false;
    const isEdited = decision.choice === 'apply' && decision.turn !== null;
    return isEdited || (decision.choice === 'apply') !== isAppliedAnyway(page);
  }

  /** How many pages are decided on. */
  count() {
    return this.byPlace.size;
  }

  /** The pages with a change, in the journal's order. */
  changes() {
    const places = [...this.byPlace.keys()].sort((a, b) => a - b);
    return places.map((place) => this.journal.pages[place]).filter((page) => this.isChange(page));
  }

  /** The decisions file: a JSON line for each page with a change. */
  toLines() {
    return this.changes()
      .map((page) => `${JSON.stringify(this.lineOf(page))}\n`)
      .join('');
  }

  lineOf(page) {
    const line = {};
    for (const key of ['file', 'fileHex', 'dir', 'dirHex', 'page', 'pages', 'rotate']) {
      if (page[key] !== undefined) line[key] = page[key];
    }
    line.decision = this.choiceOf(page);
    if (line.decision === 'apply') Object.assign(line, this.turnOf(page));
    if (page.inputSize !== undefined) line.inputSize = page.inputSize;
    if (page.inputModified !== undefined) line.inputModified = page.inputModified;
    return line;
  }

  /** Takes decisions from such a file; returns how many, and how many are about no page here. */
  takeLines(text) {
    const pages = new Map(this.journal.pages.map((page) => [page.key, page]));
    let taken = 0;
    let strange = 0;
    for (const line of text.split('\n').filter((words) => words.trim() !== '')) {
      const told = JSON.parse(line);
      const page = pages.get(`${told.fileHex ?? told.file}\n${told.page ?? 0}`);
      const isSameInput = told.inputModified === undefined || told.inputModified === page?.inputModified;
      if (!page || !page.isPictured || !isSameInput) {
        ++strange;
      } else {
        this.takeLine(page, told);
        ++taken;
      }
    }
    return { taken, strange };
  }

  takeLine(page, { decision = 'apply', angle, corners = null }) {
    if (decision === 'leave') this.leave(page);
    else if (isTurn({ angle, corners })) this.edit(page, { angle, corners });
    else if (angle === undefined) this.accept(page);
    else throw new TypeError('this is no turn');
  }
}
