// --- main: which view is shown, in light or dark ----------------------------------------------------------------

const mainElement = document.getElementById('main');
const lead = el('div', { class: 'lead' });
const actions = el('div', { class: 'actions' });
document.getElementById('top').append(lead, actions);

function setHeading(title, note, lang) {
  document.title = title;
  lead.replaceChildren(el('h1', { lang }, title), note ? el('p', {}, note) : '');
}

const isMany = report.profiles.length > 1;

// "#/3" is a profile, "#/compare/3/5" two of them, anything else the start.
function showAddress() {
  forgetDrawings();
  const [view, ...numbers] = location.hash.replace(/^#\/?/, '').split('/');
  const [a, b] = numbers.map(Number);
  const has = (index) =>
    Number.isInteger(index) && report.profiles[index] !== undefined && !report.profiles[index].failure;
  if (view === 'compare' && has(a) && has(b)) showComparison(profileAt(a), profileAt(b));
  else if (view !== '' && has(Number(view))) showProfile(profileAt(Number(view)));
  else if (report.compare && view !== 'all' && has(0) && has(1)) showComparison(profileAt(0), profileAt(1));
  else if (isMany) showIndex();
  else showProfile(profileAt(0));
  arrangeActions(view);
}

function arrangeActions(view) {
  const isStart = view === '' || view === 'all';
  const back =
    isMany && !isStart
      ? el('a', { class: 'button', href: '#/' }, report.compare ? 'Comparison' : 'All profiles')
      : null;
  actions.replaceChildren(...[back, themeButton].filter(Boolean));
}

// --- light and dark ---

const prefersDark = matchMedia('(prefers-color-scheme: dark)');
let chosenTheme = null;
const themeButton = el('button', {
  type: 'button',
  class: 'button',
  on: {
    click: () => {
      chosenTheme = currentTheme() === 'dark' ? 'light' : 'dark';
      applyTheme();
    },
  },
});

const currentTheme = () => chosenTheme ?? (prefersDark.matches ? 'dark' : 'light');

function applyTheme() {
  document.documentElement.dataset.theme = currentTheme();
  themeButton.textContent = currentTheme() === 'dark' ? 'Light' : 'Dark';
  themeButton.setAttribute('aria-label', `Show in ${currentTheme() === 'dark' ? 'light' : 'dark'} colours`);
}

prefersDark.addEventListener('change', applyTheme);
applyTheme();
// The address belongs to the views, so the link over the head of the page moves the focus itself.
document.querySelector('.skip').addEventListener('click', (event) => {
  event.preventDefault();
  mainElement.focus();
});
addEventListener('hashchange', () => {
  showAddress();
  scrollTo(0, 0);
  mainElement.focus({ preventScroll: true });
});
showAddress();
