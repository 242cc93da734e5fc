// The journal as the command put it into the page.

import { countWords } from './words.js';

/**
 * Reads the journal: its name, the engine's limits, the words of reasons, and the pages, each with
 * `place` in the journal, `title` as it is shown, `key` that holds it apart from all others, and
 * `isPictured`. Pages that could not be read, or whose input has changed, are not pictured and are
 * not decided on.
 */
export function readJournal(text) {
  const journal = JSON.parse(text);
  const unpictured = new Set(journal.unpictured);
  journal.pages.forEach((page, place) => {
    page.place = place;
    page.key = `${page.fileHex ?? page.file}\n${page.page ?? 0}`;
    page.title = titleOf(page);
    page.isPictured = !unpictured.has(place);
    page.picture = `${String(place + 1).padStart(6, '0')}.jpg`;
    page.searched = (page.name ?? page.file).toLowerCase();
  });
  return journal;
}

/** The file's name without its folders, and the page where there are several. */
function titleOf(page) {
  const name = page.name ?? page.file;
  const short = name.slice(name.lastIndexOf('/') + 1) || name;
  return page.pages > 1 ? `${short} [${page.page}]` : short;
}

/** Why a page without a picture has none. */
export function absenceWords(page) {
  return page.confidence === 'unread'
    ? 'cannot be shown: it could not be read'
    : 'cannot be shown: it is no scan, or its file is missing, damaged or changed since';
}

/** What the window's title and heading say. */
export function headline(journal) {
  return `${countWords(journal.pages.length, 'page')} of ${journal.journal}`;
}
