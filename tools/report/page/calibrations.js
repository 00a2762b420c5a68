// --- calibrations: how the curves moved -------------------------------------------------------------------------

const setNamed = (sets, name) => sets?.find((set) => set.name === name);
const curveOf = (sets, name, ink) =>
  setNamed(sets, name)?.curves.find((curve) => curve.ink === ink.ink && curve.extend === ink.extend);

const nameOf = (calibration) => calibration.name || `Calibration ${calibration.code}`;

// The calibrations that have curves of a kind, by time and then in the order of the history.
function dated(profile, name) {
  const list = profile.calibrations.list.map((calibration, i) => ({
    ...calibration,
    order: i,
    sets: profile.calibrationCurves[i],
  }));
  return list
    .filter((calibration) => setNamed(calibration.sets, name)?.curves.length > 0)
    .sort((a, b) => a.time - b.time || a.order - b.order);
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

// How far one curve is from another, as parts of the whole.
function changeBetween(from, to) {
  if (!from || !to) return null;
  const changes = differenceOf(from, to).map(Math.abs);
  return { greatest: d3.max(changes) ?? 0, mean: d3.mean(changes) ?? 0 };
}

function driftSeries(calibrations, name, inks, measure, sinceFirst, places) {
  return inks.map((ink, i) => {
    const curves = calibrations.map(({ sets }) => curveOf(sets, name, ink));
    const values = curves.map(
      (curve, at) => changeBetween(sinceFirst ? curves[0] : curves[Math.max(at - 1, 0)], curve)?.[measure] ?? 0,
    );
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
  const short = dateFormat(
    span > 300 * 86400 ? { month: 'short', year: 'numeric' } : { day: 'numeric', month: 'short' },
  );
  const show = isDated
    ? (time) => (times.includes(time) ? showDate(time) : short(new Date(time * 1000)))
    : (i) => (Number.isInteger(i) ? `${i + 1}` : '');
  return {
    places,
    axis: { label: isDated ? 'Date' : 'Calibration', domain, show, ticks: isDated ? undefined : places },
  };
}

function driftPlots(profile, name, prefix, sinceFirst) {
  const calibrations = dated(profile, name);
  const inks = inksOf(calibrations, name);
  const { places, axis } = timeAxis(calibrations);
  return [
    ['greatest', 'Greatest change'],
    ['mean', 'Mean change'],
  ].map(([measure, title]) => {
    const series = driftSeries(calibrations, name, inks, measure, sinceFirst, places);
    const most = Math.max(d3.max(series, ({ values }) => d3.max(values)) * 1.1, 0.001);
    return el(
      'div',
      { class: 'card' },
      new Plot({
        id: `${prefix}drift-${measure}`,
        title,
        note: sinceFirst
          ? 'Since the first calibration, as part of the whole range.'
          : 'Since the calibration before, as part of the whole range.',
        series,
        x: axis,
        y: { label: title, domain: [0, most], show: showFinePercent },
      }).root,
    );
  });
}

// Each ink's curves of all calibrations in a plot of its own, or their change since the first; a slider marks one
// calibration in all of them. Below, how far the curves moved.
class CalibrationView {
  constructor(profile, prefix, kinds) {
    Object.assign(this, { profile, prefix, kinds, sinceFirst: true, isChange: false, plots: [] });
    this.kind = kinds.includes('calibration-linearization') ? 'calibration-linearization' : kinds[0];
    this.multiples = el('div', { class: 'cards small' });
    this.drifts = el('div', { class: 'cards' });
    this.controls = el('div', { class: 'controls screen' });
    this.elements = [this.controls, this.multiples, el('h3', {}, 'Drift'), this.drifts];
    this.showKind();
  }

  showKind() {
    this.calibrations = dated(this.profile, this.kind);
    this.marked = this.calibrations.length - 1;
    this.makeControls();
    this.showMultiples();
    this.showDrift();
  }

  showMultiples() {
    this.plots = inksOf(this.calibrations, this.kind).map((ink, place) => this.plotOf(ink, inkStyle(ink, place)));
    if (this.isChange) shareScale(this.plots);
    this.multiples.replaceChildren(...this.plots.map(({ root }) => el('div', { class: 'card' }, root)));
  }

  showDrift() {
    this.drifts.replaceChildren(...driftPlots(this.profile, this.kind, this.prefix, this.sinceFirst));
  }

  plotOf(ink, style) {
    const present = this.calibrations
      .map((calibration, i) => [calibration, curveOf(calibration.sets, this.kind, ink), i])
      .filter(([, curve]) => curve);
    const [, first] = present[0];
    const series = present.map(([calibration, curve, i]) => ({
      ...style,
      dash: '',
      marker: null,
      key: `${calibration.code}`,
      label: nameOf(calibration),
      weight: i === this.marked ? 'marked' : 'faint',
      place: i,
      values: this.isChange ? differenceOf(first, curve) : samplesOf(curve),
    }));
    const set = setNamed(present[0][0].sets, this.kind);
    return new Plot({
      id: `${this.prefix}${this.kind}-${style.key}`,
      title: style.label,
      series,
      compact: true,
      legend: false,
      height: 200,
      x: percentAxis('Input'),
      y: this.isChange
        ? changeAxis('Change', series)
        : sampleAxis(
            set,
            present.map(([, curve]) => curve),
          ),
    });
  }

  mark(number) {
    this.marked = number;
    for (const plot of this.plots) {
      for (const series of plot.series) series.weight = series.place === number ? 'marked' : 'faint';
      if (plot.svg) plot.draw();
    }
  }

  makeControls() {
    const told = () => `${nameOf(this.calibrations[this.marked])}, ${showDate(this.calibrations[this.marked].time)}`;
    const output = el('output', {}, told());
    const slider = el('input', {
      type: 'range',
      min: 0,
      max: this.calibrations.length - 1,
      value: this.marked,
      'aria-valuetext': told(),
      on: {
        input: () => {
          this.mark(Number(slider.value));
          output.value = told();
          slider.setAttribute('aria-valuetext', told());
        },
      },
    });
    const choice = (label, options, value, choose) =>
      el(
        'label',
        {},
        label,
        el(
          'select',
          { on: { change: (event) => choose(event.target.value) } },
          options.map(([key, text]) => el('option', { value: key, selected: key === value }, text)),
        ),
      );
    this.controls.replaceChildren(
      choice(
        'Curves',
        this.kinds.map((kind) => [kind, curveTitle(kind)]),
        this.kind,
        (kind) => {
          this.kind = kind;
          this.showKind();
        },
      ),
      choice(
        'Shown',
        [
          ['curves', 'curves'],
          ['change', 'change since the first'],
        ],
        this.isChange ? 'change' : 'curves',
        (shown) => {
          this.isChange = shown === 'change';
          this.showMultiples();
        },
      ),
      el('label', {}, 'Marked', slider, output),
      choice(
        'Drift',
        [
          ['first', 'since the first'],
          ['before', 'since the one before'],
        ],
        this.sinceFirst ? 'first' : 'before',
        (since) => {
          this.sinceFirst = since === 'first';
          this.showDrift();
        },
      ),
    );
  }
}

// One scale for all, so that the inks can be compared.
function shareScale(plots) {
  const most = d3.max(plots, (plot) => plot.y.domain[1]);
  for (const plot of plots) {
    plot.y.domain = [-most, most];
    plot.view.y = plot.y.domain;
  }
}

function calibrationCurveViews(profile, prefix) {
  const kinds = [
    ...new Set(
      profile.calibrationCurves
        .flat()
        .filter((set) => set.curves.length > 0)
        .map((set) => set.name),
    ),
  ];
  if (kinds.length === 0) return [el('p', { class: 'note' }, 'The calibrations hold no curves.')];
  return new CalibrationView(profile, prefix, kinds).elements;
}

function calibrationsSection(profile, prefix) {
  const { list, newest } = profile.calibrations;
  if (list.length === 0) return el('p', { class: 'note' }, 'The history holds no calibrations yet.');
  const rows = list.map((calibration) => [
    calibration.name || '–',
    showTime(calibration.time),
    String(calibration.code),
    calibration.value,
    calibration.code === newest ? 'newest' : '',
  ]);
  return [
    el(
      'div',
      { class: 'card' },
      dataTable({ label: 'List of calibrations', columns: ['Name', 'Time', 'Code', 'Value', 'State'], rows }),
    ),
    ...(profile.calibrationCurves ? calibrationCurveViews(profile, prefix) : []),
  ];
}
