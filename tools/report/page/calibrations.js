// --- calibrations: how the curves moved -------------------------------------------------------------------------

const setNamed = (sets, name) => sets?.find((set) => set.name === name);
const curveOf = (sets, name, ink) => setNamed(sets, name)?.curves.find((curve) => curve.ink === ink.ink && curve.extend === ink.extend);

// The calibrations that have curves of a kind, by time and then in the order of the history.
function dated(profile, name) {
  const list = profile.calibrations.list.map((calibration, i) => ({ ...calibration, order: i, sets: profile.calibrationCurves[i] }));
  return list.filter((calibration) => setNamed(calibration.sets, name)?.curves.length > 0).sort((a, b) => a.time - b.time || a.order - b.order);
}

function inksOf(calibrations, name) {
  const inks = new Map();
  for (const { sets } of calibrations) {
    for (const curve of setNamed(sets, name).curves) {
      const key = `${curve.ink}-${curve.extend}`;
      if (!inks.has(key)) inks.set(key, curve);
    }
  }
  return [...inks.values()];
}

// Changes between two curves, as parts of the whole. Curves of different lengths are compared where both have samples.
function changeBetween(from, to) {
  if (!from || !to) return null;
  const a = samplesOf(from);
  const b = samplesOf(to);
  const changes = d3.range(a.length).map((i) => {
    const other = b[Math.round(i * (b.length - 1) / Math.max(a.length - 1, 1))];
    return Math.abs(other / greatestOf(to) - a[i] / greatestOf(from));
  });
  return { greatest: d3.max(changes) ?? 0, mean: d3.mean(changes) ?? 0 };
}

function driftSeries(calibrations, name, inks, measure, sinceFirst, places) {
  return inks.map((ink, i) => {
    const curves = calibrations.map(({ sets }) => curveOf(sets, name, ink));
    const values = curves.map((curve, at) => changeBetween(sinceFirst ? curves[0] : curves[Math.max(at - 1, 0)], curve)?.[measure] ?? 0);
    return { ...inkStyle(ink, i), values, xs: places };
  });
}

// By date where the dates tell the calibrations apart, else by their number.
function timeAxis(calibrations) {
  const times = calibrations.map(({ time }) => time);
  const isDated = times.every((time) => time > 0) && new Set(times).size === times.length && times.length > 1;
  const places = isDated ? times : d3.range(calibrations.length);
  const domain = places.length > 1 ? d3.extent(places) : [0, 1];
  const span = domain[1] - domain[0];
  const short = new Intl.DateTimeFormat(readersLanguages, span > 300 * 86400 ? { month: 'short', year: 'numeric' } : { day: 'numeric', month: 'short' });
  const show = isDated ? (time) => (times.includes(time) ? showDate(time) : short.format(new Date(time * 1000))) : (i) => (Number.isInteger(i) ? `${i + 1}` : '');
  return { places, axis: { label: isDated ? 'Date' : 'Calibration', domain, show, ticks: isDated ? undefined : places } };
}

function driftPlots(profile, name, prefix, sinceFirst) {
  const calibrations = dated(profile, name);
  const inks = inksOf(calibrations, name);
  const { places, axis } = timeAxis(calibrations);
  return [['greatest', 'Greatest change'], ['mean', 'Mean change']].map(([measure, title]) => {
    const series = driftSeries(calibrations, name, inks, measure, sinceFirst, places);
    const most = Math.max(d3.max(series, ({ values }) => d3.max(values)) * 1.1, 0.001);
    return el('div', { class: 'card' }, new Plot({
      id: `${prefix}drift-${measure}`, title, note: sinceFirst ? 'Since the first calibration, as part of the whole range.' : 'Since the calibration before, as part of the whole range.',
      series, x: axis, y: { label: title, domain: [0, most], show: (value) => finePercent(value) },
    }).root);
  });
}

const finePercent = (value) => new Intl.NumberFormat(readersLanguages, { style: 'percent', maximumFractionDigits: 2 }).format(value);

// One plot for each ink with its curves of all calibrations; one of them is marked.
function smallMultiples(profile, name, prefix, marked) {
  const calibrations = dated(profile, name);
  return inksOf(calibrations, name).map((ink, place) => {
    const style = inkStyle(ink, place);
    const present = calibrations.map((calibration, i) => [calibration, curveOf(calibration.sets, name, ink), i]).filter(([, curve]) => curve);
    const series = present.map(([calibration, curve, i]) => ({
      ...style, dash: '', marker: null, key: `${calibration.code}`, label: calibration.name || `Calibration ${calibration.code}`, values: samplesOf(curve),
      weight: i === marked ? 'marked' : 'faint',
    })).sort((a, b) => (a.weight === 'marked') - (b.weight === 'marked'));
    const set = setNamed(present[0][0].sets, name);
    return el('div', { class: 'card' }, new Plot({
      id: `${prefix}calibration-${name}-${style.key}`, title: style.label, series, compact: true, legend: false, height: 200,
      x: percentAxis('Input'), y: sampleAxis(set, present.map(([, curve]) => curve)),
    }).root);
  });
}

function calibrationCurveViews(profile, prefix) {
  const kinds = [...new Set(profile.calibrationCurves.flat().filter((set) => set.curves.length > 0).map((set) => set.name))];
  if (kinds.length === 0) return el('p', { class: 'note' }, 'The calibrations hold no curves.');
  const state = { kind: kinds.includes('calibration-linearization') ? 'calibration-linearization' : kinds[0], sinceFirst: true, marked: Infinity };
  const multiples = el('div', { class: 'cards small' });
  const drifts = el('div', { class: 'cards' });
  const controls = el('div', { class: 'controls screen' });
  const redraw = () => {
    const last = dated(profile, state.kind).length - 1;
    state.marked = Math.min(state.marked, last);
    multiples.replaceChildren(...smallMultiples(profile, state.kind, prefix, state.marked));
    drifts.replaceChildren(...driftPlots(profile, state.kind, prefix, state.sinceFirst));
  };
  const tellMarked = () => {
    const calibration = dated(profile, state.kind)[state.marked];
    return `${calibration.name || `Calibration ${calibration.code}`}, ${showDate(calibration.time)}`;
  };
  const makeControls = () => {
    const output = el('output', {}, tellMarked());
    controls.replaceChildren(
      el('label', {}, 'Curves', el('select', { on: { change: (event) => { state.kind = event.target.value; redraw(); makeControls(); } } },
        kinds.map((kind) => el('option', { value: kind, selected: kind === state.kind }, curveTitle(kind))))),
      el('label', {}, 'Marked', el('input', {
        type: 'range', min: 0, max: dated(profile, state.kind).length - 1, value: state.marked,
        on: { input: (event) => { state.marked = Number(event.target.value); redraw(); output.value = tellMarked(); event.target.setAttribute('aria-valuetext', tellMarked()); } },
      }), output),
      el('label', {}, 'Change', el('select', { on: { change: (event) => { state.sinceFirst = event.target.value === 'first'; redraw(); } } },
        el('option', { value: 'first' }, 'since the first'), el('option', { value: 'before' }, 'since the one before'))));
  };
  redraw();
  makeControls();
  return [controls, multiples, el('h3', {}, 'Drift'), drifts];
}

function calibrationsSection(profile, prefix) {
  const { list, newest } = profile.calibrations;
  if (list.length === 0) return el('p', { class: 'note' }, 'The history holds no calibrations yet.');
  const rows = list.map((calibration) => [calibration.name || '–', showTime(calibration.time), String(calibration.code), calibration.value, calibration.code === newest ? 'newest' : '']);
  return [
    el('div', { class: 'card' }, dataTable({ label: 'Calibrations', columns: ['Name', 'Time', 'Code', 'Value', ''], rows })),
    ...(profile.calibrationCurves ? [calibrationCurveViews(profile, prefix)].flat() : []),
  ];
}

