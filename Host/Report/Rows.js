// Rows of the tables, made of the page's facts where the page has no room for them. They say what
// the rows that stand in the page would say.
'use strict';

/** The page's facts. Read when a row is first made: most pages never need them. */
let pageFacts = null;
function facts() {
  pageFacts ??= JSON.parse(document.getElementById('facts').textContent);
  return pageFacts;
}

/** A row of a table of the facts with its names, whichever form the facts have. */
function factOf(table, number) {
  const row = facts()[table][number];
  const columns = facts().columns?.[table];
  return columns ? Object.fromEntries(row.map((value, place) => [columns[place], value])) : row;
}

/** The path of a row as a text. */
function pathOf(row) {
  if (typeof row.path !== 'number') return row.path ?? '';
  const {folder, name} = factOf('paths', row.path);
  return facts().folders[folder] + name;
}

/** Names of events, by the number of the source. */
let sourceNames = null;
function sourceName(source) {
  sourceNames ??= new Map(facts().sources.map((_, place) => factOf('sources', place))
      .map((row) => [row.source, row.name]));
  return sourceNames.get(source) ?? '';
}

/** Timecode of the frame that holds a sample: HH:MM:SS:FF, as the session counts. */
function timecode(sample) {
  const {sampleRate, timecode: {nominal, numerator, denominator, drop}} = facts().rates;
  const million = 1000000n;  // the sample rate as an exact number: floating point would drift
  const dividend = BigInt(sample) * BigInt(numerator) * million;
  const divisor = BigInt(Math.round(sampleRate * 1e6)) * BigInt(denominator);
  let frame = Number(dividend / divisor);
  if (dividend < 0n && dividend % divisor) frame -= 1;  // the division rounds towards zero
  const sign = frame < 0 ? '-' : '';
  frame = Math.abs(frame);
  if (drop) {
    // Two numbers are left out at each minute but every tenth, whose first minute is longer.
    const rest = frame % (nominal * 600 - 18);
    const minutes = rest < 2 ? 0 : Math.floor((rest - 2) / (nominal * 60 - 2));
    frame += 18 * Math.floor(frame / (nominal * 600 - 18)) + 2 * minutes;
  }
  const seconds = Math.floor(frame / nominal);
  const digits = [seconds / 3600, seconds / 60 % 60, seconds % 60, frame % nominal]
      .map((number) => String(Math.floor(number)).padStart(2, '0'));
  return sign + digits.slice(0, 3).join(':') + (drop ? ';' : ':') + digits[3];
}

/** Fades and gain; only what is there. */
function shapeText({fadeIn, fadeOut, gainDb}) {
  const parts = [];
  if (fadeIn) parts.push(`in ${fadeIn}`);
  if (fadeOut) parts.push(`out ${fadeOut}`);
  if (gainDb) parts.push(`${gainDb > 0 ? '+' : ''}${gainDb.toFixed(2)} dB`);
  return parts.join(', ');
}

function spanOf(className, text) {
  const span = document.createElement('span');
  span.className = className;
  span.textContent = text;
  return span;
}

/** A message, and below it what the system makes of it. */
function messageText({text, effect}) {
  const whole = document.createDocumentFragment();
  whole.append(text);
  if (effect) whole.append(document.createElement('br'), spanOf('dim', effect));
  return whole;
}

const kindWords = {vid: 'video', none: 'other'};
const pieceWords = {main: 'cut', infade: 'fade-in', crossfade: 'crossfade', outfade: 'fade-out'};
const isCut = (event) => event.position !== undefined;

/** By table: the contents of a row's cells, texts or nodes. */
const cellsOf = {
  events(number) {
    const event = factOf('events', number);
    return [
      number, event.entry, event.state, kindWords[event.kind] ?? event.kind,
      sourceName(event.source), event.source ?? '', event.track ?? '',
      ...(isCut(event) ? [
        timecode(event.position), timecode(event.end), event.position, event.end - event.position,
      ] : ['', '', '', '']),
      shapeText(event),
    ];
  },
  regions(number) {
    const region = factOf('regions', number);
    const length = region.stop - region.start;
    return [
      number, region.name, pieceWords[region.piece] ?? '', region.track, timecode(region.position),
      timecode(region.position + length), region.position, length,
      pathOf(region).split('/').at(-1), region.start, shapeText(region), region.event ?? '',
    ];
  },
  files(number) {
    const file = factOf('files', number);
    return [
      file.what, file.folder ? `${file.state} (folder)` : file.state, file.event ?? '', pathOf(file),
      ...(facts().plan ? [] : [file.bytes ?? '', file.sha256 ?? file.noSha256 ?? '']),
    ];
  },
  messages(number) {
    const message = factOf('messages', number);
    return [
      spanOf(`sign ${message.weight}`, message.weight), messageText(message), message.remedy ?? '',
      message.code ? `${message.kind}: ${message.code}` : message.kind,
      message.line ?? '', message.entry ?? '', message.event ?? '',
    ];
  },
};

const stateLooks = {missing: 'gone', 'left out': 'gone', off: 'off', 'not a cut': 'off'};

/** By table: the class of a row. */
const lookOf = {
  events: (number) => stateLooks[factOf('events', number).state],
  files: (number) => factOf('files', number).state === 'failed' ? 'gone' : '',
};
