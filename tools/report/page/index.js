// --- index: many profiles as a list that sorts and filters ------------------------------------------------------

// The columns of nvxprofile list.
const indexColumns = [
  { title: 'Media', value: (line) => line.media || line.file },
  { title: 'Model', value: (line) => line.model || line.printer },
  { title: 'Ink set', value: (line) => line.inkSet },
  { title: 'Resolution', value: (line) => line.resolution, show: (line) => showResolution(line.resolution) },
  { title: 'Version', value: (line) => line.version, show: (line) => `${line.version}` },
  { title: 'Updated', value: (line) => line.updated, show: (line) => (line.updated ? showDate(line.updated) : '') },
  {
    title: 'Newest calibration',
    value: (line) => line.calibrated ?? 0,
    show: (line) =>
      line.calibrated ? `${line.calibration} ${showDate(line.calibrated)}`.trim() : (line.calibration ?? ''),
  },
  {
    title: 'Calibrations',
    value: (line) => line.calibrations,
    show: (line) => (line.calibrations ? showNumber(line.calibrations) : ''),
  },
  { title: 'File', value: (line) => line.file },
];

const showCell = (column, line) => (line.failure ? '' : column.show ? column.show(line) : column.value(line));

class ProfileIndex {
  constructor() {
    this.sort = { column: 0, isAscending: true };
    this.chosen = new Set();
    this.rows = report.profiles.map((line, index) => ({ line, index, element: null, text: null }));
    this.body = el('tbody');
    this.count = el('p', { class: 'soft', role: 'status' });
    this.compareButton = el(
      'button',
      { type: 'button', class: 'button', disabled: true, on: { click: () => this.compare() } },
      'Compare the two chosen',
    );
    this.search = el('input', {
      type: 'search',
      placeholder: 'Filter by any column',
      'aria-label': 'Filter the profiles',
      on: { input: () => this.arrange() },
    });
    this.heads = indexColumns.map((column, i) =>
      el(
        'th',
        { scope: 'col', 'aria-sort': 'none' },
        el('button', { type: 'button', on: { click: () => this.sortBy(i) } }, column.title),
      ),
    );
    const table = el(
      'table',
      {},
      el('caption', { class: 'hidden-text' }, 'Profiles; the buttons in the head sort them'),
      el(
        'thead',
        {},
        el('tr', {}, el('th', { scope: 'col' }, el('span', { class: 'hidden-text' }, 'Choose')), this.heads),
      ),
      this.body,
    );
    this.root = el(
      'div',
      { class: 'index' },
      el('div', { class: 'filters' }, this.search, this.compareButton, this.count),
      el('div', { class: 'scroll whole wrap', tabindex: 0, role: 'region', 'aria-label': 'Profiles' }, table),
    );
    this.arrange();
  }

  // All that a filter looks at, made when there is one.
  searchText(row) {
    const { line } = row;
    return (row.text ??= [
      line.path,
      line.failure ?? '',
      line.format ?? '',
      ...(line.failure ? [] : indexColumns.map((column) => String(showCell(column, line)))),
    ]
      .join('\n')
      .toLocaleLowerCase());
  }

  rowOf(line, index) {
    if (line.failure) {
      return el(
        'tr',
        {},
        el('td', { class: 'blank' }),
        el('th', { scope: 'row', 'data-title': 'File' }, line.file),
        el('td', { class: 'warning', colspan: indexColumns.length - 1, 'data-title': 'Not loaded' }, line.failure),
      );
    }
    const [first, ...others] = indexColumns;
    const name = first.value(line);
    const box = el('input', {
      type: 'checkbox',
      'aria-label': `Choose ${name}, ${line.file} to compare`,
      on: { change: (event) => this.choose(index, event.target.checked) },
    });
    return el(
      'tr',
      {},
      el('td', {}, box),
      el(
        'th',
        { scope: 'row', 'data-title': first.title },
        el('a', { href: `#/${index}`, lang: guessLanguage(name) }, name),
      ),
      others.map((column) => {
        const shown = showCell(column, line);
        return el(
          'td',
          { 'data-title': column.title, class: shown === '' ? 'blank' : undefined, lang: guessLanguage(String(shown)) },
          shown,
        );
      }),
    );
  }

  choose(index, isChosen) {
    if (isChosen) this.chosen.add(index);
    else this.chosen.delete(index);
    this.compareButton.disabled = this.chosen.size !== 2;
  }

  compare() {
    location.hash = `#/compare/${[...this.chosen].join('/')}`;
  }

  sortBy(column) {
    this.sort = { column, isAscending: this.sort.column === column ? !this.sort.isAscending : true };
    this.arrange();
  }

  // The rows that are seen first come at once, the others when these are painted.
  fill(rows) {
    const elements = (some) => some.map((row) => (row.element ??= this.rowOf(row.line, row.index)));
    this.body.replaceChildren(...elements(rows.slice(0, 40)));
    clearTimeout(this.filling);
    this.filling = setTimeout(() => this.body.append(...elements(rows.slice(40))));
  }

  arrange() {
    const { value } = indexColumns[this.sort.column];
    const key = ({ line }) => (line.failure ? line.file : value(line));
    const collator = new Intl.Collator(readersLanguages, { numeric: true });
    const compare = (a, b) =>
      typeof a === 'number' && typeof b === 'number' ? a - b : collator.compare(String(a), String(b));
    const sign = this.sort.isAscending ? 1 : -1;
    const words = this.search.value.toLocaleLowerCase().split(/\s+/).filter(Boolean);
    const shown = (
      words.length === 0
        ? [...this.rows]
        : this.rows.filter((row) => words.every((word) => this.searchText(row).includes(word)))
    ).sort((a, b) => sign * compare(key(a), key(b)));
    this.fill(shown);
    this.count.textContent =
      shown.length === this.rows.length
        ? `${showNumber(shown.length)} profiles`
        : `${showNumber(shown.length)} of ${showNumber(this.rows.length)} profiles`;
    this.heads.forEach((head, i) =>
      head.setAttribute(
        'aria-sort',
        i !== this.sort.column ? 'none' : this.sort.isAscending ? 'ascending' : 'descending',
      ),
    );
  }
}

let profileIndex = null;

function showIndex() {
  setHeading('Device profiles', '');
  profileIndex ??= new ProfileIndex();
  mainElement.replaceChildren(profileIndex.root);
}
