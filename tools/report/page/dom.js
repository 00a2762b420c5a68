// --- dom: elements. Text of profiles becomes text nodes, never markup -------------------------------------------

// An element with attributes and children; a child that is a string becomes text. Attributes that are undefined or false
// are left out, and `on` holds event listeners.
function el(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (key === 'on') {
      for (const [event, listener] of Object.entries(value)) element.addEventListener(event, listener);
    } else if (value !== undefined && value !== false && value !== null) {
      element.setAttribute(key, value === true ? '' : value);
    }
  }
  element.append(...children.flat(Infinity).filter((child) => child !== null && child !== undefined));
  return element;
}

const numbered = new Map();

// An id that no other element has.
function freshId(stem) {
  numbered.set(stem, (numbered.get(stem) ?? 0) + 1);
  return `${stem}-${numbered.get(stem)}`;
}

const facts = (pairs) =>
  el(
    'dl',
    { class: 'facts' },
    pairs
      .filter(([, value]) => value !== '' && value !== null && value !== undefined)
      .map(([name, value, lang]) => el('div', {}, el('dt', {}, name), el('dd', { lang }, value))),
  );

// A table that scrolls inside of its own box, which the keyboard reaches. Cells that are numbers stand to the right.
function dataTable({ label, columns, rows, whole = false, wrap = false }) {
  const shown = (cell) => (typeof cell === 'number' ? showNumber(cell) : (cell ?? ''));
  const kind = (cell) => (typeof cell === 'number' ? 'number' : undefined);
  const body = rows.map((cells) =>
    el(
      'tr',
      {},
      cells.map((cell, column) =>
        el(column === 0 ? 'th' : 'td', { scope: column === 0 ? 'row' : undefined, class: kind(cell) }, shown(cell)),
      ),
    ),
  );
  const head = columns.map((column, i) =>
    el('th', { scope: 'col', class: rows.length > 0 ? kind(rows[0][i]) : undefined }, column),
  );
  return el(
    'div',
    { class: `scroll${whole ? ' whole' : ''}${wrap ? ' wrap' : ''}`, tabindex: 0, role: 'region', 'aria-label': label },
    el('table', {}, el('thead', {}, el('tr', {}, head)), el('tbody', {}, body)),
  );
}

// Details whose contents are made when they are first opened.
function lazyDetails(attributes, summary, build) {
  const details = el('details', attributes, el('summary', {}, summary));
  details.addEventListener('toggle', () => {
    if (details.open && details.childElementCount === 1) details.append(...[build()].flat(Infinity));
  });
  return details;
}

// Runs `draw` when the element comes near to what is seen, and before the page goes to paper.
const waitingToDraw = new Map();
const drawingObserver = new IntersectionObserver(
  (entries) => {
    for (const entry of entries) if (entry.isIntersecting) drawNow(entry.target);
  },
  { rootMargin: '400px' },
);

function drawNow(element) {
  const draw = waitingToDraw.get(element);
  if (!draw) return;
  waitingToDraw.delete(element);
  drawingObserver.unobserve(element);
  draw();
}

function drawLazily(element, draw) {
  waitingToDraw.set(element, draw);
  drawingObserver.observe(element);
}

function forgetDrawings() {
  waitingToDraw.clear();
  drawingObserver.disconnect();
}

addEventListener('beforeprint', () => {
  for (const element of [...waitingToDraw.keys()]) drawNow(element);
});
