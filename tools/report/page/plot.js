// --- plot: curves over one axis, with values on hover, series switched on and off, zoom, and a table behind ------

const plotMargin = { top: 10, right: 12, bottom: 34, left: 48 };

// A series has key, label, color, dash, marker, values, and xs if its samples stand at places of their own.
// Options: id, title, note, series, x and y as {label, domain, show, ticks}; stacked puts series one on the other;
// compact is for small multiples; name says more than the title to those who do not see its place; legend false leaves the legend to the caller; showValue(series, index) tells a value.
class Plot {
  constructor(options) {
    Object.assign(this, { stacked: false, compact: false, legend: true, height: 270 }, options);
    this.name ??= this.title;
    this.hidden = new Set();
    this.view = { x: this.x.domain, y: this.y.domain };
    this.cursor = null;
    this.build();
    drawLazily(this.root, () => this.start());
  }

  // --- elements ---

  build() {
    const titleId = freshId('plot');
    this.area = el('div', {
      class: 'area',
      tabindex: 0,
      role: 'slider',
      'aria-label': `${this.name}, values along ${this.x.label}`,
      'aria-valuemin': 0,
      'aria-valuemax': Math.max(this.longest() - 1, 0),
      'aria-valuenow': 0,
      'aria-valuetext': 'Arrow keys show the values',
      'aria-orientation': 'horizontal',
    });
    this.area.style.minHeight = `${this.height}px`;
    this.tip = el('div', { class: 'tip', hidden: true });
    this.root = el(
      'figure',
      { class: 'plot', 'data-plot': this.id, 'aria-labelledby': titleId },
      el(
        'div',
        { class: 'head' },
        el(
          'figcaption',
          {},
          el('h3', { id: titleId }, this.title),
          this.note ? el('p', { class: 'note' }, this.note) : null,
        ),
        this.toolbar(),
      ),
      this.area,
      this.legend ? this.legendList() : null,
      lazyDetails({ class: 'data' }, 'Values as a table', () => this.table()),
    );
    this.area.append(this.tip);
    this.listen();
  }

  toolbar() {
    const button = (name, sign, action) =>
      el('button', { type: 'button', title: name, 'aria-label': `${name}: ${this.name}`, on: { click: action } }, sign);
    return el(
      'div',
      { class: 'tools' },
      button('Zoom in', '+', () => this.zoomBy(0.5)),
      button('Zoom out', '−', () => this.zoomBy(2)),
      button('Show all', '⤢', () => this.showAll()),
    );
  }

  legendList() {
    const entries = this.series.map((series) =>
      el(
        'li',
        {},
        el(
          'button',
          {
            type: 'button',
            'aria-pressed': 'true',
            'data-series': series.key,
            title: 'Show or hide; double-click shows this one alone',
            on: { click: (event) => this.toggle(series, event.currentTarget), dblclick: () => this.showOnly(series) },
          },
          legendSign(series, this.stacked),
          el('span', {}, series.label),
        ),
      ),
    );
    this.buttons = entries.map((entry) => entry.firstChild);
    return el('ul', { class: 'legend', 'aria-label': `${this.name}: show or hide` }, entries);
  }

  table() {
    const rows = d3
      .range(this.longest())
      .map((i) => [
        this.x.show(this.placeOf(this.series[0], i)),
        ...this.series.map((series) => (i < series.values.length ? Number(series.values[i]) : null)),
      ]);
    const table = dataTable({
      label: `${this.name}: values`,
      columns: [this.x.label, ...this.series.map((series) => series.label)],
      rows,
    });
    table.setAttribute('data-table', this.id);
    return table;
  }

  // --- data ---

  longest() {
    return d3.max(this.series, (series) => series.values.length) ?? 0;
  }
  visible() {
    return this.series.filter((series) => !this.hidden.has(series.key));
  }

  placeOf(series, index) {
    if (series.xs) return series.xs[index];
    const [from, to] = this.x.domain;
    return series.values.length > 1 ? from + ((to - from) * index) / (series.values.length - 1) : from;
  }

  nearestIndex(series, place) {
    if (series.xs) return d3.scan(series.xs, (a, b) => Math.abs(a - place) - Math.abs(b - place));
    const [from, to] = this.x.domain;
    const index = Math.round(((place - from) / (to - from)) * (series.values.length - 1));
    return Math.min(Math.max(index, 0), series.values.length - 1);
  }

  toggle(series, button) {
    const wasHidden = this.hidden.delete(series.key);
    if (!wasHidden) this.hidden.add(series.key);
    button.setAttribute('aria-pressed', String(wasHidden));
    this.draw();
  }

  showOnly(series) {
    this.hidden = new Set(this.series.filter((other) => other !== series).map((other) => other.key));
    this.series.forEach((other, i) => this.buttons[i].setAttribute('aria-pressed', String(other === series)));
    this.draw();
  }

  // --- drawing ---

  start() {
    this.draw();
    this.resizing = new ResizeObserver(() => {
      if (this.area.clientWidth !== this.width) this.draw();
    });
    this.resizing.observe(this.area);
  }

  draw() {
    this.width = Math.max(this.area.clientWidth || 640, 160);
    const left = this.compact ? 40 : plotMargin.left;
    this.xScale = d3.scaleLinear(this.view.x, [left, this.width - plotMargin.right]);
    this.yScale = d3.scaleLinear(this.view.y, [this.height - plotMargin.bottom, plotMargin.top]);
    d3.select(this.area).select('svg').remove();
    this.svg = d3
      .select(this.area)
      .insert('svg', ':first-child')
      .attr('viewBox', `0 0 ${this.width} ${this.height}`)
      .attr('aria-hidden', 'true');
    this.drawAxes(left);
    this.clipId ??= freshId('clip');
    this.svg
      .append('clipPath')
      .attr('id', this.clipId)
      .append('rect')
      .attr('x', left - 6)
      .attr('y', plotMargin.top - 6)
      .attr('width', this.width - left - plotMargin.right + 12)
      .attr('height', this.height - plotMargin.top - plotMargin.bottom + 12);
    this.plane = this.svg.append('g').attr('clip-path', `url(#${this.clipId})`);
    if (this.stacked) this.drawLayers();
    else this.drawCurves();
    this.overlay = this.svg.append('g');
    if (this.cursor !== null) this.showCursor(this.cursor);
  }

  drawAxes(left) {
    const { width, height } = this;
    const right = width - plotMargin.right;
    const bottom = height - plotMargin.bottom;
    const xTicks =
      this.x.ticks ?? this.xScale.ticks(Math.max(2, Math.floor((right - left) / (this.compact ? 70 : 90))));
    const unit = this.y.unit ?? 1;
    const yTicks = d3
      .ticks(this.view.y[0] / unit, this.view.y[1] / unit, this.compact ? 3 : 5)
      .map((tick) => tick * unit);
    const grid = this.svg.append('g').attr('class', 'grid');
    grid
      .selectAll(null)
      .data(yTicks)
      .enter()
      .append('line')
      .attr('x1', left)
      .attr('x2', right)
      .attr('y1', (y) => this.yScale(y))
      .attr('y2', (y) => this.yScale(y));
    grid
      .selectAll(null)
      .data(xTicks)
      .enter()
      .append('line')
      .attr('y1', plotMargin.top)
      .attr('y2', bottom)
      .attr('x1', (x) => this.xScale(x))
      .attr('x2', (x) => this.xScale(x));
    const text = this.svg.append('g');
    text
      .selectAll(null)
      .data(yTicks)
      .enter()
      .append('text')
      .attr('class', 'y-tick')
      .attr('x', left - 6)
      .attr('dy', '.35em')
      .attr('text-anchor', 'end')
      .attr('y', (y) => this.yScale(y))
      .text(this.y.show);
    text
      .selectAll(null)
      .data(xTicks)
      .enter()
      .append('text')
      .attr('y', bottom + 14)
      .attr('text-anchor', (x) => (this.xScale(x) > right - 12 ? 'end' : 'middle'))
      .attr('x', (x) => this.xScale(x))
      .text(this.x.show);
    text
      .append('text')
      .attr('x', (left + right) / 2)
      .attr('y', height - 4)
      .attr('text-anchor', 'middle')
      .text(this.x.label);
    this.svg
      .append('rect')
      .attr('class', 'frame')
      .attr('x', left)
      .attr('y', plotMargin.top)
      .attr('width', right - left)
      .attr('height', bottom - plotMargin.top);
    if (this.view.y[0] < 0)
      this.svg
        .append('line')
        .attr('class', 'zero')
        .attr('x1', left)
        .attr('x2', right)
        .attr('y1', this.yScale(0))
        .attr('y2', this.yScale(0));
  }

  drawCurves() {
    // What is marked lies on top.
    for (const series of this.visible().sort((a, b) => (a.weight === 'marked') - (b.weight === 'marked'))) {
      const x = (_, i) => this.xScale(this.placeOf(series, i));
      const path = d3
        .line()
        .x(x)
        .y((value) => this.yScale(value));
      this.plane
        .append('path')
        .attr('class', `curve ${series.weight ?? ''}`)
        .attr('data-series', series.key)
        .attr('stroke-dasharray', series.dash || null)
        .attr('d', path(Array.from(series.values)))
        .style('--ink', series.color);
      if (series.marker) this.drawMarkers(series);
    }
  }

  // A few along the curve, each ink at other places, so that curves on one line stay apart.
  drawMarkers(series) {
    const place = this.series.indexOf(series);
    const step = series.xs ? 1 : Math.max(1, (series.values.length - 1) / (this.compact ? 4 : 7));
    const first = series.xs ? 0 : step * ((place * 0.37) % 1);
    const indices = d3
      .range(first, series.values.length, step)
      .map(Math.round)
      .filter((i) => i < series.values.length);
    this.plane
      .append('g')
      .selectAll(null)
      .data(indices)
      .enter()
      .append('path')
      .attr('class', 'dot')
      .style('--ink', series.color)
      .attr('d', markerPath(series.marker))
      .attr('transform', (i) => `translate(${this.xScale(this.placeOf(series, i))},${this.yScale(series.values[i])})`);
  }

  drawLayers() {
    const shown = this.visible();
    if (shown.length === 0) return;
    const rows = d3
      .range(this.longest())
      .map((i) => Object.fromEntries(shown.map((series) => [series.key, series.values[i] ?? 0])));
    const layers = d3.stack().keys(shown.map((series) => series.key))(rows);
    const area = d3
      .area()
      .x((_, i) => this.xScale(this.placeOf(shown[0], i)))
      .y0((d) => this.yScale(d[0]))
      .y1((d) => this.yScale(d[1]));
    layers.forEach((layer, i) => {
      this.plane
        .append('path')
        .attr('class', 'layer')
        .attr('data-series', shown[i].key)
        .attr('d', area(layer))
        .style('--ink', shown[i].fill);
    });
    layers.forEach((layer, i) => this.nameLayer(layer, shown[i]));
    const top = d3
      .line()
      .x((_, i) => this.xScale(this.placeOf(shown[0], i)))
      .y((d) => this.yScale(d[1]));
    this.plane
      .append('path')
      .attr('class', 'total')
      .attr('d', top(layers[layers.length - 1]));
  }

  // The name stands where the layer has the most room for it, or nowhere.
  nameLayer(layer, series) {
    const half = series.label.length * 4 + 2;
    const [left, right] = this.xScale.range();
    const places = layer.map((_, i) => this.xScale(this.placeOf(series, i)));
    const room = places.map((x) => {
      if (x - half < left || x + half > right) return 0;
      const covered = layer.filter((_, i) => Math.abs(places[i] - x) <= half + (places[1] - places[0]) / 2);
      return this.yScale(d3.max(covered, (d) => d[0])) - this.yScale(d3.min(covered, (d) => d[1]));
    });
    const best = d3.scan(room, (a, b) => b - a);
    if (best === undefined || room[best] < 15) return;
    this.plane
      .append('text')
      .attr('class', 'layer-name')
      .attr('dy', '.35em')
      .attr('x', places[best])
      .attr('y', this.yScale((layer[best][0] + layer[best][1]) / 2))
      .text(series.label);
  }

  // --- the cursor ---

  showCursor(place) {
    const shown = this.visible();
    if (shown.length === 0 || !this.overlay) return this.hideCursor();
    this.cursor = place;
    const index = this.nearestIndex(shown[0], place);
    const x = this.placeOf(shown[0], index);
    this.overlay.selectAll('.cross').remove();
    this.overlay
      .append('line')
      .attr('class', 'cross')
      .attr('x1', this.xScale(x))
      .attr('x2', this.xScale(x))
      .attr('y1', plotMargin.top)
      .attr('y2', this.height - plotMargin.bottom);
    const told =
      shown.length > 9 && shown.some((series) => series.weight === 'marked')
        ? shown.filter((series) => series.weight === 'marked')
        : shown;
    const values = told.map((series) => [series, this.valueText(series, this.nearestIndex(series, x))]);
    if (this.stacked) values.push([null, this.y.show(d3.sum(shown, (series) => series.values[index] ?? 0))]);
    this.fillTip(this.x.show(x), values);
    this.placeTip(this.xScale(x) > this.width / 2);
    this.area.setAttribute('aria-valuenow', String(index));
    this.area.setAttribute(
      'aria-valuetext',
      `${this.x.label} ${this.x.show(x)}: ${values.map(([series, text]) => `${series?.label ?? 'total'} ${text}`).join(', ')}`,
    );
  }

  // On the other side of the cursor, in the corner that rising curves leave free.
  placeTip(isLeft) {
    const corner = isLeft
      ? { left: `${plotMargin.left + 6}px`, right: '', top: '0.5rem', bottom: '' }
      : { left: '', right: `${plotMargin.right + 6}px`, top: '', bottom: `${plotMargin.bottom + 6}px` };
    Object.assign(this.tip.style, corner);
  }

  valueText(series, index) {
    const value = series.values[index];
    if (value === undefined || value === null) return '–';
    return this.showValue ? this.showValue(value) : this.y.show(value);
  }

  fillTip(heading, values) {
    this.tip.replaceChildren(
      el('b', {}, `${this.x.label} ${heading}`),
      el(
        'table',
        {},
        el(
          'tbody',
          {},
          values.map(([series, text]) =>
            el(
              'tr',
              {},
              el(
                'th',
                { scope: 'row' },
                series ? legendSign(series, this.stacked) : '',
                ` ${series?.label ?? 'Total'}`,
              ),
              el('td', {}, text),
            ),
          ),
        ),
      ),
    );
    this.tip.hidden = false;
  }

  hideCursor() {
    this.cursor = null;
    this.tip.hidden = true;
    this.overlay?.selectAll('.cross').remove();
  }

  // --- zoom ---

  look(x, y) {
    this.view = { x, y };
    this.draw();
  }

  showAll() {
    this.look(this.x.domain, this.y.domain);
  }

  zoomBy(factor) {
    const around = ([low, high], [least, most], center) => {
      const size = Math.min((high - low) * factor, most - least);
      const start = Math.min(Math.max(center - (size * (center - low)) / (high - low), least), most - size);
      return [start, start + size];
    };
    const middle = ([low, high]) => (low + high) / 2;
    this.look(
      around(this.view.x, this.x.domain, this.cursor ?? middle(this.view.x)),
      around(this.view.y, this.y.domain, middle(this.view.y)),
    );
  }

  // --- pointer and keys ---

  listen() {
    const on = (event, listener) => this.area.addEventListener(event, listener);
    on('pointermove', (event) => this.onMove(event));
    on('pointerleave', () => {
      if (!this.drag) this.hideCursor();
    });
    on('pointerdown', (event) => this.onPress(event));
    on('pointerup', (event) => this.onRelease(event));
    on('dblclick', () => this.showAll());
    on('keydown', (event) => this.onKey(event));
    on('blur', () => this.hideCursor());
  }

  pointAt(event) {
    const box = this.area.getBoundingClientRect();
    return [((event.clientX - box.left) * this.width) / box.width, event.clientY - box.top];
  }

  // A finger shows values; a mouse may also be about to draw a frame.
  onPress(event) {
    this.onMove(event);
    if (event.pointerType === 'mouse' && event.button === 0 && this.svg) this.drag = { from: this.pointAt(event) };
  }

  onMove(event) {
    if (!this.svg) return;
    const [x, y] = this.pointAt(event);
    this.showCursor(this.xScale.invert(x));
    if (!this.drag) return;
    const [fromX, fromY] = this.drag.from;
    this.drag.moved = Math.abs(x - fromX) > 8 && Math.abs(y - fromY) > 8;
    this.overlay.selectAll('.drag').remove();
    this.overlay
      .append('rect')
      .attr('class', 'drag')
      .attr('x', Math.min(x, fromX))
      .attr('y', Math.min(y, fromY))
      .attr('width', Math.abs(x - fromX))
      .attr('height', Math.abs(y - fromY));
  }

  onRelease(event) {
    const drag = this.drag;
    this.drag = null;
    this.overlay?.selectAll('.drag').remove();
    if (!drag?.moved) return;
    const [x, y] = this.pointAt(event);
    const sorted = (a, b) => [Math.min(a, b), Math.max(a, b)];
    const within = ([low, high], [least, most]) => [Math.max(low, least), Math.min(high, most)];
    this.look(
      within(sorted(this.xScale.invert(drag.from[0]), this.xScale.invert(x)), this.x.domain),
      within(sorted(this.yScale.invert(drag.from[1]), this.yScale.invert(y)), this.y.domain),
    );
  }

  onKey(event) {
    const leader = this.visible()[0];
    if (!leader) return;
    const last = leader.values.length - 1;
    const now = this.cursor === null ? -1 : this.nearestIndex(leader, this.cursor);
    const page = Math.max(1, Math.round(last / 10));
    const targets = {
      ArrowRight: now + 1,
      ArrowUp: now + 1,
      ArrowLeft: now - 1,
      ArrowDown: now - 1,
      PageUp: now + page,
      PageDown: now - page,
      Home: 0,
      End: last,
    };
    const actions = { '+': () => this.zoomBy(0.5), '-': () => this.zoomBy(2), Escape: () => this.showAll() };
    if (event.key in targets) this.showCursor(this.placeOf(leader, Math.min(Math.max(targets[event.key], 0), last)));
    else if (event.key in actions) actions[event.key]();
    else return;
    event.preventDefault();
  }
}

// The line of a series as it looks in the plot.
function legendSign(series, filled) {
  const svg = d3.create('svg').attr('viewBox', '0 0 28 12').attr('aria-hidden', 'true').style('--ink', series.color);
  if (filled) {
    svg.append('rect').attr('x', 7).attr('width', 14).attr('height', 12).attr('rx', 3).style('fill', series.fill);
  } else {
    svg
      .append('line')
      .attr('class', 'ink-line')
      .attr('x2', 28)
      .attr('y1', 6)
      .attr('y2', 6)
      .attr('stroke-dasharray', series.dash || null);
    if (series.marker)
      svg.append('path').attr('class', 'dot').attr('d', markerPath(series.marker)).attr('transform', 'translate(14,6)');
  }
  return svg.node();
}

// A scale around zero that holds all changes.
function changeAxis(label, series) {
  const most = Math.max(d3.max(series, ({ values }) => d3.max(values, Math.abs)) ?? 0, 0.0005) * 1.1;
  return { label, domain: [-most, most], show: showChange };
}

const percentAxis = (label) => ({ label, domain: [0, 1], show: showPercent });
