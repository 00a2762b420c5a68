// --- separation: the table from colours to inks -----------------------------------------------------------------

// The first input channel runs slowest, as in the tables of ICC profiles.
class Separation {
  constructor(part) {
    this.grid = part.grid;
    this.inputs = part.inputs.map((channel, i) => channel.name.trim() || `Input ${i + 1}`);
    this.outputs = part.outputs.map((channel, i) => ({ ...inkStyle(channel, i), key: `output-${i}` }));
    this.samples = bytesOf(part.samples);
    this.strides = part.inputs.map((_, i) => this.grid ** (part.inputs.length - 1 - i));
    this.paper = this.total(this.corner(0)) <= this.total(this.corner(this.grid - 1)) ? 0 : this.grid - 1;
  }

  get dark() {
    return this.grid - 1 - this.paper;
  }
  corner(at) {
    return this.inputs.map(() => at);
  }
  offset(places) {
    return d3.sum(places, (place, i) => place * this.strides[i]) * this.outputs.length;
  }
  amount(places, output) {
    return this.samples[this.offset(places) + output] / 255;
  }
  total(places) {
    return d3.sum(this.outputs, (_, output) => this.amount(places, output));
  }

  // Ink amounts along a path of nodes, as series of a plot.
  along(path) {
    return this.outputs.map((style, output) => ({
      ...style,
      values: path.map((places) => this.amount(places, output)),
    }));
  }

  steps(from, to) {
    return d3.range(this.grid).map((i) => from + ((to - from) * i) / (this.grid - 1));
  }

  // From paper to dark with all channels alike; of four channels the last is black, which stays away.
  neutral() {
    const alone = this.inputs.length === 4;
    return this.steps(this.paper, this.dark).map((at) =>
      this.inputs.map((_, i) => (alone && i === 3 ? this.paper : at)),
    );
  }

  // One channel from its paper end to its other end, all others at `rest`.
  edge(channel, rest) {
    return this.steps(this.paper, this.dark).map((at) => this.inputs.map((_, i) => (i === channel ? at : rest)));
  }
}

const openedTables = new WeakMap();

function separationOf(part) {
  if (!openedTables.has(part)) openedTables.set(part, new Separation(part));
  return openedTables.get(part);
}

function separationPlot(table, { id, title, note, path, label, compact, most }) {
  const series = table.along(path);
  const height = compact ? 190 : 300;
  return new Plot({
    id,
    title,
    note,
    series,
    stacked: true,
    compact,
    height,
    legend: !compact,
    x: percentAxis(label),
    y: { label: 'Ink', domain: [0, most], show: showPercent },
  }).root;
}

// The greatest total of some paths, rounded up for a common scale.
function commonTotal(table, paths) {
  const most = d3.max(paths.flat(), (places) => table.total(places)) ?? 1;
  return Math.max(Math.ceil(most * 4) / 4, 0.25);
}

function separationEdges(table, prefix) {
  const edges = table.inputs.flatMap((name, i) => [
    { id: `${prefix}edge-${i}-paper`, title: `${name} alone`, path: table.edge(i, table.paper), label: name },
    { id: `${prefix}edge-${i}-dark`, title: `${name}, others full`, path: table.edge(i, table.dark), label: name },
  ]);
  const most = commonTotal(
    table,
    edges.map((edge) => edge.path),
  );
  return el(
    'div',
    { class: 'cards small' },
    edges.map((edge) => el('div', { class: 'card' }, separationPlot(table, { ...edge, compact: true, most }))),
  );
}

// --- slices ---

// A picture of two channels, the others held by sliders; the pointer and the arrow keys tell the inks of a node.
class SlicePicture {
  constructor(table, id) {
    Object.assign(this, { table, id, across: 0, up: 1, output: -1 });
    this.places = table.corner(table.paper);
    this.canvas = el('canvas', {
      class: 'slice',
      width: table.grid,
      height: table.grid,
      tabindex: 0,
      role: 'img',
      'data-slice': id,
    });
    this.axes = el('p', { class: 'note' });
    this.told = el('div', { role: 'status' });
    this.controls = el('div', { class: 'controls screen' });
    this.tableBox = lazyDetails({ class: 'data' }, 'This slice as a table', () => this.asTable());
    this.root = el(
      'div',
      {},
      this.controls,
      el('div', { class: 'slice-row' }, el('div', {}, this.canvas, this.axes), el('div', {}, this.told, this.tableBox)),
    );
    this.canvas.addEventListener('pointermove', (event) => this.tell(...this.cellAt(event)));
    this.canvas.addEventListener('keydown', (event) => this.onKey(event));
    this.cell = [table.grid >> 1, table.grid >> 1];
    this.makeControls();
    drawLazily(this.root, () => this.draw());
  }

  makeControls() {
    const { table } = this;
    const choose = (label, options, value, action) =>
      el(
        'label',
        {},
        label,
        el(
          'select',
          {
            on: {
              change: (event) => {
                action(Number(event.target.value));
                this.makeControls();
                this.draw();
              },
            },
          },
          options.map(([text, number]) => el('option', { value: number, selected: number === value }, text)),
        ),
      );
    const axes = table.inputs.map((name, i) => [name, i]);
    const others = axes.filter(([, i]) => i !== this.across && i !== this.up);
    this.controls.replaceChildren(
      choose('Across', axes, this.across, (i) => {
        if (i === this.up) this.up = this.across;
        this.across = i;
      }),
      choose('Up', axes, this.up, (i) => {
        if (i === this.across) this.across = this.up;
        this.up = i;
      }),
      choose(
        'Shown',
        [['All inks together', -1], ['Total ink', -2], ...table.outputs.map((output, i) => [output.label, i])],
        this.output,
        (i) => {
          this.output = i;
        },
      ),
      ...others.map(([name, i]) => this.slider(name, i)),
    );
  }

  slider(name, channel) {
    const show = () => showPercent(this.places[channel] / (this.table.grid - 1));
    const output = el('output', {}, show());
    return el(
      'label',
      {},
      name,
      el('input', {
        type: 'range',
        min: 0,
        max: this.table.grid - 1,
        value: this.places[channel],
        on: {
          input: (event) => {
            this.places[channel] = Number(event.target.value);
            output.value = show();
            this.draw();
          },
        },
      }),
      output,
    );
  }

  node(column, row) {
    const places = [...this.places];
    places[this.across] = column;
    places[this.up] = row;
    return places;
  }

  draw() {
    const { table } = this;
    const context = this.canvas.getContext('2d');
    const picture = context.createImageData(table.grid, table.grid);
    const inks = table.outputs.map((output) => printedColor(output.color));
    const greatest = commonTotal(table, [
      d3.cross(d3.range(table.grid), d3.range(table.grid)).map(([x, y]) => this.node(x, y)),
    ]);
    for (let row = 0; row < table.grid; ++row) {
      for (let column = 0; column < table.grid; ++column) {
        const color = this.colorOf(this.node(column, row), inks, greatest);
        picture.data.set([...color, 255], 4 * ((table.grid - 1 - row) * table.grid + column));
      }
    }
    context.putImageData(picture, 0, 0);
    this.canvas.setAttribute(
      'aria-label',
      `Slice of the separation table: ${table.inputs[this.across]} across, ${table.inputs[this.up]} up`,
    );
    this.axes.textContent = `→ ${table.inputs[this.across]}   ↑ ${table.inputs[this.up]}`;
    this.tell(...this.cell);
    if (this.tableBox.childElementCount > 1) this.tableBox.lastChild.replaceWith(this.asTable());
  }

  colorOf(places, inks, greatest) {
    if (this.output === -2) return [0, 0, 0].map(() => 255 * (1 - (0.92 * this.table.total(places)) / greatest));
    const used = this.output < 0 ? inks.map((_, i) => i) : [this.output];
    return [0, 1, 2].map((c) =>
      used.reduce((light, i) => light * (1 - this.table.amount(places, i) * (1 - inks[i][c] / 255)), 255),
    );
  }

  cellAt(event) {
    const box = this.canvas.getBoundingClientRect();
    const last = this.table.grid - 1;
    const cell = (share) => Math.min(Math.max(Math.floor(share * this.table.grid), 0), last);
    return [cell((event.clientX - box.left) / box.width), last - cell((event.clientY - box.top) / box.height)];
  }

  onKey(event) {
    const moves = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] };
    if (!(event.key in moves)) return;
    event.preventDefault();
    this.tell(...this.cell.map((at, i) => Math.min(Math.max(at + moves[event.key][i], 0), this.table.grid - 1)));
  }

  tell(column, row) {
    const { table } = this;
    this.cell = [column, row];
    const places = this.node(column, row);
    const share = (at) => showPercent(at / (table.grid - 1));
    this.told.replaceChildren(
      el('b', {}, `${table.inputs[this.across]} ${share(column)}, ${table.inputs[this.up]} ${share(row)}`),
      el(
        'table',
        {},
        el(
          'tbody',
          {},
          [
            ...table.outputs.map((output, i) => [output.label, table.amount(places, i), output.fill]),
            ['Total', table.total(places), null],
          ].map(([label, amount, color]) =>
            el(
              'tr',
              {},
              el('th', { scope: 'row' }, color ? swatch(color) : null, label),
              el('td', { class: 'number' }, showPercent(amount)),
            ),
          ),
        ),
      ),
    );
  }

  asTable() {
    const { table } = this;
    const share = (at) => showPercent(at / (table.grid - 1));
    const value = (places) => (this.output < 0 ? table.total(places) : table.amount(places, this.output));
    const shown = this.output < 0 ? 'total ink' : table.outputs[this.output].label;
    return dataTable({
      label: `Slice, ${shown}`,
      columns: [`${table.inputs[this.up]} \\ ${table.inputs[this.across]}`, ...d3.range(table.grid).map(share)],
      rows: d3
        .range(table.grid)
        .map((row) => [
          share(row),
          ...d3.range(table.grid).map((column) => showPercent(value(this.node(column, row)))),
        ]),
    });
  }
}

function swatch(color) {
  const box = el('span', { class: 'swatch', 'aria-hidden': 'true' });
  box.style.background = color;
  return box;
}

const canDrawSeparation = (part) =>
  part.grid > 1 && part.inputs.length > 1 && part.outputs.length > 0 && part.samples !== '';

function separationSection(profile, prefix) {
  const part = profile.separation;
  if (!canDrawSeparation(part)) return el('p', { class: 'note' }, 'The table has no nodes to draw.');
  const table = separationOf(part);
  const neutral = table.neutral();
  const names = table.inputs.slice(0, neutral[0].length === 4 ? 3 : undefined);
  return [
    el(
      'p',
      { class: 'note' },
      `From ${table.inputs.join(', ')} to ${table.outputs.length} inks over ${showNumber(table.grid)} points along each channel.`,
    ),
    el(
      'div',
      { class: 'card' },
      separationPlot(table, {
        id: `${prefix}neutral`,
        title: 'Ink along the neutral axis',
        path: neutral,
        label: 'From paper to dark',
        most: commonTotal(table, [neutral]),
        note: `${names.join(', ')} in equal amounts. The dashed line is the total of all inks shown.`,
      }),
    ),
    el('h3', {}, 'Ink along the edges'),
    separationEdges(table, prefix),
    el('h3', {}, 'Slices'),
    el(
      'div',
      { class: 'card' },
      el(
        'p',
        { class: 'note' },
        'All inks together are mixed from their colours on the screen: an impression, not a measurement.',
      ),
      new SlicePicture(table, `${prefix}slice`).root,
    ),
  ];
}
