// What is shown of numbers and codes, in words.

const SIDES = ['top', 'right', 'bottom', 'left'];

/** Confidences, the least first: the order in which pages are looked at. */
export const CONFIDENCES = ['doubtful', 'refused', 'unread', 'likely', 'sure'];

export const CONFIDENCE_WORDS = {
  doubtful: 'doubtful',
  refused: 'not found',
  unread: 'unreadable',
  likely: 'likely',
  sure: 'sure',
};

const EVIDENCE_WORDS = {
  top: 'upper side',
  right: 'right side',
  bottom: 'lower side',
  left: 'left side',
  print: 'print',
  bar: 'bar',
  vote: 'borders together',
};

const VERDICT_WORDS = {
  believed: 'believed',
  disagrees: 'disagrees',
  'too-weak': 'too weak',
  unseen: 'not seen',
  frame: 'the picture’s edge',
};

export function evidenceWords(name) {
  return EVIDENCE_WORDS[name] ?? name;
}

export function verdictWords(verdict) {
  return VERDICT_WORDS[verdict] ?? verdict;
}

/** "+1.35°", with a true minus sign. */
export function degreesWords(degrees) {
  const text = Math.abs(degrees).toFixed(2);
  const sign = Number(text) === 0 ? '' : degrees < 0 ? '−' : '+';
  return `${sign}${text}°`;
}

function valueWords({ value, unit }) {
  if (unit === undefined || typeof value !== 'number') return '';
  if (unit === 'degrees') return ` (${Math.abs(value).toFixed(2)}°)`;
  if (unit === 'share') return ` (${(value * 100).toFixed(1)} %)`;
  if (unit === 'sides') return ` (${value} ${value === 1 ? 'side' : 'sides'})`;
  return ` (${unit} ${Number(value.toPrecision(3))})`;
}

/** A reason with its value: "the print lies off the paper (0.70°)". */
export function reasonWords(reason, wordsByCode) {
  return (reason.words ?? wordsByCode[reason.code] ?? reason.code) + valueWords(reason);
}

/** "1 page", "3 pages". */
export function countWords(count, one, many = `${one}s`) {
  return `${count.toLocaleString('en')} ${count === 1 ? one : many}`;
}

/** "1240 × 1754 px", with millimetres where the resolution is known. */
export function sizeWords(width, height, dpi) {
  const pixels = `${width} × ${height} px`;
  const [across, down] = dpi ?? [0, 0];
  if (!(across > 0 && down > 0)) return pixels;
  const millimetres = (count, resolution) => ((count / resolution) * 25.4).toFixed(0);
  return `${pixels}, ${millimetres(width, across)} × ${millimetres(height, down)} mm`;
}

/** The turn of the sides that agree, the longer and straighter ones more; undefined where none is
 * seen. */
function angleOfSides(page) {
  const nearDegrees = 0.45; // sides of one sheet lie closer than this
  const seen = SIDES.map((name, i) => {
    const side = page.evidence[name];
    return { ...side, weight: (side?.strength ?? 0) * (i % 2 === 0 ? page.width : page.height) };
  }).filter((side) => side.angle !== undefined && side.verdict !== 'frame');
  let best = { weight: 0, angle: undefined };
  for (const seed of seen) {
    const group = seen.filter((side) => Math.abs(side.angle - seed.angle) <= nearDegrees);
    const weight = group.reduce((sum, side) => sum + side.weight, 0);
    const sum = group.reduce((total, side) => total + side.angle * side.weight, 0);
    if (weight > best.weight) best = { weight, angle: sum / weight };
  }
  return best.angle;
}

/** The turns that paper, print and bar speak for, as far as they were seen. */
export function answersOf(page) {
  const { print, bar, ...others } = page.evidence ?? {};
  const isFound = (evidence) =>
    evidence?.angle !== undefined && Math.abs(evidence.angle - page.angle) < 1e-3;
  const isBySides = SIDES.some((name) => others[name]?.verdict === 'believed');
  // What was found and is neither the print's nor the bar's turn is that of the sides.
  const isFoundBySides = page.angle !== undefined && isBySides && !isFound(print) && !isFound(bar);
  return {
    paper: isFoundBySides ? page.angle : page.evidence && angleOfSides(page),
    print: print?.angle,
    bar: bar?.angle,
  };
}
