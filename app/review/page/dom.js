// Small helpers for the document. Text from the journal gets into it as text only, never as markup.

/** The element with this id. */
export function byId(id) {
  return document.getElementById(id);
}

/** Makes an element with properties (those with a dash as attributes) and children. */
export function make(tag, properties = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name.includes('-') || name === 'role') made.setAttribute(name, value);
    else made[name] = value;
  }
  made.append(...children);
  return made;
}

/** Makes an SVG element with attributes. */
export function makeShape(tag, attributes = {}) {
  const made = document.createElementNS('http://www.w3.org/2000/svg', tag);
  for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
  return made;
}

/** Tells people who do not see the page what has happened, and shows it at its foot. */
export function announce(words) {
  say(words, true);
}

/** The same for what everybody else sees anyway. */
export function describe(words) {
  say(words, false);
}

/** Milliseconds; the style lets them fade in somewhat less. */
const WORDS_STAY = 5000;
let forgetting = 0;

function say(words, isShown) {
  const status = byId('status');
  clearTimeout(forgetting);
  forgetting = setTimeout(() => status.replaceChildren(), WORDS_STAY);
  status.classList.toggle('hidden', !isShown);
  // The same words twice are told twice.
  status.textContent = '';
  requestAnimationFrame(() => {
    status.textContent = words;
  });
}

/** Whether keys go into a field and are no commands. */
export function isTyping(target) {
  return target instanceof HTMLElement && target.matches('input:not([type=checkbox]), select, textarea');
}
