// The picture of the timeline: facts of its regions by pointer and keyboard, zoom and pan.
'use strict';

/** What a page with something to draw can do with it. */
function preparePicture(picture) {
  const lanes = document.getElementById('lanes');
  const names = picture.querySelector('.names');
  const about = document.getElementById('about');
  const zoomOut = document.getElementById('zoom-out');
  const zoomIn = document.getElementById('zoom-in');
  const zoomText = document.getElementById('zoom');
  const highestLevel = 6;
  let level = 0;
  let chosen = null;  // a region, or a cut that was not placed

  // ---- Zoom ----

  /** Width of the part of the picture that scrolls. */
  const roomOf = () => Math.max(picture.clientWidth - names.offsetWidth, 100);

  /** Zooms by powers of two, and keeps the place at `x` pixels of the room where it is. */
  function zoomTo(next, x = roomOf() / 2) {
    const place = (picture.scrollLeft + x) / lanes.getBoundingClientRect().width;
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

  zoomIn.addEventListener('click', () => zoomTo(level + 1));
  zoomOut.addEventListener('click', () => zoomTo(level - 1));
  document.getElementById('zoom-all').addEventListener('click', () => zoomTo(0));
  window.addEventListener('resize', () => zoomTo(level));
  picture.addEventListener('wheel', (event) => {
    if (!event.ctrlKey && !event.metaKey) return;  // the page scrolls
    event.preventDefault();
    const left = picture.getBoundingClientRect().left + names.offsetWidth;
    zoomTo(level + (event.deltaY < 0 ? 1 : -1), event.clientX - left);
  }, {passive: false});

  // ---- Facts ----

  /** The table and entry that tell of a thing: ids are "r" and a region, "e" and an event. */
  function entryOf(thing) {
    const table = tables[thing.id[0] === 'r' ? 'regions' : 'events'];
    return {table, entry: table.byNumber[thing.id.slice(1)]};
  }

  /** Names and values of a thing that its row has. */
  function factsOf(thing) {
    const {table, entry} = entryOf(thing);
    return table.textsOf(entry).map((text, column) => [table.heads[column].textContent, text])
        .filter(([, value]) => value !== '');
  }

  function tell(thing) {
    about.replaceChildren(...factsOf(thing).map(([name, value]) => {
      const fact = document.createElement('span');
      const head = document.createElement('b');
      const text = document.createElement('bdi');
      head.textContent = name;
      text.textContent = value;
      fact.append(head, ' ', text);
      return fact;
    }));
  }

  /** Chooses a thing and gives it the keyboard, so that a screen reader speaks its facts. */
  function choose(thing) {
    if (chosen) {
      chosen.classList.remove('chosen');
      chosen.setAttribute('aria-selected', 'false');
      chosen.tabIndex = -1;
    }
    chosen = thing;
    thing.classList.add('chosen');
    thing.setAttribute('role', 'option');
    thing.setAttribute('aria-selected', 'true');
    thing.setAttribute('aria-label', factsOf(thing).map((fact) => fact.join(' ')).join(', '));
    thing.setAttribute('tabindex', '0');
    picture.tabIndex = -1;
    thing.focus({preventScroll: true});
    tell(thing);
  }

  /** Scrolls so that a thing can be seen. */
  function reveal(thing) {
    const room = picture.getBoundingClientRect();
    const left = room.left + names.offsetWidth;
    const box = thing.getBoundingClientRect();
    if (box.left < left || box.left > room.right - 20) picture.scrollLeft += box.left - left - 40;
    if (box.top < room.top || box.bottom > room.bottom) picture.scrollTop += box.top - room.top - 40;
    picture.scrollIntoView({block: 'nearest'});
  }

  function showRow(thing) {
    const {table, entry} = entryOf(thing);
    table.goTo(entry);
  }

  // ---- Keyboard ----

  /** Rows of things, each in rising position. Made when first asked for. */
  let order = null;
  const placeOf = (thing) => thing.x.baseVal.value;
  function inOrder() {
    order ??= Array.from(lanes.querySelectorAll('g.lane'), (lane) => Array.from(
        lane.querySelectorAll('rect')).sort((a, b) => placeOf(a) - placeOf(b)));
    return order;
  }

  /** Before or after the chosen thing, first or last of its row, or nearest on another one. */
  function neighbour(key) {
    const rows = inOrder();
    const at = rows.findIndex((row) => row.includes(chosen));
    if (at < 0) return rows[0][0];
    const row = rows[at];
    const place = row.indexOf(chosen);
    switch (key) {
      case 'ArrowRight': return row[place + 1] ?? rows[at + 1]?.[0];
      case 'ArrowLeft': return row[place - 1] ?? rows[at - 1]?.at(-1);
      case 'Home': return row[0];
      case 'End': return row.at(-1);
    }
    const distance = (thing) => Math.abs(placeOf(thing) - placeOf(chosen));
    return rows[at + (key === 'ArrowDown' ? 1 : -1)]?.reduce(
        (best, thing) => distance(thing) < distance(best) ? thing : best);
  }

  picture.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    if (event.key.startsWith('Arrow') || event.key === 'Home' || event.key === 'End') {
      const next = neighbour(event.key);
      if (next) {
        choose(next);
        reveal(next);
      }
    } else if (event.key === '+' || event.key === '=') {
      zoomTo(level + 1);
    } else if (event.key === '-') {
      zoomTo(level - 1);
    } else if (event.key === '0') {
      zoomTo(0);
    } else if (event.key === 'Enter' && chosen) {
      showRow(chosen);
    } else {
      return;
    }
    event.preventDefault();
  });

  // ---- Pointer ----

  const thingAt = (event) => event.target.closest('rect');
  let drag = null;  // where the picture was taken hold of

  picture.addEventListener('pointerover', (event) => {
    const thing = thingAt(event);
    if (thing && !drag?.moves) tell(thing);
  });
  picture.addEventListener('pointerdown', (event) => {
    if (event.button !== 0 || event.pointerType === 'touch') return;  // fingers scroll by themselves
    drag = {x: event.clientX + picture.scrollLeft, y: event.clientY + picture.scrollTop, moves: false};
  });
  window.addEventListener('pointermove', (event) => {
    if (!drag) return;
    const x = drag.x - event.clientX;
    const y = drag.y - event.clientY;
    if (Math.hypot(x - picture.scrollLeft, y - picture.scrollTop) > 4) drag.moves = true;
    if (drag.moves) picture.scrollTo(x, y);
    picture.classList.toggle('moves', drag.moves);
  });
  window.addEventListener('pointerup', () => {
    picture.classList.remove('moves');
    setTimeout(() => { drag = null; });  // after the click that ends it
  });
  picture.addEventListener('click', (event) => {
    const thing = thingAt(event);
    if (thing && !drag?.moves) choose(thing);
  });
  picture.addEventListener('dblclick', (event) => {
    const thing = thingAt(event);
    if (thing) showRow(thing);
  });
  picture.addEventListener('focusin', (event) => {
    const thing = thingAt(event);
    if (thing) tell(thing);
  });

  picture.setAttribute('role', 'listbox');
  zoomTo(0);
}

const picture = document.getElementById('picture');
if (picture) preparePicture(picture);
