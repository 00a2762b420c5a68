// --- conditions: settings of the medium, UV lamp, masks, special colours ----------------------------------------

const mediaNames = {
  1: 'Media correction',
  2: 'Heater temperatures',
  3: 'Wave',
  4: 'Media feed speed',
  5: 'Wave form',
  6: 'Dot sizes',
  7: 'Pass density',
  8: 'Pass mask parameters',
  9: 'UV mode',
  10: 'Top blower',
  11: 'Feed direction',
};
const mediaName = (type) => mediaNames[type] ?? `Setting ${type}`;
const listNumbers = (numbers) => numbers.map(showNumber).join('   ');
const showCondition = (value) => (value === -1 ? 'any' : String(value));

const mediaSection = (profile) =>
  el(
    'div',
    { class: 'card' },
    dataTable({
      label: 'Settings of the medium',
      whole: true,
      columns: ['Setting', 'Values'],
      rows: profile.media.map((block) => [mediaName(block.usedType), listNumbers(block.values)]),
    }),
  );

// --- UV lamp ---

const wordTable = (label, words) =>
  dataTable({
    label,
    columns: ['Word', ...d3.range(10).map((i) => `+${i}`)],
    rows: d3
      .range(0, words.length, 10)
      .map((start) => [
        String(start),
        ...d3.range(10).map((i) => (start + i < words.length ? words[start + i] : null)),
      ]),
  });

function lampTable(table) {
  if (table.fixed)
    return el(
      'div',
      { class: 'card' },
      el('h3', {}, 'One table for all conditions'),
      wordTable('UV lamp parameters', table.fixed),
    );
  const columns = ['Pattern', 'Condition 1', 'Condition 2', 'Condition 3', 'Condition 4', 'Parameters', 'In splits of'];
  const rows = table.patterns.map((pattern, i) => [
    String(i + 1),
    ...pattern.conditions.map(showCondition),
    pattern.parameters.length,
    listNumbers(pattern.splits),
  ]);
  return el(
    'div',
    { class: 'card' },
    el('h3', {}, 'By printing condition'),
    el(
      'p',
      { class: 'note' },
      'The first pattern whose conditions all fit counts. A multiple of 100 in condition 4 stands for its whole hundred.',
    ),
    dataTable({ label: 'UV lamp patterns', columns, rows, whole: true }),
    table.patterns.map((pattern, i) =>
      lazyDetails({ class: 'data' }, `Parameters of pattern ${i + 1}`, () =>
        wordTable(`Parameters of pattern ${i + 1}`, pattern.parameters),
      ),
    ),
  );
}

const lampSection = (profile) => profile.lamp.map(lampTable);

// --- masks ---

// A pattern is bits to the printer; the picture is as wide as the nearest power of two makes it square.
function patternWidth(bytes) {
  return Math.min(Math.max(8, 2 ** Math.round(Math.log2(Math.sqrt(bytes * 8)))), 1024);
}

function patternPicture(pattern) {
  const bytes = bytesOf(pattern.maskPattern);
  const width = patternWidth(bytes.length);
  const height = Math.max(1, Math.ceil((bytes.length * 8) / width));
  const canvas = el('canvas', {
    width,
    height,
    role: 'img',
    'aria-label': `Mask pattern ${pattern.maskPatternID}`,
    'data-pattern': pattern.maskPatternID,
  });
  canvas.style.aspectRatio = `${width} / ${height}`;
  drawLazily(canvas, () => {
    const context = canvas.getContext('2d');
    const picture = context.createImageData(width, height);
    for (let i = 0; i < bytes.length * 8; ++i) {
      const isSet = (bytes[i >> 3] >> (7 - (i % 8))) & 1;
      picture.data.set(isSet ? [20, 24, 30, 255] : [255, 255, 255, 255], 4 * i);
    }
    context.putImageData(picture, 0, 0);
  });
  const set = d3.sum(bytes, (byte) => d3.sum(d3.range(8), (bit) => (byte >> bit) & 1));
  const share = bytes.length > 0 ? showPercent(set / (bytes.length * 8)) : '–';
  return el(
    'figure',
    {},
    canvas,
    el(
      'figcaption',
      {},
      el('b', {}, `Pattern ${pattern.maskPatternID}`),
      el('br'),
      `${showBytes(bytes.length)}, ${share} set`,
    ),
  );
}

function maskConditions({ maskParameters, maskPatterns }) {
  const rows = maskParameters.map((record) => [
    record.pass,
    record.specialColorsetCode,
    record.printMethod,
    record.layerColors.join(' '),
    record.usePatternIDs.join(' '),
    bytesOf(record.paramData).length,
  ]);
  return el(
    'div',
    { class: 'card' },
    el('h3', {}, 'By printing condition'),
    dataTable({
      label: 'Mask parameters',
      whole: true,
      columns: ['Passes', 'Colour set', 'Method', 'Layer colours', 'Patterns', 'Parameter bytes'],
      rows,
    }),
    el('h3', {}, 'Patterns'),
    el(
      'p',
      { class: 'note' },
      'The bits of each pattern in their order, the first at the top left; a dark point is a set bit. Their rows are a choice of this report: a pattern does not say how long its own are.',
    ),
    el('div', { class: 'patterns' }, maskPatterns.map(patternPicture)),
  );
}

const maskBlocks = ({ weftHeader, weftData }) =>
  el(
    'div',
    { class: 'card' },
    el('h3', {}, `Blocks, version ${weftHeader.versionMajor}.${weftHeader.versionMinor}`),
    dataTable({
      label: 'Mask blocks',
      whole: true,
      columns: ['Type', 'Values', 'Bytes'],
      rows: weftData.map((block) => [String(block.blockType), listNumbers(block.values), bytesOf(block.bytes).length]),
    }),
  );

const masksSection = ({ masks }) => [
  masks.conditions ? maskConditions(masks.conditions) : null,
  masks.blocks ? maskBlocks(masks.blocks) : null,
];

// --- special colours ---

function specialTable(table, prefix, number) {
  const columns = ['Pattern', 'Condition 1', 'Condition 2', 'Colours', 'Level', 'Density', 'Curves'];
  const rows = table.patterns.map((pattern, i) => [
    String(i + 1),
    ...pattern.conditions.map(showCondition),
    pattern.colors.map(showCondition).join(' '),
    pattern.level,
    pattern.density,
    pattern.curveSet > 0 ? `set ${pattern.curveSet}` : '–',
  ]);
  const sets = table.curveSets.map((curves, i) => ({
    name: 'variable',
    sound: true,
    curves,
    title: `Variable dots of set ${i + 1}`,
  }));
  return [
    el(
      'div',
      { class: 'card' },
      el('h3', {}, 'Recommendations'),
      el('p', { class: 'note' }, 'The first pattern whose conditions and colours all fit counts. Levels count from 1.'),
      dataTable({ label: 'Recommendations for special colours', whole: true, columns, rows }),
    ),
    sets.length === 0
      ? null
      : el(
          'div',
          { class: 'cards' },
          sets.flatMap((set, i) =>
            curveGroups({ ...set, name: 'light-ink' }).map((group) =>
              el(
                'div',
                { class: 'card' },
                new Plot({
                  id: `${prefix}special-${number}-${i}`,
                  title: set.title,
                  series: seriesOf(set, group),
                  x: percentAxis('Input'),
                  y: sampleAxis(set, group.curves),
                }).root,
              ),
            ),
          ),
        ),
  ];
}

const specialSection = (profile, prefix) =>
  profile.special.tables.flatMap((table, i) => specialTable(table, prefix, i));
