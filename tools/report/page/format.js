// --- format: numbers, dates and names as the reader writes them -------------------------------------------------

const readersLanguages = navigator.languages.length > 0 ? [...navigator.languages] : undefined;

// Formats are made when they are first used: a page on many profiles opens without most of them.
function numberFormat(options) {
  let made = null;
  return (value) => (made ??= new Intl.NumberFormat(readersLanguages, options)).format(value);
}

function dateFormat(options) {
  let made = null;
  return (date) => (made ??= new Intl.DateTimeFormat(readersLanguages, options)).format(date);
}

const showNumber = numberFormat({ maximumFractionDigits: 6 });
const showDecimal = numberFormat({ minimumFractionDigits: 1, maximumFractionDigits: 1 });
const showPercent = numberFormat({ style: 'percent', maximumFractionDigits: 1 });
const showFinePercent = numberFormat({ style: 'percent', maximumFractionDigits: 2 });
const showChange = numberFormat({ style: 'percent', maximumFractionDigits: 2, signDisplay: 'exceptZero' });
const showBytes = (bytes) => `${showNumber(bytes)} bytes`;

// "720x1440" as a reader writes it.
const showResolution = (text) =>
  text
    .split('x')
    .filter(Boolean)
    .map((dots) => showNumber(Number(dots)))
    .join(' × ');

// What a calendar has no day for shows as its number of seconds.
function showMoment(seconds, show) {
  if (!seconds) return '–';
  const date = new Date(seconds * 1000);
  return Number.isNaN(date.getTime()) ? showNumber(seconds) : show(date);
}

const dayFormat = dateFormat({ dateStyle: 'medium' });
const dayAndTimeFormat = dateFormat({ dateStyle: 'medium', timeStyle: 'short' });
const showDate = (seconds) => showMoment(seconds, dayFormat);
const showTime = (seconds) => showMoment(seconds, dayAndTimeFormat);

// The primary language numbers that media names carry, as language tags.
const languageTags = {
  1: 'ar',
  2: 'bg',
  4: 'zh',
  5: 'cs',
  6: 'da',
  7: 'de',
  8: 'el',
  9: 'en',
  10: 'es',
  11: 'fi',
  12: 'fr',
  13: 'he',
  14: 'hu',
  16: 'it',
  17: 'ja',
  18: 'ko',
  19: 'nl',
  20: 'no',
  21: 'pl',
  22: 'pt',
  24: 'ro',
  25: 'ru',
  29: 'sv',
  30: 'th',
  31: 'tr',
};

function showLanguage(tag) {
  try {
    return new Intl.DisplayNames(readersLanguages, { type: 'language' }).of(tag);
  } catch {
    return tag;
  }
}

// Text that has kana or Han in it is set in Japanese forms unless its language is known.
const guessLanguage = (text) => (/[\u3040-\u30ff\u3400-\u9fff]/.test(text) ? 'ja' : undefined);
