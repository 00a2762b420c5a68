// --- curves: what each ink gets ---------------------------------------------------------------------------------

const curveTexts = {
  'ink-limit': ['Ink limit', 'How much of each ink is laid down at most.'],
  'multi-ink-limit': ['Ink limits', 'How much of each ink is laid down at most, by condition.'],
  'variable-ink-limit': ['Variable dot ink limit', 'The limit of each ink by dot size.'],
  linearization: ['Linearization', 'From what is asked for to what is printed, so that equal steps look equal.'],
  'gray-balance': ['Gray balance', 'Places in the linearization at which the inks together are gray.'],
  'merged-gray-balance': [
    'Gray balance through the linearization',
    'What a print job gets: the linearization looked up at each place of the gray balance.',
  ],
  'light-ink': ['Light inks', 'How an ink is split into its light and full forms.'],
  variable: ['Variable dots', 'How much of an ink each dot size lays down.'],
  ucr: ['Black generation', 'What black takes over from the colours.'],
  'calibration-ink-limit': ['Ink limit', ''],
  'calibration-linearization': ['Linearization', ''],
  'calibration-gray-balance': ['Gray balance', ''],
};
const curveOrder = [
  'linearization',
  'ink-limit',
  'multi-ink-limit',
  'gray-balance',
  'merged-gray-balance',
  'light-ink',
  'variable',
  'variable-ink-limit',
  'ucr',
];
const ucrNames = { 1: 'black generation', 2: 'under colour removal' };

const curveTitle = (name) => curveTexts[name]?.[0] ?? name;

function conditionName(setName, extend) {
  if (setName === 'ucr') return ucrNames[extend] ?? `kind ${extend}`;
  return /^variable/i.test(setName) ? `dot size ${extend}` : `condition ${extend}`;
}

// The curves of a set, in groups that share a plot: one for each condition.
function curveGroups(set) {
  const groups = new Map();
  for (const curve of set.curves) {
    const extend = set.name === 'light-ink' || set.name === 'ucr' ? 0 : curve.extend;
    if (!groups.has(extend)) groups.set(extend, []);
    groups.get(extend).push(curve);
  }
  return [...groups].map(([extend, curves]) => ({ extend, curves, isOnly: groups.size === 1 }));
}

const groupTitle = (set, group) =>
  curveTitle(set.name) + (group.isOnly ? '' : `, ${conditionName(set.name, group.extend)}`);

function seriesLabel(set, group, curve) {
  const name = set.name === 'ucr' ? '' : inkLabel(curve.name, curve.ink);
  const many = group.curves.filter((other) => other.ink === curve.ink).length > 1;
  return many
    ? `${name} ${conditionName(set.name, curve.extend)}`.trim()
    : name || conditionName(set.name, curve.extend);
}

// Curves of one ink in several conditions share its colour, and differ in dash and marker.
const seriesOf = (set, group) =>
  group.curves.map((curve, place) => ({
    ...inkStyle(curve, place),
    key: `${curve.ink}-${curve.extend}`,
    label: seriesLabel(set, group, curve),
    values: samplesOf(curve),
  }));

// The samples of a gray balance are places in the linearization, all others parts of the whole.
function sampleAxis(set, curves) {
  const greatest = d3.max(curves, greatestOf);
  const used = d3.max(curves, (curve) => d3.max(samplesOf(curve)) ?? 0);
  const isPlace = set.name.endsWith('gray-balance') && set.name !== 'merged-gray-balance' && used < greatest / 2;
  if (isPlace) return { label: 'Place', domain: [0, Math.max(used, 1)], show: showNumber };
  return { label: 'Output', domain: [0, greatest], show: (value) => showPercent(value / greatest), unit: greatest };
}

// `heading` takes the place of the title and of the note where these stand over several plots.
function curvePlot(id, set, group, heading) {
  const y = sampleAxis(set, group.curves);
  return new Plot({
    id,
    title: heading ?? groupTitle(set, group),
    note: heading ? undefined : curveTexts[set.name]?.[1],
    name: heading && `${groupTitle(set, group)}, ${heading}`,
    series: seriesOf(set, group),
    x: percentAxis('Input'),
    y,
    showValue: y.unit ? (value) => `${showPercent(value / y.unit)} (${showNumber(value)})` : undefined,
  }).root;
}

const plotId = (prefix, set, group) => `${prefix}${set.name}${group.isOnly ? '' : `-${group.extend}`}`;

const sortedSets = (sets) => [...sets].sort((a, b) => curveOrder.indexOf(a.name) - curveOrder.indexOf(b.name));

function curveCards(sets, prefix) {
  return sortedSets(sets).flatMap((set) =>
    set.sound
      ? curveGroups(set).map((group) => el('div', { class: 'card' }, curvePlot(plotId(prefix, set, group), set, group)))
      : [
          el(
            'div',
            { class: 'card' },
            el('h3', {}, curveTitle(set.name)),
            el('p', { class: 'warning' }, 'These curves are damaged or empty.'),
          ),
        ],
  );
}

const curvesSection = (profile, prefix) => el('div', { class: 'cards' }, curveCards(profile.curves, prefix));

// The second curve less the first at each place of the first, as parts of the whole. A curve of another length is read
// between its samples.
function differenceOf(from, to) {
  const left = samplesOf(from);
  const right = samplesOf(to);
  return d3.range(left.length).map((at) => {
    const place = (at * (right.length - 1)) / Math.max(left.length - 1, 1);
    const low = Math.floor(place);
    const read = right[low] + (place - low) * ((right[low + 1] ?? right[low]) - right[low]);
    return read / greatestOf(to) - left[at] / greatestOf(from);
  });
}
