// --- gamut: the embedded ICC profile ----------------------------------------------------------------------------

// CIE L*a*b* (D50) as a colour of the screen.
function screenColor({ l, a, b }) {
  const fy = (l + 16) / 116;
  const cube = (t) => (t > 6 / 29 ? t ** 3 : 3 * (6 / 29) ** 2 * (t - 4 / 29));
  const [x, y, z] = [0.9642 * cube(fy + a / 500), cube(fy), 0.8249 * cube(fy - b / 200)];
  const linear = [
    3.1339 * x - 1.6169 * y - 0.4906 * z,
    -0.9788 * x + 1.9161 * y + 0.0335 * z,
    0.0719 * x - 0.229 * y + 1.4052 * z,
  ];
  const [red, green, blue] = linear.map((v) =>
    Math.round(255 * Math.min(Math.max(v > 0.0031308 ? 1.055 * v ** (1 / 2.4) - 0.055 : 12.92 * v, 0), 1)),
  );
  return `rgb(${red} ${green} ${blue})`;
}

const colorantNames = { CMYK: ['C', 'M', 'Y', 'K'], 'CMY ': ['C', 'M', 'Y'], 'RGB ': ['R = 0', 'G = 0', 'B = 0'] };

function openGamut(part, style) {
  const { gamut, header } = part;
  const names = colorantNames[header.dataColorSpace] ?? [];
  return {
    ...style,
    tag: gamut.tag,
    nodes: gamut.nodes,
    grid: gamut.grid,
    outline: unpackLab(gamut.outline),
    surface: unpackLab(gamut.surface),
    paper: unpackLab(gamut.paper)[0],
    solids: unpackLab(gamut.solids).map((color, i) => ({ ...color, name: names[i] ?? `Colorant ${i + 1}` })),
  };
}

// The name stands on the outer side of its point.
function nameSolid(svg, { a, b, name }, x, y) {
  const length = Math.hypot(a, b) || 1;
  const anchor = a / length > 0.4 ? 'start' : a / length < -0.4 ? 'end' : 'middle';
  svg
    .append('text')
    .attr('class', 'solid-name')
    .attr('x', x + (11 * a) / length)
    .attr('y', y - (13 * b) / length)
    .attr('dy', '.35em')
    .attr('text-anchor', anchor)
    .text(name);
}

// One or two gamuts in the plane of a* and b*, both axes to the same scale.
function drawGamut(area, gamuts) {
  const size = Math.min(Math.max(area.clientWidth || 420, 200), 460);
  const all = gamuts.flatMap((gamut) => gamut.outline);
  const reach =
    Math.max(20, Math.ceil((d3.max(all, ({ a, b }) => Math.max(Math.abs(a), Math.abs(b))) ?? 100) / 20) * 20) + 8;
  const x = d3.scaleLinear([-reach, reach], [34, size - 8]);
  const y = d3.scaleLinear([-reach, reach], [size - 34, 8]);
  const svg = d3
    .create('svg')
    .attr('viewBox', `0 0 ${size} ${size}`)
    .attr('aria-hidden', 'true')
    .style('max-width', `${size}px`);
  const ticks = x.ticks(6);
  const grid = svg.append('g').attr('class', 'grid');
  for (const tick of ticks) {
    grid.append('line').attr('x1', x(tick)).attr('x2', x(tick)).attr('y1', y(-reach)).attr('y2', y(reach));
    grid.append('line').attr('y1', y(tick)).attr('y2', y(tick)).attr('x1', x(-reach)).attr('x2', x(reach));
    svg
      .append('text')
      .attr('x', x(tick))
      .attr('y', size - 20)
      .attr('text-anchor', 'middle')
      .text(showNumber(tick));
    svg
      .append('text')
      .attr('x', 28)
      .attr('y', y(tick))
      .attr('dy', '.35em')
      .attr('text-anchor', 'end')
      .text(showNumber(tick));
  }
  svg.append('line').attr('class', 'zero').attr('x1', x(0)).attr('x2', x(0)).attr('y1', y(-reach)).attr('y2', y(reach));
  svg.append('line').attr('class', 'zero').attr('y1', y(0)).attr('y2', y(0)).attr('x1', x(-reach)).attr('x2', x(reach));
  svg
    .append('text')
    .attr('x', size / 2)
    .attr('y', size - 4)
    .attr('text-anchor', 'middle')
    .text('a*');
  svg
    .append('text')
    .attr('x', 8)
    .attr('y', (y(ticks[ticks.length >> 1]) + y(ticks[(ticks.length >> 1) + 1])) / 2)
    .attr('dy', '.35em')
    .text('b*');
  if (gamuts.length === 1) {
    const darkFirst = [...gamuts[0].surface].sort((p, q) => p.l - q.l);
    svg
      .append('g')
      .selectAll(null)
      .data(darkFirst)
      .enter()
      .append('circle')
      .attr('r', 3.4)
      .attr('cx', (p) => x(p.a))
      .attr('cy', (p) => y(p.b))
      .style('fill', screenColor);
  }
  for (const gamut of gamuts) {
    const line = d3
      .line()
      .x((p) => x(p.a))
      .y((p) => y(p.b))
      .curve(d3.curveLinearClosed);
    svg
      .append('path')
      .attr('class', 'curve')
      .attr('data-series', gamut.key)
      .attr('stroke-dasharray', gamut.dash || null)
      .style('--ink', gamut.color)
      .attr('d', line(gamut.outline));
    for (const solid of gamut.solids) {
      svg
        .append('path')
        .attr('class', 'dot')
        .attr('d', markerPath(gamut.marker, 60))
        .style('--ink', gamut.color)
        .attr('transform', `translate(${x(solid.a)},${y(solid.b)})`);
      if (gamuts.length === 1) nameSolid(svg, solid, x(solid.a), y(solid.b));
    }
  }
  area.querySelector('svg')?.remove();
  area.prepend(svg.node());
}

function gamutTable(gamut) {
  const cells = (name, { l, a, b }, color) => [
    color ? el('span', {}, swatch(screenColor(color)), name) : name,
    showDecimal(l),
    showDecimal(a),
    showDecimal(b),
  ];
  const rows = [
    cells('Paper', gamut.paper, gamut.paper),
    ...gamut.solids.map((solid) => cells(solid.name, solid, solid)),
    ...gamut.outline.map((point, i) => cells(`Outline ${i + 1}`, point)),
  ];
  const table = dataTable({ label: `Gamut in L*a*b* ${gamut.label}`, columns: ['Colour', 'L*', 'a*', 'b*'], rows });
  table.setAttribute('data-table', gamut.key);
  return table;
}

function gamutFigure(id, gamuts) {
  const area = el('div', {
    class: 'area',
    role: 'img',
    'aria-label': `Outline of ${gamuts.length > 1 ? 'both gamuts' : 'the gamut'} in a* and b*; the values stand in the table`,
  });
  const [first] = gamuts;
  const note =
    gamuts.length > 1
      ? 'The outlines of both profiles: the hulls of all nodes of their tables.'
      : `From ${showNumber(first.nodes)} nodes of the profile's own table ${first.tag}: their hull, and as dots those of one or two colorants.`;
  drawLazily(area, () => drawGamut(area, gamuts));
  return el(
    'figure',
    { class: 'plot', 'data-plot': id },
    el('figcaption', {}, el('h3', {}, 'Gamut in a* and b*'), el('p', { class: 'note' }, note)),
    area,
    gamuts.length > 1
      ? el(
          'ul',
          { class: 'legend' },
          gamuts.map((gamut) => el('li', {}, legendSign(gamut), gamut.label)),
        )
      : null,
    gamuts.map((gamut) =>
      lazyDetails({ class: 'data' }, `Values as a table${gamut.label ? `: ${gamut.label}` : ''}`, () =>
        gamutTable(gamut),
      ),
    ),
  );
}

const gamutStyle = (key, label, place) => ({
  key,
  label,
  color: ['var(--text)', 'var(--accent)'][place],
  dash: ['', '6 3'][place],
  marker: inkMarkers[place],
});

const iccSpaces = { CMYK: 'CMYK', 'RGB ': 'RGB', GRAY: 'gray', 'Lab ': 'L*a*b*', 'XYZ ': 'XYZ', 'CMY ': 'CMY' };
const iccClasses = {
  prtr: 'output device',
  mntr: 'display',
  scnr: 'input device',
  link: 'device link',
  spac: 'colour space',
  abst: 'abstract',
  nmcl: 'named colours',
};

function iccFacts({ header, descriptions, label }) {
  const [first, ...others] = descriptions.filter(({ text }) => text !== '');
  return [
    ['Description', first?.text ?? label, first?.language || undefined],
    ...others.map(({ language, text }) => [`Description, ${showLanguage(language)}`, text, language]),
    ['Class', iccClasses[header.class] ?? header.class],
    ['From device space', iccSpaces[header.dataColorSpace] ?? header.dataColorSpace],
    ['To connection space', iccSpaces[header.connectionSpace] ?? header.connectionSpace],
    ['Version', header.version],
    ['Made', header.dateTime.startsWith('0000') ? '' : header.dateTime],
    ['Rendering intent', header.renderingIntent],
    ['Creator', header.creator],
    ['Size', showBytes(header.size)],
    ['Profile ID', header.profileId],
  ];
}

const iccTitle = (part) => (part.name === 'replacement-icc' ? 'Replacement profile' : 'Profile');

function iccCard(part, id) {
  return el(
    'div',
    { class: 'cards' },
    el(
      'div',
      { class: 'card' },
      el('h3', {}, iccTitle(part)),
      facts(iccFacts(part)),
      lazyDetails({ class: 'data' }, `${showNumber(part.tags.length)} tags`, () =>
        dataTable({
          label: 'Tags of the ICC profile',
          columns: ['Tag', 'Bytes'],
          rows: part.tags.map((tag) => [tag.signature, tag.size]),
        }),
      ),
    ),
    el(
      'div',
      { class: 'card' },
      part.gamut
        ? gamutFigure(id, [openGamut(part, gamutStyle(id, '', 0))])
        : el(
            'p',
            { class: 'note' },
            'The profile has no table from the device to a connection space, out of which a gamut could be drawn.',
          ),
    ),
  );
}

const iccSection = (profile, prefix) => profile.icc.map((part) => iccCard(part, `${prefix}${part.name}-gamut`));
