// Sorting and searching of the report's tables. Without scripts they show the same rows. Texts are
// only ever read and compared: none becomes markup.
'use strict';

const collator = new Intl.Collator(undefined, {numeric: true, sensitivity: 'base'});

/** Rows that a long table shows at once, and that it adds as it is scrolled: the page stays quick. */
const firstRows = 120;
const firstFoundRows = 250;
const moreRows = 150;

/** A table of the page: its rows in the order that is chosen, of which some are found. */
class Table {
  constructor(table) {
    this.table = table;
    this.body = table.tBodies[0];
    this.rows = Array.from(this.body.rows, (row) => ({row, found: true}));
    this.found = [];  // rows, of which the first are shown
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
    this.showFirst();
  }

  /** Sorts by a column, the other way at a second time. Rows without a value stay last. */
  sortBy(head, column) {
    const descending = head.getAttribute('aria-sort') === 'ascending';
    for (const other of this.heads) other.setAttribute('aria-sort', 'none');
    head.setAttribute('aria-sort', descending ? 'descending' : 'ascending');
    this.rankBy(column, head.classList.contains('n'));
    const sign = descending ? -1 : 1;
    this.rows.sort((a, b) => a.empty || b.empty ? Number(a.empty) - Number(b.empty) :
        sign * (a.rank - b.rank));
    this.showFirst();
    this.body.replaceChildren();
    const step = 10000;  // a call takes only so many arguments
    for (let at = 0; at < this.rows.length; at += step) {
      this.body.append(...this.rows.slice(at, at + step).map((entry) => entry.row));
    }
  }

  /** Gives each row a number to sort by. Many rows share a text, and comparing texts takes long. */
  rankBy(column, isNumber) {
    const texts = this.rows.map((entry) => entry.row.cells[column].textContent);
    const ranks = new Map();
    if (!isNumber) {
      Array.from(new Set(texts)).sort(collator.compare).forEach((text, rank) => ranks.set(text, rank));
    }
    this.rows.forEach((entry, place) => {
      entry.empty = texts[place] === '';
      entry.rank = isNumber ? Number(texts[place]) : ranks.get(texts[place]);
    });
  }

  /** Shows the rows that hold all words. Returns how many. */
  search(words) {
    let count = 0;
    for (const entry of this.rows) {
      entry.text ??=
          Array.from(entry.row.cells, (cell) => cell.textContent).join('\n').toLowerCase();
      entry.found = words.every((word) => entry.text.includes(word));
      entry.row.hidden = !entry.found;
      if (entry.found) count += 1;
    }
    this.showFirst(words.length ? firstFoundRows : firstRows);
    return count;
  }

  showFirst(count = firstRows) {
    this.found = this.rows.filter((entry) => entry.found).map((entry) => entry.row);
    for (const row of this.found) row.classList.add('later');
    this.shown = 0;
    this.showMore(count);
  }

  showMore(count) {
    const end = this.shown + count;
    for (const row of this.found.slice(this.shown, end)) row.classList.remove('later');
    this.shown = Math.min(end, this.found.length);
    if (this.all) this.all.hidden = this.shown === this.found.length;
  }

  /** The row whose first cell holds a number. */
  rowOf(number) {
    this.byNumber ??= new Map(this.rows.map(({row}) => [row.cells[0].textContent, row]));
    return this.byNumber.get(number);
  }

  /** Goes to a row, also to one that is not shown yet or not found. */
  goTo(row) {
    document.querySelectorAll('tr.chosen').forEach((other) => other.classList.remove('chosen'));
    row.classList.add('chosen');
    row.classList.remove('later');
    row.hidden = false;
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
    const all = `${table.rows.length} ${count.dataset.noun}`;
    count.textContent = words.length ? `${found} of ${all}` : all;
  });
}
