// Sorting and searching of the report's tables, and the rows that the page has no room for. Without
// scripts the tables show the rows that stand in the page. Texts are only ever read, compared and
// set as texts: none becomes markup.
'use strict';

const collator = new Intl.Collator(undefined, {numeric: true, sensitivity: 'base'});

/**
 * Rows that a long table shows at once, as the style does before, and that it adds as it is scrolled:
 * the page stays quick.
 */
const firstRows = 120;
const firstFoundRows = 250;
const moreRows = 150;

/** Rows that are made in one go, and those that a table has before somebody asks for them. */
const rowsInOneGo = 300;
const mostRowsUnasked = 30000;
const pause = 30;  // milliseconds: in between, the page answers

/**
 * A table of the page. Its entries are rows in the order that is chosen; a row is made when it is
 * first needed, unless it stood in the page. The body holds those that were found, of which the
 * first are shown.
 */
class Table {
  constructor(table) {
    this.table = table;
    this.body = table.tBodies[0];
    this.entries = Array.from(this.body.rows, (row, number) => ({number, row}));
    for (let number = this.entries.length; number < Number(table.dataset.rows ?? 0); ++number) {
      this.entries.push({number, row: null});
    }
    this.byNumber = this.entries.slice();
    this.words = [];
    this.found = this.entries;
    this.filled = this.body.rows.length;  // of the found ones, in the body
    this.shown = 0;
    this.all = document.querySelector(`button[data-all="${table.id}"]`);
    this.heads = Array.from(table.tHead.rows[0].cells);
    this.heads.forEach((head, column) => {
      head.querySelector('button')?.addEventListener('click', () => this.sortBy(head, column));
    });
    this.all?.addEventListener('click', () => this.showMore(this.found.length));
    const box = table.parentElement;
    box.addEventListener('scroll', () => {
      if (box.scrollTop + 2 * box.clientHeight > box.scrollHeight) this.showMore(moreRows);
    }, {passive: true});
    window.addEventListener('beforeprint', () => this.fill(this.found.length));
    for (const {row} of this.entries.slice(firstRows)) row?.classList.add('later');
    this.showMore(firstRows);
    table.classList.add('ready');
  }

  // ---- Rows ----

  /** The texts of an entry's cells. */
  textsOf(entry) {
    entry.texts ??= entry.row ? Array.from(entry.row.cells, (cell) => cell.textContent) :
        cellsOf[this.table.id](entry.number).map((cell) => cell.textContent ?? String(cell));
    return entry.texts;
  }

  elementOf(entry) {
    entry.row ??= this.makeRow(entry.number);
    return entry.row;
  }

  makeRow(number) {
    const row = document.createElement('tr');
    const look = lookOf[this.table.id]?.(number);
    if (look) row.className = look;
    for (const content of cellsOf[this.table.id](number)) row.insertCell().append(content);
    return row;
  }

  /** Puts found rows into the body up to a count of them. */
  fill(count) {
    const rows = [];
    for (; this.filled < Math.min(count, this.found.length); ++this.filled) {
      const row = this.elementOf(this.found[this.filled]);
      row.classList.toggle('later', this.filled >= this.shown);
      rows.push(row);
    }
    const step = 10000;  // a call takes only so many arguments
    for (let at = 0; at < rows.length; at += step) this.body.append(...rows.slice(at, at + step));
  }

  /** Puts in what costs little at once, and the rest bit by bit. */
  fillAll() {
    let end = this.filled;
    for (let made = 0; end < this.found.length && made < rowsInOneGo; ++end) {
      if (!this.found[end].row) ++made;
    }
    this.fill(end);
    if (end < Math.min(this.found.length, mostRowsUnasked) && !this.waits) {
      this.waits = true;
      setTimeout(() => {
        this.waits = false;
        this.fillAll();
      }, pause);
    }
  }

  showMore(count) {
    const end = Math.min(this.shown + count, this.found.length);
    this.fill(end);
    for (const entry of this.found.slice(this.shown, end)) entry.row.classList.remove('later');
    this.shown = end;
    if (this.all) this.all.hidden = end === this.found.length;
    this.fillAll();
  }

  /** Shows the first rows that hold all words. */
  showFound() {
    this.found = this.entries.filter((entry) => this.holdsWords(entry));
    this.body.replaceChildren();
    this.filled = this.shown = 0;
    this.showMore(this.words.length ? firstFoundRows : firstRows);
  }

  // ---- Search ----

  holdsWords(entry) {
    if (!this.words.length) return true;
    entry.text ??= this.textsOf(entry).join('\n').toLowerCase();
    return this.words.every((word) => entry.text.includes(word));
  }

  /** Returns how many rows hold all words. */
  search(words) {
    this.words = words;
    this.showFound();
    return this.found.length;
  }

  // ---- Sorting ----

  /** Sorts by a column, the other way at a second time. Rows without a value stay last. */
  sortBy(head, column) {
    const descending = head.getAttribute('aria-sort') === 'ascending';
    for (const other of this.heads) other.setAttribute('aria-sort', 'none');
    head.setAttribute('aria-sort', descending ? 'descending' : 'ascending');
    this.rankBy(column, head.classList.contains('n'));
    const sign = descending ? -1 : 1;
    this.entries.sort((a, b) => a.empty || b.empty ? Number(a.empty) - Number(b.empty) :
        sign * (a.rank - b.rank));
    this.showFound();
  }

  /** Gives each row a number to sort by. Many rows share a text, and comparing texts takes long. */
  rankBy(column, isNumber) {
    const texts = this.entries.map((entry) => this.textsOf(entry)[column]);
    const ranks = new Map();
    if (!isNumber) {
      Array.from(new Set(texts)).sort(collator.compare).forEach((text, rank) => ranks.set(text, rank));
    }
    this.entries.forEach((entry, place) => {
      entry.empty = texts[place] === '';
      entry.rank = isNumber ? Number(texts[place]) : ranks.get(texts[place]);
    });
  }

  /** Goes to an entry's row, also to one that is not shown yet or not found. */
  goTo(entry) {
    const row = this.elementOf(entry);
    document.querySelectorAll('tr.chosen').forEach((other) => other.classList.remove('chosen'));
    if (!row.isConnected) this.body.append(row);
    row.classList.add('chosen');
    row.classList.remove('later');
    row.tabIndex = -1;
    row.focus({preventScroll: true});
    row.scrollIntoView({block: 'center'});
  }
}

const tables = {};
for (const table of document.querySelectorAll('table')) tables[table.id] = new Table(table);

for (const input of document.querySelectorAll('input[data-table]')) {
  const table = tables[input.dataset.table];
  const count = document.querySelector(`output[data-count="${input.dataset.table}"]`);
  input.addEventListener('input', () => {
    const words = input.value.toLowerCase().split(/\s+/).filter(Boolean);
    const found = table.search(words);
    const all = `${table.entries.length} ${count.dataset.noun}`;
    count.textContent = words.length ? `${found} of ${all}` : all;
  });
}
