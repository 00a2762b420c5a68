// Asked of a page by the tests.
const digits = (text) => (text === '' ? null : Number(text.replace(/[^\d-]/g, '')));

// The rows behind a plot, raw numbers without the first column.
function tableOf(plot) {
  const details = document.querySelector(`[data-plot="${plot}"] details.data`);
  details.open = true;
  return new Promise((done) =>
    setTimeout(() => {
      const table = document.querySelector(`[data-table="${plot}"] table`);
      const names = [...table.querySelectorAll('thead th')].slice(1).map((cell) => cell.textContent);
      const rows = [...table.querySelectorAll('tbody tr')].map((row) =>
        [...row.cells].slice(1).map((cell) => cell.textContent),
      );
      details.open = false;
      done({ names, rows });
    }, 30),
  );
}

// The corners of each curve of a plot, in its coordinates.
const curvesOf = (plot) =>
  Object.fromEntries(
    [...document.querySelectorAll(`[data-plot="${plot}"] path[data-series]`)].map((path) => [
      path.dataset.series,
      path
        .getAttribute('d')
        .slice(1)
        .split(/[LMZ]/)
        .filter(Boolean)
        .map((corner) => corner.split(',').map(Number)),
    ]),
  );

// Height of each number at the left of a plot.
const ticksOf = (plot) =>
  [...document.querySelectorAll(`[data-plot="${plot}"] .y-tick`)].map((text) => [
    text.textContent,
    Number(text.getAttribute('y')),
  ]);

// What a reader without eyes or without a pointer would miss.
function accessibilityFaults() {
  const faults = [];
  const check = (selector, isRight, what) => {
    for (const element of document.querySelectorAll(selector))
      if (!isRight(element)) faults.push(`${what}: ${element.outerHTML.slice(0, 120)}`);
  };
  const named = (element) =>
    Boolean(
      (element.getAttribute('aria-label') ?? element.textContent).trim() || element.getAttribute('aria-labelledby'),
    );
  const ids = [...document.querySelectorAll('[id]')].map(({ id }) => id);
  if (new Set(ids).size !== ids.length) faults.push('an id stands twice');
  if (document.documentElement.lang === '') faults.push('the page has no language');
  if (document.querySelectorAll('h1').length !== 1 || document.querySelectorAll('main').length !== 1)
    faults.push('one h1 and one main are expected');
  check('button, a, summary', named, 'no name');
  check('[role="img"], [role="slider"], [role="region"], nav', (e) => e.getAttribute('aria-label'), 'no label');
  check('input, select', (e) => e.closest('label') || e.getAttribute('aria-label'), 'no label');
  check('[aria-labelledby]', (e) => document.getElementById(e.getAttribute('aria-labelledby')), 'label is missing');
  check('table', (e) => e.querySelector('th'), 'no head');
  check('.scroll, .plot .area[role="slider"], canvas.slice', (e) => e.tabIndex === 0, 'the keyboard does not reach');
  check('.plot', (e) => e.querySelector('details.data'), 'no table behind the plot');
  check('.plot .area > svg', (e) => e.getAttribute('aria-hidden') === 'true', 'drawing is read out');
  let last = 1;
  for (const heading of document.querySelectorAll('h1, h2, h3, h4')) {
    const level = Number(heading.tagName[1]);
    if (level > last + 1) faults.push(`heading leaves out a level: ${heading.textContent}`);
    last = level;
  }
  return faults;
}
