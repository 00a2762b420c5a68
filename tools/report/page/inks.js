// --- inks: each has a colour, and in a plot a dash and a marker, so that no reader depends on the colour ---------

const inkNames = [
  ['light-cyan', /^(l(igh)?t?\W*c(yan)?|lc|hellcyan|ライトシアン)$/i],
  ['light-magenta', /^(l(igh)?t?\W*m(agenta)?|lm|hellmagenta|ライトマゼンタ)$/i],
  ['light-gray', /^(light\W*light\W*black|llk|light\W*gr[ae]y|lgy?|hellgrau)$/i],
  ['gray', /^(light\W*black|lk|gr[ae]y|gy|grau|グレー)$/i],
  ['cyan', /^(c|cyan|シアン)$/i],
  ['magenta', /^(m|magenta|マゼンタ)$/i],
  ['yellow', /^(y|yellow|gelb|イエロー)$/i],
  ['black', /^(k|bk|black|schwarz|(photo|matte)\W*black|ブラック)$/i],
  ['orange', /^(or?|orange|オレンジ)$/i],
  ['green', /^(gr?|green|grün|グリーン)$/i],
  ['red', /^(r|red|rot|レッド)$/i],
  ['blue', /^(b|bl|blue|blau|ブルー)$/i],
  ['violet', /^(v|vi|violet|バイオレット)$/i],
  ['white', /^(w|wh|white|weiß|weiss|ホワイト)$/i],
  ['clear', /^(cl|clear|gloss|varnish|primer|lack|pr|クリア|プライマー)\W*\w*$/i],
];
const inksByCode = { 1: 'cyan', 2: 'magenta', 3: 'yellow', 4: 'black' };

const inkDashes = ['', '7 3', '2 3', '9 3 2 3', '12 3', '5 2 1 2', '1 2', '12 3 2 3 2 3'];
const inkMarkers = d3.symbols;

function inkColor(name, code, rgb) {
  const known = inkNames.find(([, pattern]) => pattern.test(name.trim()));
  if (known) return `var(--${known[0]})`;
  if (!name && inksByCode[code]) return `var(--${inksByCode[code]})`;
  return rgb ? `#${(rgb & 0xffffff).toString(16).padStart(6, '0')}` : `var(--other-${code % 6})`;
}

const inkLabel = (name, code) => name.trim() || (code === 0 ? 'All inks' : `Ink ${code}`);

// Areas are lighter than lines.
const fillColor = (color) => color.replace(/^var\(--([\w-]+)\)$/, 'var(--fill-$1, var(--$1))');

// What a plot shows of one ink: label, colour, and its place among the others.
function inkStyle(curve, place) {
  return {
    key: `${curve.ink}-${curve.extend ?? 0}`,
    label: inkLabel(curve.name, curve.ink),
    color: inkColor(curve.name, curve.ink, curve.rgb),
    fill: fillColor(inkColor(curve.name, curve.ink, curve.rgb)),
    dash: inkDashes[place % inkDashes.length],
    marker: inkMarkers[place % inkMarkers.length],
  };
}

// The colour on white paper in numbers, for pictures that mix inks.
const printedColors = {
  cyan: '#009fe0',
  magenta: '#e5127d',
  yellow: '#ffe800',
  black: '#1f1c1f',
  'light-cyan': '#8fd3ef',
  'light-magenta': '#f4a8cc',
  gray: '#8f9299',
  'light-gray': '#c9ccd1',
  orange: '#ef7d00',
  green: '#00964a',
  red: '#e2231a',
  blue: '#27348b',
  violet: '#6a2c91',
  white: '#ffffff',
  clear: '#ffffff',
};

function printedColor(color) {
  const probe = el('span');
  probe.style.color = printedColors[color.match(/^var\(--([\w-]+)\)$/)?.[1]] ?? color;
  document.body.append(probe);
  const parts = getComputedStyle(probe)
    .color.match(/[\d.]+/g)
    .slice(0, 3)
    .map(Number);
  probe.remove();
  return parts;
}

function markerPath(marker, size = 34) {
  return d3.symbol().type(marker).size(size)();
}
