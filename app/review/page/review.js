// The review page: its two views, its keys, and what goes in and out.

import { announce, byId, isTyping, make } from './dom.js';
import { absenceWords, headline, readJournal } from './journal.js';
import { Decisions } from './decisions.js';
import { Filters } from './filters.js';
import { Sheet } from './sheet.js';
import { PageView } from './page_view.js';
import { countWords } from './words.js';

const THEMES = ['light dark', 'light', 'dark'];
const THEME_WORDS = { 'light dark': 'Colours: as the system', light: 'Colours: light', dark: 'Colours: dark' };
const THEME_KEY = 'vorlane-review-colours';

/** The browser's storage, or null where it gives none to pages from the file system. */
function browserStorage() {
  try {
    window.localStorage.getItem(THEME_KEY);
    return window.localStorage;
  } catch {
    return null;
  }
}

const storage = browserStorage();
const journal = readJournal(byId('journal').textContent);
const decisions = new Decisions(journal, storage);
const filters = new Filters(journal, decisions);
const sheet = new Sheet(byId('sheet'), journal, decisions, {
  accept: (page) => accept(page),
  leave: (page) => leave(page),
  open: (page) => openPage(page),
  select: () => {},
});
const pageView = new PageView(journal, decisions, {
  close: () => closePage(),
  step: (by) => stepPage(by),
  changed: () => showProgress(),
  accept: (page) => accept(page),
  leave: (page) => leave(page),
  reset: (page) => reset(page),
  undo: () => undo(),
});

function isPageOpen() {
  return !byId('page-view').hidden;
}

// What is shown.

function showProgress() {
  const changes = decisions.changes().length;
  const count = decisions.count().toLocaleString('en');
  byId('progress').textContent = `${count} of ${countWords(journal.pages.length, 'page')} decided`;
  byId('save-count').textContent = changes === 0 ? '' : changes.toLocaleString('en');
  byId('save').disabled = changes === 0;
  byId('unkept').hidden = decisions.isKept;
}

function showChoices(group, counts) {
  const box = byId(`choices-${group}`);
  const chosen = filters.chosen[group];
  const focusedWord = document.activeElement?.dataset?.word;
  const choices = filters
    .choicesOf(group)
    .filter(([word]) => counts.has(word) || chosen.has(word))
    .map(([word, words]) => {
      const field = make('input', { type: 'checkbox', checked: chosen.has(word) });
      field.dataset.word = word;
      field.addEventListener('change', () => {
        filters.toggle(group, word);
        showPages();
      });
      const count = make('span', {
        className: 'count',
        textContent: (counts.get(word) ?? 0).toLocaleString('en'),
      });
      const label = make('label', {}, field, make('span', { className: `word ${word}`, textContent: words }), count);
      return { label, field };
    });
  box.replaceChildren(...choices.map(({ label }) => label));
  choices.find(({ field }) => field.dataset.word === focusedWord)?.field.focus();
  box.parentElement.hidden = choices.length === 0;
}

/** Lets the filters choose anew and shows what they let through. */
function showPages() {
  const { shown, counts } = filters.apply();
  for (const group of ['confidence', 'state', 'reason']) showChoices(group, counts[group]);
  sheet.show(shown);
  byId('shown').textContent = filters.isFiltering()
    ? `${shown.length.toLocaleString('en')} of ${countWords(journal.pages.length, 'page')}`
    : countWords(journal.pages.length, 'page');
  byId('clear').hidden = !filters.isFiltering();
  const isNothing = shown.length === 0;
  byId('nothing').hidden = !isNothing;
  byId('nothing-words').textContent =
    journal.pages.length === 0 ? 'The journal tells of no page.' : 'No page is like this.';
}

// Decisions.

/** What follows a decision: the filters count anew, and the next page is there. */
function decided(page, words) {
  announce(`${page.title}: ${words}`);
  showProgress();
  const place = sheet.current;
  const before = sheet.page;
  showPages();
  const isGone = sheet.page !== before || before !== page;
  const next = isGone ? sheet.current : place + 1;
  if (next >= sheet.pages.length) {
    if (isPageOpen()) openPage(page);
    else sheet.select(sheet.current);
  } else if (isPageOpen()) {
    openPage(sheet.pages[next]);
  } else {
    sheet.select(next);
  }
}

function accept(page) {
  if (decisions.accept(page)) decided(page, 'accepted');
  else announce(page.isPictured ? 'Nothing was found on this page: edit it to have it made.' : `${page.title} ${absenceWords(page)}`);
}

function leave(page) {
  if (decisions.leave(page)) decided(page, 'left as it is');
  else announce(`${page.title} ${absenceWords(page)}`);
}

function reset(page) {
  if (!decisions.of(page)) return;
  decisions.set(page, null);
  announce(`${page.title}: as it was found`);
  showAll();
}

function undo() {
  const page = decisions.undo();
  if (!page) {
    announce('There is nothing to take back.');
    return;
  }
  announce(`${page.title}: the last step is taken back`);
  showAll();
  const place = sheet.pages.indexOf(page);
  if (isPageOpen()) openPage(page);
  else if (place >= 0) sheet.select(place);
}

function showAll() {
  showProgress();
  showPages();
  if (isPageOpen()) pageView.refresh();
}

// One page.

function openPage(page) {
  if (!page) return;
  const hash = `#page=${page.place + 1}`;
  if (window.location.hash === hash) showPage();
  else window.location.hash = hash;
}

function closePage() {
  window.location.hash = '#';
}

function stepPage(by) {
  const place = sheet.pages.indexOf(pageView.page) + by;
  if (place >= 0 && place < sheet.pages.length) openPage(sheet.pages[place]);
  else announce(by < 0 ? 'This is the first page.' : 'This is the last page.');
}

/** Shows what the address asks for, so that the browser's back and forward do as they do anywhere. */
function showPage() {
  const asked = /^#page=(\d+)$/.exec(window.location.hash);
  const page = asked ? journal.pages[Number(asked[1]) - 1] : undefined;
  const wasOpen = isPageOpen();
  byId('page-view').hidden = !page;
  byId('sheet-view').hidden = Boolean(page);
  if (page) {
    const place = sheet.pages.indexOf(page);
    if (place >= 0) sheet.current = place;
    pageView.open(page, place < 0 ? '' : `${(place + 1).toLocaleString('en')} of ${sheet.pages.length.toLocaleString('en')}`);
    if (!wasOpen) byId('page-title').focus();
    preload(sheet.pages[place + 1]);
  } else {
    sheet.layOut();
    sheet.refresh();
    if (wasOpen) sheet.select(sheet.current);
  }
}

function preload(page) {
  if (page?.isPictured) new Image().src = `${journal.pictures}/${page.picture}`;
}

// In and out.

function decisionsName() {
  const name = journal.journal.slice(journal.journal.lastIndexOf('/') + 1);
  return `${name.replace(/\.(jsonl|json|ndjson)$/, '')}.decisions.jsonl`;
}

function save() {
  const count = decisions.changes().length;
  if (count === 0) {
    announce('Nothing is changed yet.');
    return;
  }
  const file = new Blob([decisions.toLines()], { type: 'application/x-ndjson' });
  const link = make('a', { href: URL.createObjectURL(file), download: decisionsName() });
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
  decisions.isSaved = true;
  const quoted = (name) => (/^[\w./-]+$/.test(name) ? name : `'${name.replaceAll("'", "'\\''")}'`);
  byId('saved-count').textContent = `${countWords(count, 'decision')} ${count === 1 ? 'is' : 'are'} in`;
  byId('saved-name').textContent = decisionsName();
  byId('saved-command').textContent =
    `vorlane apply ${quoted(journal.journal)} --decisions ${quoted(decisionsName())} -o out/`;
  byId('saved').showModal();
}

async function load(file) {
  try {
    const { taken, strange } = decisions.takeLines(await file.text());
    const left = strange === 0 ? '' : `; ${countWords(strange, 'line')} left out: no such page, or its file has changed`;
    announce(`${countWords(taken, 'decision')} taken from ${file.name}${left}`);
  } catch {
    announce(`${file.name} is no file of decisions.`);
  }
  showAll();
}

function setTheme(theme) {
  document.documentElement.style.colorScheme = theme;
  byId('theme').textContent = THEME_WORDS[theme];
}

function nextTheme() {
  const at = THEMES.indexOf(storage?.getItem(THEME_KEY) ?? document.documentElement.style.colorScheme);
  const theme = THEMES[(Math.max(at, 0) + 1) % THEMES.length];
  storage?.setItem(THEME_KEY, theme);
  setTheme(theme);
}

// Keys.

function pressAnywhere(key) {
  const page = isPageOpen() ? pageView.page : sheet.page;
  const keys = {
    a: () => page && accept(page),
    l: () => page && leave(page),
    r: () => page && reset(page),
    u: undo,
    s: save,
    '/': () => {
      closePage();
      byId('search').focus();
      byId('search').select();
    },
    '?': () => byId('help').showModal(),
  };
  if (!(key in keys)) return false;
  keys[key]();
  return true;
}

function pressOnSheet(event) {
  if (event.target.closest('button, label, a, summary')) return false;
  if (event.key === 'Enter' || event.key === 'e') {
    openPage(sheet.page);
    return true;
  }
  return sheet.move(event.key);
}

function press(event) {
  if (document.querySelector('dialog[open]') || event.altKey) return;
  const isControl = event.ctrlKey || event.metaKey;
  if (isControl && event.key === 's') {
    event.preventDefault();
    save();
    return;
  }
  if (isTyping(event.target)) {
    if (event.key === 'Escape') event.target.blur();
    return;
  }
  if (isControl && event.key === 'z') undo();
  if (isControl) return;
  const key = event.key.length === 1 ? event.key.toLowerCase() : event.key;
  const isDone = isPageOpen() ? pageView.press(key, event.shiftKey) : pressOnSheet(event);
  if (isDone || pressAnywhere(key)) event.preventDefault();
}

// The start.

function connect() {
  byId('search').addEventListener('input', () => {
    filters.text = byId('search').value;
    showPages();
  });
  byId('order').addEventListener('change', () => {
    filters.setOrder(byId('order').value);
    showPages();
  });
  byId('clear').addEventListener('click', () => {
    filters.clear();
    byId('search').value = '';
    showPages();
    byId('search').focus();
  });
  byId('save').addEventListener('click', save);
  byId('load').addEventListener('click', () => byId('load-file').click());
  byId('load-file').addEventListener('change', () => {
    const [file] = byId('load-file').files;
    byId('load-file').value = '';
    if (file) load(file);
  });
  byId('theme').addEventListener('click', nextTheme);
  byId('show-help').addEventListener('click', () => byId('help').showModal());
  document.addEventListener('keydown', press);
  window.addEventListener('hashchange', showPage);
  window.addEventListener('beforeunload', (event) => {
    // What the browser keeps is there again; the rest would be lost.
    if (!decisions.isKept && !decisions.isSaved) event.preventDefault();
  });
}

function start() {
  document.title = `Review: ${journal.journal}`;
  byId('headline').textContent = headline(journal);
  const theme = storage?.getItem(THEME_KEY);
  setTheme(THEMES.includes(theme) ? theme : THEMES[0]);
  byId('filters').open = !window.matchMedia('(max-width: 720px)').matches;
  connect();
  showProgress();
  showPages();
  showPage();
  if (!isPageOpen()) sheet.select(0);
  if (decisions.dropped > 0) {
    announce(`${countWords(decisions.dropped, 'decision')} dropped: the files have changed since.`);
  }
}

start();
