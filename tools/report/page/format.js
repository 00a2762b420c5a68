// --- format: numbers, dates and names as the reader writes them -------------------------------------------------

const readersLanguages = navigator.languages.length > 0 ? [...navigator.languages] : undefined;
const numberFormat = new Intl.NumberFormat(readersLanguages, { maximumFractionDigits: 6 });
const percentFormat = new Intl.NumberFormat(readersLanguages, { style: 'percent', maximumFractionDigits: 1 });
const finePercentFormat = new Intl.NumberFormat(readersLanguages, { style: 'percent', maximumFractionDigits: 2 });
const changeFormat = new Intl.NumberFormat(readersLanguages, { style: 'percent', maximumFractionDigits: 2, signDisplay: 'exceptZero' });
const decimalFormat = new Intl.NumberFormat(readersLanguages, { minimumFractionDigits: 1, maximumFractionDigits: 1 });
const dateFormat = new Intl.DateTimeFormat(readersLanguages, { dateStyle: 'medium' });
const dateTimeFormat = new Intl.DateTimeFormat(readersLanguages, { dateStyle: 'medium', timeStyle: 'short' });

const showNumber = (value) => numberFormat.format(value);
const showPercent = (share) => percentFormat.format(share);
const showFinePercent = (share) => finePercentFormat.format(share);
const showChange = (share) => changeFormat.format(share);
const showDecimal = (value) => decimalFormat.format(value);
const showBytes = (bytes) => `${numberFormat.format(bytes)} bytes`;

// What a calendar has no day for shows as its number of seconds.
function showTime(seconds, format = dateTimeFormat) {
  if (!seconds) return '–';
  const date = new Date(seconds * 1000);
  return Number.isNaN(date.getTime()) ? showNumber(seconds) : format.format(date);
}

const showDate = (seconds) => showTime(seconds, dateFormat);

// The primary language numbers that media names carry, as language tags.
const languageTags = {
  1: 'ar', 2: 'bg', 4: 'zh', 5: 'cs', 6: 'da', 7: 'de', 8: 'el', 9: 'en', 10: 'es', 11: 'fi', 12: 'fr', 13: 'he', 14: 'hu',
  16: 'it', 17: 'ja', 18: 'ko', 19: 'nl', 20: 'no', 21: 'pl', 22: 'pt', 24: 'ro', 25: 'ru', 29: 'sv', 30: 'th', 31: 'tr',
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

