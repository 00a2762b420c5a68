// --- profile: all sections of one profile -----------------------------------------------------------------------

function mediaNamesOf(record) {
  if (record.Binary) {
    const named = (record.Binary.MediaInfo ?? []).map(({ Language, Name }) => {
      const tag = languageTags[Language];
      return [tag ? `Media, ${showLanguage(tag)}` : `Media, language ${Language}`, Name, tag];
    });
    return [['Media', record.Binary.DefaultMediaName, guessLanguage(record.Binary.DefaultMediaName)], ...named];
  }
  if (record.Text) {
    return [
      ['Media', record.Text.Media_Label],
      [`Media, ${showLanguage('en')}`, record.Text.Media_Eng, 'en'],
      [`Media, ${showLanguage('ja')}`, record.Text.Media_Jpn, 'ja'],
    ];
  }
  return [['Media', record.MediaName, guessLanguage(record.MediaName)]];
}

// A text of the record; what was no valid text is left out.
const textOf = (value) => (typeof value === 'string' ? value : '');

function recordFacts({ line, record, model = {} }) {
  const resolution = (scan, feed) => (scan ? `${showNumber(scan)} × ${showNumber(feed)} dpi` : '');
  const code = (value) => (record.LayoutNumber === 3 ? showNumber(value) : '');
  return [
    ...mediaNamesOf(record).map(([name, value, lang]) => [name, textOf(value), lang]),
    ['Printer', line.printer],
    ['Model', line.model],
    ['Resolution', resolution(record.ScanResolution, record.FeedResolution)],
    ['Rendered at', resolution(record.RenderingScan, record.RenderingFeed)],
    ['Ink type', code(record.InkTypeCode)],
    ['Ink maker', code(record.InkMakerCode)],
    ['Colour set', code(record.ColorsetCode)],
    ['Dot type', code(record.DotType)],
    ['Model name', textOf(model.modelName)],
    ['Ink set', textOf(model.inksetName)],
    ['Parameter set', textOf(model.parametersetName)],
    ['Comment', textOf(model.comment)],
    ['Made by', textOf(record.Binary?.MakerText)],
    ['Made with', textOf(record.Binary?.CreateModule)],
    ['Created', record.CreateTimeValue ? showTime(record.CreateTimeValue) : ''],
    ['Updated', record.UpdateTimeValue ? showTime(record.UpdateTimeValue) : ''],
    ['Format', line.format],
    ['Version', line.version],
    ['File', line.path],
  ];
}

const overviewSection = (profile) => el('div', { class: 'card' }, facts(recordFacts(profile)));

const entryState = (entry) =>
  [entry.complete ? 'complete' : '', entry.sound ? '' : 'damaged'].filter(Boolean).join(', ') || '–';

const entriesSection = (profile) =>
  el(
    'div',
    { class: 'card' },
    dataTable({
      label: 'Entries of the profile',
      whole: true,
      columns: ['Entry', 'Label', 'Type', 'Route', 'State', 'Bytes'],
      rows: profile.entries.map((entry) => [
        entry.name || '–',
        entry.label,
        String(entry.usedType),
        String(entry.route),
        entryState(entry),
        entry.size,
      ]),
    }),
  );

// In the order of the page. `part` is what the section shows; a profile without it has no such section.
const sections = [
  { key: 'overview', title: 'What it is for', part: 'record', build: overviewSection },
  { key: 'curves', title: 'Ink curves', part: 'curves', build: curvesSection },
  { key: 'separation', title: 'Separation table', part: 'separation', build: separationSection },
  { key: 'icc', title: 'ICC profile', part: 'icc', build: iccSection },
  {
    key: 'calibrations',
    title: 'Calibrations',
    part: 'calibrations',
    also: 'calibrationCurves',
    build: calibrationsSection,
  },
  { key: 'special', title: 'Special colours', part: 'special', build: specialSection },
  { key: 'media', title: 'Media settings', part: 'media', build: mediaSection },
  { key: 'lamp', title: 'UV lamp', part: 'lamp', build: lampSection },
  { key: 'masks', title: 'Masks', part: 'masks', build: masksSection },
  { key: 'entries', title: 'Entries', part: 'entries', build: entriesSection },
];

const leftOutOf = (profile, section) =>
  profile.leftOut.filter(({ part }) => part === section.part || part === section.also);
const hasSection = (profile, section) => profile[section.part] !== undefined || leftOutOf(profile, section).length > 0;

const partNames = {
  calibrationCurves: 'curves of the calibrations',
  separation: 'separation table',
  curves: 'ink curves',
  masks: 'masks',
};

function leftOutNotes(profile, section) {
  const remedy = isMany ? ' A report on fewer profiles shows more of each.' : '';
  return leftOutOf(profile, section).map(({ part, bytes }) =>
    el(
      'p',
      { class: 'note' },
      `Left out to keep this page small: ${partNames[part] ?? section.title} (${showBytes(bytes)}).${remedy}`,
    ),
  );
}

function sectionElement(profile, section, prefix = '') {
  const id = `${prefix}${section.key}`;
  const contents = profile[section.part] === undefined ? [] : section.build(profile, prefix);
  return el(
    'section',
    { id, 'aria-labelledby': `${id}-title` },
    el('h2', { id: `${id}-title` }, section.title),
    contents,
    leftOutNotes(profile, section),
  );
}

// The list of contents marks the section that is being read.
function contentsList(shown) {
  const links = shown.map(({ key, title }) =>
    el('li', {}, el('a', { href: `#${key}`, 'data-section': key, on: { click: (event) => goTo(event, key) } }, title)),
  );
  const nav = el('nav', { class: 'contents', 'aria-label': 'Sections' }, el('ul', {}, links));
  const watcher = new IntersectionObserver(
    (entries) => {
      for (const entry of entries) {
        if (!entry.isIntersecting) continue;
        for (const link of nav.querySelectorAll('a')) {
          if (link.dataset.section === entry.target.id) link.setAttribute('aria-current', 'true');
          else link.removeAttribute('aria-current');
        }
      }
    },
    { rootMargin: '0px 0px -75% 0px' },
  );
  return { nav, watch: (element) => watcher.observe(element) };
}

// Sections have no address of their own, since the address says which profile is shown.
function goTo(event, key) {
  event.preventDefault();
  const target = document.getElementById(key);
  target.scrollIntoView();
  const heading = target.querySelector('h2');
  heading.setAttribute('tabindex', '-1');
  heading.focus({ preventScroll: true });
}

function showProfile(profile) {
  const { line } = profile;
  const media = line.media || line.file;
  setHeading(
    media,
    [line.printer || line.model, line.resolution ? `${showResolution(line.resolution)} dpi` : '', line.file]
      .filter(Boolean)
      .join(' · '),
    guessLanguage(media),
  );
  const shown = sections.filter((section) => hasSection(profile, section));
  const contents = contentsList(shown);
  const elements = shown.map((section) => sectionElement(profile, section));
  mainElement.replaceChildren(
    el('div', { class: 'profile' }, contents.nav, el('div', { class: 'sections' }, elements)),
  );
  elements.forEach(contents.watch);
}
