// --- compare: two profiles side by side; what is the same is folded away ----------------------------------------

const foldedSame = (title, build) => lazyDetails({ class: 'fold same' }, `${title}: the same in both`, build);

const sideLabel = (profile, letter) => `${letter}: ${profile.line.media || profile.line.file}`;

// Rows of [name, a, b]: those that differ, and folded away those that do not.
function rowsCompared(title, rows) {
  const shown = (value) => value ?? '';
  const differing = rows.filter(([, a, b]) => shown(a) !== shown(b));
  const same = rows.filter(([, a, b]) => shown(a) === shown(b) && shown(a) !== '');
  const table = (some, label) => dataTable({ label, whole: true, wrap: true, columns: ['What', 'A', 'B'], rows: some });
  return [
    differing.length > 0 ? el('div', { class: 'card' }, table(differing, `${title}: what differs`)) : null,
    same.length > 0
      ? lazyDetails({ class: 'fold same' }, `${showNumber(same.length)} the same in both`, () =>
          table(same, `${title}: the same`),
        )
      : null,
  ];
}

function pairsCompared(title, a, b) {
  const names = [...new Set([...a, ...b].map(([name]) => name))];
  const value = (pairs, name) => pairs.find(([other]) => other === name)?.[1];
  return rowsCompared(
    title,
    names.map((name) => [name, value(a, name), value(b, name)]),
  );
}

// --- curves ---

// B less A for each curve that both have.
function differenceSeries(b, set, group) {
  return seriesOf(set, group)
    .map((series, i) => {
      const to = b.curves.find((curve) => curve.ink === group.curves[i].ink && curve.extend === group.curves[i].extend);
      return to ? { ...series, values: differenceOf(group.curves[i], to) } : null;
    })
    .filter(Boolean);
}

function differencePlot(id, name, series, xLabel = 'Input') {
  return new Plot({
    id,
    title: 'B − A',
    name: `${name}, B less A`,
    series,
    x: percentAxis(xLabel),
    y: changeAxis('B − A', series),
  }).root;
}

function groupCompared(set, other, group) {
  const b = curveGroups(other).find(({ extend }) => extend === group.extend);
  const title = groupTitle(set, group);
  const plot = (letter, owner, some) =>
    el('div', { class: 'card' }, curvePlot(`${letter.toLowerCase()}-${plotId('', set, group)}`, owner, some, letter));
  if (!b) return [el('h3', {}, `${title}: only in A`), el('div', { class: 'cards' }, plot('A', set, group))];
  if (isSame(group.curves, b.curves))
    return foldedSame(title, () => el('div', { class: 'cards' }, plot('A', set, group)));
  const changes = differenceSeries(b, set, group);
  return [
    el('h3', {}, title),
    el(
      'div',
      { class: 'cards pair' },
      plot('A', set, group),
      plot('B', other, b),
      el('div', { class: 'card' }, differencePlot(`difference-${plotId('', set, group)}`, title, changes)),
    ),
  ];
}

function setsCompared(a, b) {
  return sortedSets([...a, ...b.filter((set) => !setNamed(a, set.name))]).flatMap((set) => {
    const other = setNamed(b, set.name);
    const isOfA = setNamed(a, set.name) === set;
    if (isOfA && other) {
      if (isSame(set, other))
        return foldedSame(curveTitle(set.name), () => el('div', { class: 'cards' }, curveCards([set], 'a-')));
      const added = curveGroups(other).filter(
        ({ extend }) => !curveGroups(set).some((group) => group.extend === extend),
      );
      return [
        ...curveGroups(set).flatMap((group) => groupCompared(set, other, group)),
        ...added.flatMap((group) => [
          el('h3', {}, `${groupTitle(other, group)}: only in B`),
          el(
            'div',
            { class: 'cards' },
            el('div', { class: 'card' }, curvePlot(`b-${plotId('', other, group)}`, other, group)),
          ),
        ]),
      ];
    }
    const letter = isOfA ? 'A' : 'B';
    return [
      el('h3', {}, `${curveTitle(set.name)}: only in ${letter}`),
      el('div', { class: 'cards' }, curveCards([set], `${letter.toLowerCase()}-`)),
    ];
  });
}

// --- separation ---

function separationCompared(a, b) {
  const left = separationOf(a.separation);
  const right = separationOf(b.separation);
  if (
    left.grid !== right.grid ||
    left.outputs.length !== right.outputs.length ||
    left.inputs.length !== right.inputs.length
  )
    return null;
  const paths = [left.neutral(), right.neutral()];
  const most = Math.max(commonTotal(left, [paths[0]]), commonTotal(right, [paths[1]]));
  const plot = (id, title, table, path) =>
    el('div', { class: 'card' }, separationPlot(table, { id, title, path, most, label: 'From paper to dark' }));
  const before = left.along(paths[0]);
  const after = right.along(paths[1]);
  const changes = before.map((series, i) => ({
    ...series,
    values: series.values.map((value, at) => after[i].values[at] - value),
  }));
  let greatest = 0;
  let count = 0;
  left.samples.forEach((sample, i) => {
    const change = Math.abs(sample - right.samples[i]);
    greatest = Math.max(greatest, change);
    if (change > 0) ++count;
  });
  return [
    el(
      'p',
      {},
      `${showNumber(count)} of ${showNumber(left.samples.length)} ink amounts differ, at most by ${showPercent(greatest / 255)}.`,
    ),
    el(
      'div',
      { class: 'cards pair' },
      plot('a-neutral', 'Neutral axis of A', left, paths[0]),
      plot('b-neutral', 'Neutral axis of B', right, paths[1]),
      el(
        'div',
        { class: 'card' },
        differencePlot('difference-neutral', 'Ink along the neutral axis', changes, 'From paper to dark'),
      ),
    ),
  ];
}

// --- the rest ---

function iccCompared(a, b) {
  return a.icc.flatMap((part) => {
    const gamutCard = (gamuts) =>
      gamuts.length > 0
        ? el(
            'div',
            { class: 'cards' },
            el('div', { class: 'card' }, gamutFigure(`difference-${part.name}-gamut`, gamuts)),
          )
        : null;
    const other = b.icc.find(({ name }) => name === part.name);
    if (!other) return [el('h3', {}, `${iccTitle(part)}: only in A`), iccCard(part, `a-${part.name}-gamut`)];
    if (isSame(part, other)) return [foldedSame(iccTitle(part), () => iccCard(part, `a-${part.name}-gamut`))];
    const gamuts = [
      [part, 'A'],
      [other, 'B'],
    ]
      .filter(([{ gamut }]) => gamut)
      .map(([owner, letter], i) =>
        openGamut(owner, gamutStyle(`${letter.toLowerCase()}-${part.name}-gamut`, letter, i)),
      );
    return [
      ...pairsCompared(iccTitle(part), iccFacts(part), iccFacts(other)),
      isSame(part.gamut, other.gamut)
        ? foldedSame('Gamut', () => gamutCard(gamuts.slice(0, 1)) ?? [])
        : gamutCard(gamuts),
    ];
  });
}

const mediaPairs = (profile) => profile.media.map((block) => [mediaName(block.usedType), listNumbers(block.values)]);
const entryPairs = (profile) =>
  profile.entries.map((entry) => [
    `${entry.name || entry.usedType}, route ${entry.route}`,
    `${showBytes(entry.size)}, ${entryState(entry)}${entry.label ? `, ${entry.label}` : ''}`,
  ]);

// --- conditions ---

const hexOf = (base64) => Array.from(bytesOf(base64), (byte) => byte.toString(16).padStart(2, '0')).join(' ');

const lampPairs = (profile) =>
  profile.lamp.flatMap((table, number) => {
    const start = profile.lamp.length > 1 ? `Table ${number + 1}: ` : '';
    if (table.fixed) {
      return d3
        .range(0, table.fixed.length, 10)
        .map((word) => [`${start}Words from ${word}`, listNumbers(table.fixed.slice(word, word + 10))]);
    }
    return table.patterns.map(({ conditions, splits, parameters }, i) => [
      `${start}Pattern ${i + 1}`,
      `Conditions ${conditions.map(showCondition).join(', ')}; splits of ${listNumbers(splits)}; parameters ${listNumbers(parameters)}`,
    ]);
  });

const maskPairs = ({ masks }) => [
  ...(masks.conditions?.maskParameters ?? []).map((record) => [
    `Passes ${record.pass}, colour set ${record.specialColorsetCode}, method ${record.printMethod}, layer colours ${record.layerColors.join(' ') || 'none'}`,
    `Patterns ${record.usePatternIDs.join(' ')}; parameters ${hexOf(record.paramData)}`,
  ]),
  ...(masks.blocks?.weftData ?? []).map((block, i) => [
    `Block ${i + 1}`,
    `Type ${block.blockType}; values ${listNumbers(block.values)}; bytes ${hexOf(block.bytes)}`,
  ]),
];

// The patterns that are not the same in both, as pairs of pictures.
function patternsCompared(a, b) {
  const [inA, inB] = [a, b].map(
    ({ masks }) => new Map((masks.conditions?.maskPatterns ?? []).map((pattern) => [pattern.maskPatternID, pattern])),
  );
  const ids = [...new Set([...inA.keys(), ...inB.keys()])].filter(
    (id) => inA.get(id)?.maskPattern !== inB.get(id)?.maskPattern,
  );
  const side = (pattern, letter) =>
    el(
      'div',
      {},
      el('p', {}, el('b', {}, letter)),
      pattern ? patternPicture(pattern) : el('p', { class: 'note' }, 'none'),
    );
  return ids.map((id) =>
    el(
      'div',
      { class: 'card' },
      el('h3', {}, `Pattern ${id}`),
      el('div', { class: 'patterns' }, side(inA.get(id), 'A'), side(inB.get(id), 'B')),
    ),
  );
}

const specialPairs = (profile) =>
  profile.special.tables.flatMap((table, number) =>
    table.patterns.map(({ conditions, colors, level, density, curveSet }, i) => [
      `${profile.special.tables.length > 1 ? `Table ${number + 1}: ` : ''}Pattern ${i + 1}`,
      `Conditions ${conditions.map(showCondition).join(', ')}; colours ${colors.map(showCondition).join(' ')}; level ${level}; density ${density}; curves ${curveSet > 0 ? `of set ${curveSet}` : 'none'}`,
    ]),
  );

const specialSets = (profile) =>
  profile.special.tables.flatMap((table, number) =>
    table.curveSets.map((curves, i) => ({
      name: `Variable dots, ${profile.special.tables.length > 1 ? `table ${number + 1}, ` : ''}set ${i + 1}`,
      sound: true,
      curves,
    })),
  );

const calibrationText = (calibration) =>
  `${nameOf(calibration)}, ${showTime(calibration.time)}, value ${calibration.value}`;

// How far the curves of a calibration are from those of the one with its code in the other profile.
function calibrationDistance(a, b, code) {
  const [setsA, setsB] = [a, b].map(
    (profile) =>
      profile.calibrationCurves?.[profile.calibrations.list.findIndex((calibration) => calibration.code === code)] ??
      [],
  );
  const changes = setsB.flatMap((set) =>
    set.curves.map((curve) => changeBetween(curveOf(setsA, set.name, curve), curve)?.greatest ?? 0),
  );
  return d3.max(changes) ?? 0;
}

function calibrationsCompared(a, b) {
  const pairs = (profile, note) =>
    profile.calibrations.list.map((calibration) => [
      `Code ${calibration.code}`,
      calibrationText(calibration) + note(calibration.code),
    ]);
  const distance = (code) => calibrationDistance(a, b, code);
  return pairsCompared(
    'Calibrations',
    pairs(a, () => ''),
    pairs(b, (code) => (distance(code) > 0 ? `; curves differ by up to ${showFinePercent(distance(code))}` : '')),
  );
}

// Their comparison shows all that there is.
const isFull = new Set(['overview', 'media', 'entries']);

const comparers = {
  overview: (a, b) => pairsCompared('What it is for', recordFacts(a), recordFacts(b)),
  curves: (a, b) => setsCompared(a.curves, b.curves),
  separation: separationCompared,
  icc: iccCompared,
  calibrations: calibrationsCompared,
  special: (a, b) => [
    pairsCompared('Special colours', specialPairs(a), specialPairs(b)),
    setsCompared(specialSets(a), specialSets(b)),
  ],
  lamp: (a, b) => pairsCompared('UV lamp', lampPairs(a), lampPairs(b)),
  masks: (a, b) => [pairsCompared('Masks', maskPairs(a), maskPairs(b)), patternsCompared(a, b)],
  media: (a, b) => pairsCompared('Media settings', mediaPairs(a), mediaPairs(b)),
  entries: (a, b) => pairsCompared('Entries', entryPairs(a), entryPairs(b)),
};

// All of both behind what differs.
const sideBySide = (a, b, section) =>
  lazyDetails({ class: 'fold' }, `${section.title}: both in full`, () => {
    const side = (profile, letter) =>
      el(
        'div',
        { class: 'column' },
        el('h3', {}, sideLabel(profile, letter)),
        section.build(profile, `${letter.toLowerCase()}-`),
      );
    return el('div', { class: 'cards' }, side(a, 'A'), side(b, 'B'));
  });

function sectionCompared(a, b, section) {
  const parts = [section.part, section.also].filter(Boolean);
  const [inA, inB] = [a, b].map((profile) => profile[section.part] !== undefined);
  if (!inA && !inB) return [];
  if (!inA || !inB) return [el('p', {}, `Only in ${inA ? 'A' : 'B'}.`), section.build(inA ? a : b, inA ? 'a-' : 'b-')];
  if (section.key !== 'overview' && parts.every((part) => isSame(a[part], b[part])))
    return foldedSame(section.title, () => section.build(a, 'a-'));
  return [comparers[section.key](a, b), isFull.has(section.key) ? null : sideBySide(a, b, section)];
}

function showComparison(a, b) {
  setHeading('Comparison', '');
  const shown = sections.filter((section) => hasSection(a, section) || hasSection(b, section));
  const contents = contentsList(shown);
  const names = [
    [a, 'A'],
    [b, 'B'],
  ].map(([profile, letter]) =>
    el(
      'div',
      { class: 'card' },
      el('p', {}, el('b', {}, sideLabel(profile, letter))),
      el('p', { class: 'soft' }, profile.line.path),
      el('p', {}, el('a', { href: `#/${profile.index}` }, 'Show this one alone')),
    ),
  );
  const elements = shown.map((section) =>
    el(
      'section',
      { id: section.key, 'aria-labelledby': `${section.key}-title` },
      el('h2', { id: `${section.key}-title` }, section.title),
      sectionCompared(a, b, section),
      leftOutNotes(a, section),
      leftOutNotes(b, section),
    ),
  );
  mainElement.replaceChildren(
    el(
      'div',
      { class: 'profile' },
      contents.nav,
      el('div', { class: 'sections' }, el('div', { class: 'cards' }, names), el('br'), elements),
    ),
  );
  elements.forEach(contents.watch);
}
