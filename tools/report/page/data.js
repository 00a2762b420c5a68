// --- data: what stands in this file -----------------------------------------------------------------------------

const report = JSON.parse(document.getElementById('index').textContent);
const openedProfiles = new Map();

// A profile is parsed when it is first looked at, so that a page on many opens as fast as one on few.
function profileAt(index) {
  if (!openedProfiles.has(index)) {
    const element = document.getElementById(`profile-${index}`);
    const profile = element ? JSON.parse(element.textContent) : { leftOut: [] };
    openedProfiles.set(index, { ...profile, index, line: report.profiles[index] });
  }
  return openedProfiles.get(index);
}

function bytesOf(base64) {
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  return bytes;
}

// Little-endian samples of one or two bytes.
function unpack(base64, width) {
  const bytes = bytesOf(base64);
  if (width === 1) return bytes;
  const samples = new Uint16Array(bytes.length >> 1);
  for (let i = 0; i < samples.length; ++i) samples[i] = bytes[2 * i] | (bytes[2 * i + 1] << 8);
  return samples;
}

// Colours packed as hundredths of L*, a*, b*.
function unpackLab(base64) {
  const words = new Int16Array(unpack(base64, 2).buffer);
  return d3
    .range(words.length / 3)
    .map((i) => ({ l: words[3 * i] / 100, a: words[3 * i + 1] / 100, b: words[3 * i + 2] / 100 }));
}

const unpackedCurves = new WeakMap();

function samplesOf(curve) {
  if (!unpackedCurves.has(curve)) unpackedCurves.set(curve, unpack(curve.samples, curve.width));
  return unpackedCurves.get(curve);
}

const greatestOf = (curve) => (curve.width === 1 ? 255 : 65535);

const isSame = (a, b) => JSON.stringify(a) === JSON.stringify(b);
