#include "platform/locale.h"

#include <array>

namespace nvx::platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

struct Language {
  std::string_view code;
  std::uint16_t number;
};

// ISO 639 codes and primary language numbers.
constexpr std::array<Language, 70> kLanguages{{
    {"ar", 1},  {"bg", 2},  {"ca", 3},  {"zh", 4},  {"cs", 5},  {"da", 6},  {"de", 7},  {"el", 8},  {"en", 9},
    {"es", 10}, {"fi", 11}, {"fr", 12}, {"he", 13}, {"iw", 13}, {"hu", 14}, {"is", 15}, {"it", 16}, {"ja", 17},
    {"ko", 18}, {"nl", 19}, {"nb", 20}, {"nn", 20}, {"no", 20}, {"pl", 21}, {"pt", 22}, {"rm", 23}, {"ro", 24},
    {"ru", 25}, {"hr", 26}, {"sr", 26}, {"bs", 26}, {"sk", 27}, {"sq", 28}, {"sv", 29}, {"th", 30}, {"tr", 31},
    {"ur", 32}, {"id", 33}, {"uk", 34}, {"be", 35}, {"sl", 36}, {"et", 37}, {"lv", 38}, {"lt", 39}, {"tg", 40},
    {"fa", 41}, {"vi", 42}, {"hy", 43}, {"az", 44}, {"eu", 45}, {"mk", 47}, {"af", 54}, {"ka", 55}, {"fo", 56},
    {"hi", 57}, {"mt", 58}, {"ms", 62}, {"kk", 63}, {"ky", 64}, {"sw", 65}, {"uz", 67}, {"bn", 69}, {"pa", 70},
    {"gu", 71}, {"ta", 73}, {"te", 74}, {"kn", 75}, {"mr", 78}, {"mn", 80}, {"cy", 82},
}};

}  // namespace

std::optional<std::uint16_t> LanguageNumber(std::string_view locale) {
  const std::string_view code = locale.substr(0, locale.find_first_of("_.@-"));
  for (const Language& language : kLanguages) {
    if (language.code == code) return language.number;
  }
  return std::nullopt;
}

std::uint32_t CodePageOf(std::uint16_t language) {
  switch (language) {
    case kLanguageJapanese:
      return 932;
    case 4:
      return 936;
    case 18:
      return 949;
    case 25:
      return 1251;
    default:
      return 1252;
  }
}

bool IsLeadByte(std::uint32_t codePage, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  switch (codePage) {
    case 932:
      return (value >= 0x81 && value <= 0x9F) || (value >= 0xE0 && value <= 0xFC);
    case 936:
    case 949:
    case 950:
      return value >= 0x81 && value <= 0xFE;
    default:
      return false;
  }
}

std::string_view CutAnsi(std::string_view text, std::size_t longest) {
  if (text.size() <= longest) return text;
  const std::uint32_t page = AnsiCodePage();
  std::size_t end = 0;
  if (page == kCodePageUtf8) {
    end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
  }
  for (std::size_t next = 0; next <= longest; next += IsLeadByte(page, text[next]) ? 2 : 1) end = next;
  return text.substr(0, end);
}

namespace {

constexpr bool IsSurrogate(char32_t point) { return point >= 0xD800 && point < 0xE000; }

// Bytes of the sequence that starts with `lead`; 0 if none does.
constexpr std::size_t SequenceSize(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF5 ? 4 : 0;
}

struct Utf8Sequence {
  char32_t point;
  std::size_t size;
  bool isBroken = false;
};

// The code point at the start of the text, which is not empty. A broken sequence is one replacement character, as long
// as the bytes that belong together.
Utf8Sequence FirstSequence(std::string_view text) {
  constexpr std::array<char32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t size = SequenceSize(lead);
  if (size == 0) return {kReplacement, 1, true};
  char32_t point = size == 1 ? lead : lead & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    const unsigned char next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    if ((next & 0xC0) != 0x80) return {kReplacement, i, true};
    point = point << 6 | (next & 0x3Fu);
  }
  const bool valid = point >= kLeast[size] && point < 0x110000 && !IsSurrogate(point);
  return {valid ? point : char32_t{kReplacement}, size, !valid};
}

void AppendUtf16(std::u16string& out, char32_t point) {
  if (point < 0x10000) {
    out += static_cast<char16_t>(point);
    return;
  }
  out += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
  out += static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
}

// The lead byte says how many bytes of 6 bits follow.
void AppendUtf8(std::string& out, char32_t point) {
  const int following = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
  constexpr std::array<unsigned, 4> kLead{0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kLead[static_cast<std::size_t>(following)] | point >> (6 * following));
  for (int i = following - 1; i >= 0; --i) out += static_cast<char>(0x80 | (point >> (6 * i) & 0x3F));
}

// `alone(out, unit)` writes what stands for half a surrogate pair.
template <class Alone>
std::string FromWide(std::u16string_view text, Alone alone) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t point = text[i];
    if (!IsSurrogate(point)) {
      AppendUtf8(out, point);
    } else if (point < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      AppendUtf8(out, 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00u));
    } else {
      alone(out, text[i]);
    }
  }
  return out;
}

// `broken(out, bytes)` writes what stands for bytes that are no UTF-8.
template <class Broken>
std::u16string ToWide(std::string_view text, Broken broken) {
  std::u16string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const Utf8Sequence sequence = FirstSequence(text);
    if (sequence.isBroken) {
      broken(out, text.substr(0, sequence.size));
    } else {
      AppendUtf16(out, sequence.point);
    }
    text.remove_prefix(sequence.size);
  }
  return out;
}

constexpr char16_t kByte = 0xDC00;
constexpr bool IsByte(char16_t unit) { return unit >= kByte + 0x80 && unit <= kByte + 0xFF; }

}  // namespace

std::string WideToUtf8(std::u16string_view text) {
  return FromWide(text, [](std::string& out, char16_t) { AppendUtf8(out, kReplacement); });
}

std::u16string Utf8ToWide(std::string_view text) {
  return ToWide(text, [](std::u16string& out, std::string_view) { out += kReplacement; });
}

std::string WideToBytes(std::u16string_view name) {
  return FromWide(name, [](std::string& out, char16_t unit) {
    IsByte(unit) ? out.push_back(static_cast<char>(unit - kByte)) : AppendUtf8(out, kReplacement);
  });
}

std::u16string BytesToWide(std::string_view name) {
  return ToWide(name, [](std::u16string& out, std::string_view bytes) {
    for (const char byte : bytes) out += static_cast<char16_t>(kByte + static_cast<unsigned char>(byte));
  });
}

}  // namespace nvx::platform
