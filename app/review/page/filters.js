// Which pages are shown: those that one word of every group lets through.

import { CONFIDENCES, CONFIDENCE_WORDS } from './words.js';

export const STATE_WORDS = {
  open: 'not decided',
  accepted: 'accepted',
  edited: 'edited',
  left: 'left as it is',
};

const GROUPS = ['confidence', 'state', 'reason'];

/** The codes of all reasons, the most frequent first. */
function reasonsOf(journal) {
  const times = new Map();
  for (const page of journal.pages) {
    for (const { code } of page.reasons) times.set(code, (times.get(code) ?? 0) + 1);
  }
  return [...times].sort((a, b) => b[1] - a[1]).map(([code]) => code);
}

export class Filters {
  constructor(journal, decisions) {
    this.journal = journal;
    this.decisions = decisions;
    this.chosen = { confidence: new Set(), state: new Set(), reason: new Set() };
    this.text = '';
    this.reasons = reasonsOf(journal);
    this.setOrder('unsure');
  }

  /** 'unsure': the least sure first; 'journal'. */
  setOrder(order) {
    const rank = Object.fromEntries(CONFIDENCES.map((word, place) => [word, place]));
    this.ordered = [...this.journal.pages];
    if (order === 'unsure') {
      this.ordered.sort((a, b) => rank[a.confidence] - rank[b.confidence] || a.place - b.place);
    }
  }

  wordsOf(page, group) {
    if (group === 'confidence') return [page.confidence];
    if (group === 'state') return [this.decisions.stateOf(page)];
    return page.reasons.map((reason) => reason.code);
  }

  lets(page, group) {
    const chosen = this.chosen[group];
    return chosen.size === 0 || this.wordsOf(page, group).some((word) => chosen.has(word));
  }

  isFiltering() {
    return this.text !== '' || GROUPS.some((group) => this.chosen[group].size > 0);
  }

  clear() {
    for (const group of GROUPS) this.chosen[group].clear();
    this.text = '';
  }

  toggle(group, word) {
    const chosen = this.chosen[group];
    if (!chosen.delete(word)) chosen.add(word);
  }

  /** The pages that are shown, and for each word of each group how many it stands for among what
   * the other groups let through. */
  apply() {
    const text = this.text.toLowerCase();
    const counts = { confidence: new Map(), state: new Map(), reason: new Map() };
    const shown = [];
    for (const page of this.ordered) {
      if (text !== '' && !page.searched.includes(text)) continue;
      const refusing = GROUPS.filter((group) => !this.lets(page, group));
      if (refusing.length > 1) continue;
      if (refusing.length === 0) shown.push(page);
      // A word of the one group that refuses the page would let it through.
      for (const group of refusing.length === 0 ? GROUPS : refusing) {
        for (const word of this.wordsOf(page, group)) {
          counts[group].set(word, (counts[group].get(word) ?? 0) + 1);
        }
      }
    }
    return { shown, counts };
  }

  /** Every word of a group that some page of the journal has, in the order to show them, with how
   * it is shown. */
  choicesOf(group) {
    if (group === 'confidence') return CONFIDENCES.map((word) => [word, CONFIDENCE_WORDS[word]]);
    if (group === 'state') return Object.entries(STATE_WORDS);
    return this.reasons.map((code) => [code, this.journal.reasons[code] || code]);
  }
}
