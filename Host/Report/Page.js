// The report's script: sorting and searching tables, and the picture of the timeline. Without it the
// page shows the same. It asks for nothing and writes texts as texts, never as markup.
'use strict';

// ---- Tables ----

const collator = new Intl.Collator(undefined, {numeric: true, sensitivity: 'base'});

/** Sorts a table's rows by a column; rows without a value stay last either way. */
function sortBy(table, column, descending) {
  const isNumber = table.tHead.rows[0].cells[column].classList.contains('n');
  const rows = Array.from(table.tBodies[0].rows, (row) => {
    const text = row.cells[column].textContent;
    return {row, empty: text === '', key: isNumber ? Number(text) : text};
  });
  const compare = isNumber ? (a, b) => a.key - b.key : (a, b) => collator.compare(a.key, b.key);
  rows.sort((a, b) => {
    if (a.empty || b.empty) return Number(a.empty) - Number(b.empty);
    return descending ? compare(b, a) : compare(a, b);
  });
  table.tBodies[0].append(...rows.map((entry) => entry.row));
}

function prepareSorting(table) {
  const heads = Array.from(table.tHead.rows[0].cells);
  heads.forEach((head, column) => {
    const button = head.querySelector('button');
    if (!button) return;
    button.addEventListener('click', () => {
      const descending = head.getAttribute('aria-sort') === 'ascending';
      for (const other of heads) other.setAttribute('aria-sort', 'none');
      head.setAttribute('aria-sort', descending ? 'descending' : 'ascending');
      sortBy(table, column, descending);
    });
  });
}

/** Shows the rows that hold all words of the field. */
function prepareSearch(input) {
  const table = document.getElementById(input.dataset.table);
  const count = document.querySelector(`output[data-count="${input.dataset.table}"]`);
  let texts = null;  // by row; made at the first search
  input.addEventListener('input', () => {
    if (!texts) {
      texts = Array.from(table.tBodies[0].rows, (row) => ({
        row,
        text: Array.from(row.cells, (cell) => cell.textContent).join('\n').toLowerCase(),
      }));
    }
    const words = input.value.toLowerCase().split(/\s+/).filter(Boolean);
    let shown = 0;
    for (const {row, text} of texts) {
      const hit = words.every((word) => text.includes(word));
      row.hidden = !hit;
      if (hit) shown += 1;
    }
    const all = `${texts.length} ${count.dataset.noun}`;
    count.textContent = words.length ? `${shown} of ${all}` : all;
  });
}

/** Shows a long table's first rows at once, and the others when there is time. */
function showByAndBy(table) {
  const later = Array.from(table.tBodies[0].rows).slice(150);
  if (later.length === 0) return;
  for (const row of later) row.classList.add('later');
  let shown = 0;
  const more = () => {
    const next = shown * 3 + 300;
    for (const row of later.slice(shown, next)) row.classList.remove('later');
    shown = next;
    if (shown < later.length) setTimeout(more, 250);
  };
  setTimeout(more, 600);
}

for (const table of document.querySelectorAll('table')) {
  prepareSorting(table);
  showByAndBy(table);
}
for (const input of document.querySelectorAll('input[data-table]')) prepareSearch(input);

// ---- The picture ----

const picture = document.getElementById('picture');
const lanes = document.getElementById('lanes');
const about = document.getElementById('about');
const zoomOut = document.getElementById('zoom-out');
const zoomIn = document.getElementById('zoom-in');
const zoomText = document.getElementById('zoom');
const highestLevel = 6;
let level = 0;
let chosen = null;

/** Width of the part of the picture that scrolls. */
const roomOf = () => Math.max(picture.clientWidth - lanes.previousElementSibling.offsetWidth, 100);

/** Zooms by powers of two, and keeps the place at `x` pixels of the room where it is. */
function zoomTo(next, x = roomOf() / 2) {
  const old = lanes.getBoundingClientRect().width;
  const place = (picture.scrollLeft + x) / old;
  level = Math.min(Math.max(next, 0), highestLevel);
  const room = roomOf();
  picture.dataset.ticks = level + (room < 420 ? 0 : room < 840 ? 1 : 2);
  const width = room * 2 ** level;
  lanes.style.width = `${width}px`;
  picture.scrollLeft = place * width - x;
  zoomText.textContent = `${2 ** level}×`;
  zoomOut.disabled = level === 0;
  zoomIn.disabled = level === highestLevel;
}

/** The row of a table whose first cell holds a number. */
function rowOf(id, number) {
  return Array.from(document.getElementById(id).tBodies[0].rows)
      .find((row) => row.cells[0].textContent === number);
}

const rowOfThing = (thing) => thing.dataset.r !== undefined ?
    rowOf('regions', thing.dataset.r) : rowOf('events', thing.dataset.e);

/** Tells the facts of a region or an event, as its row in the table has them. */
function tell(thing) {
  const row = rowOfThing(thing);
  const heads = row.closest('table').tHead.rows[0].cells;
  about.textContent = '';
  Array.from(row.cells).forEach((cell, column) => {
    if (cell.textContent === '') return;
    const name = document.createElement('b');
    name.textContent = heads[column].textContent;
    about.append(name, ` ${cell.textContent}  `);
  });
}

function choose(thing) {
  if (chosen) chosen.classList.remove('chosen');
  chosen = thing;
  thing.classList.add('chosen');
  tell(thing);
}

/** Scrolls so that a region can be seen. */
function reveal(thing) {
  const room = picture.getBoundingClientRect();
  const left = room.left + lanes.previousElementSibling.offsetWidth;
  const box = thing.getBoundingClientRect();
  if (box.left < left || box.left > room.right - 20) picture.scrollLeft += box.left - left - 40;
  if (box.top < room.top || box.bottom > room.bottom) picture.scrollTop += box.top - room.top - 40;
}

/** Regions and events row by row, each row in rising position. Made when first asked for. */
let order = null;
function inOrder() {
  const place = (thing, name) => parseFloat(thing.getAttribute(name));
  order ??= Array.from(lanes.querySelectorAll('.r, .e'))
      .map((thing) => ({thing, x: place(thing, 'x'), y: place(thing, 'y')}))
      .sort((a, b) => a.y - b.y || a.x - b.x);
  return order;
}

/** The neighbour of the chosen thing: before or after it, or nearest on another track. */
function neighbour(key) {
  const all = inOrder();
  const at = all.findIndex((entry) => entry.thing === chosen);
  if (at < 0) return all[0];
  if (key === 'ArrowRight') return all[at + 1];
  if (key === 'ArrowLeft') return all[at - 1];
  const here = all[at];
  const step = key === 'ArrowDown' ? 1 : -1;
  const beyond = all.filter((entry) => (entry.y - here.y) * step > 0);
  const nextY = step > 0 ? Math.min(...new Set(beyond.map((entry) => entry.y))) :
      Math.max(...new Set(beyond.map((entry) => entry.y)));
  return beyond.filter((entry) => entry.y === nextY)
      .reduce((best, entry) => !best || Math.abs(entry.x - here.x) < Math.abs(best.x - here.x) ?
          entry : best, null);
}

/** Goes to the row of a region or event in its table. */
function showRow(thing) {
  const row = rowOfThing(thing);
  for (const other of document.querySelectorAll('tr.chosen')) other.classList.remove('chosen');
  row.classList.add('chosen');
  row.hidden = false;
  row.tabIndex = -1;
  row.focus({preventScroll: true});
  row.scrollIntoView({block: 'center'});
}

if (picture) {
  const thingAt = (event) => event.target.closest('.r, .e');
  picture.addEventListener('pointerover', (event) => {
    const thing = thingAt(event);
    if (thing) tell(thing);
  });
  picture.addEventListener('click', (event) => {
    const thing = thingAt(event);
    if (thing) choose(thing);
  });
  picture.addEventListener('dblclick', (event) => {
    const thing = thingAt(event);
    if (thing) showRow(thing);
  });
  picture.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    if (event.key.startsWith('Arrow')) {
      const next = neighbour(event.key);
      if (next) {
        choose(next.thing);
        reveal(next.thing);
      }
    } else if (event.key === '+' || event.key === '=') {
      zoomTo(level + 1);
    } else if (event.key === '-') {
      zoomTo(level - 1);
    } else if (event.key === 'Enter' && chosen) {
      showRow(chosen);
    } else {
      return;
    }
    event.preventDefault();
  });
  picture.addEventListener('wheel', (event) => {
    if (!event.ctrlKey) return;
    event.preventDefault();
    const left = picture.getBoundingClientRect().left + lanes.previousElementSibling.offsetWidth;
    zoomTo(level + (event.deltaY < 0 ? 1 : -1), event.clientX - left);
  }, {passive: false});
  zoomIn.addEventListener('click', () => zoomTo(level + 1));
  zoomOut.addEventListener('click', () => zoomTo(level - 1));
  document.getElementById('zoom-all').addEventListener('click', () => zoomTo(0));
  window.addEventListener('resize', () => zoomTo(level));
  zoomTo(0);
}
