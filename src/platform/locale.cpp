#include "platform/locale.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace nvx::platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr std::uint32_t kCodePageUtf8 = 65001;
constexpr const char* kWideName = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

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

std::string_view LocaleName() {
  for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && *value != 0) return value;
  }
  return {};
}

class Converter {
 public:
  Converter(const char* to, const char* from) : handle_(::iconv_open(to, from)) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (IsOpen()) ::iconv_close(handle_);
  }

  // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how the interface marks failure.
  bool IsOpen() const { return handle_ != reinterpret_cast<::iconv_t>(-1); }

  // Converts all that can be converted, `step` bytes at a time; bad(out, in, end) writes a substitute and moves `in`
  // past what is bad.
  template <class Bad>
  std::string Convert(const char* in, std::size_t size, std::size_t step, Bad bad) {
    std::string out;
    std::array<char, 1024> chunk;
    const char* const end = in + size;
    while (in < end) {
      char* from = const_cast<char*>(in);
      std::size_t left = std::min(step, static_cast<std::size_t>(end - in));
      char* to = chunk.data();
      std::size_t room = chunk.size();
      const std::size_t result = ::iconv(handle_, &from, &left, &to, &room);
      out.append(chunk.data(), chunk.size() - room);
      in = from;
      Finish(out);
      if (result != static_cast<std::size_t>(-1) || errno == E2BIG) continue;
      bad(out, in, end);
    }
    return out;
  }

 private:
  // A converter may hold a character back until it knows what follows.
  void Finish(std::string& out) {
    std::array<char, 16> chunk;
    char* to = chunk.data();
    std::size_t room = chunk.size();
    const int error = errno;
    ::iconv(handle_, nullptr, nullptr, &to, &room);
    out.append(chunk.data(), chunk.size() - room);
    errno = error;
  }

  ::iconv_t handle_;
};

std::string CodePageName(std::uint32_t page) { return page == kCodePageUtf8 ? "UTF-8" : "CP" + std::to_string(page); }

}  // namespace

std::uint16_t PrimaryLanguage() {
  const std::string_view locale = LocaleName();
  const std::string_view code = locale.substr(0, locale.find_first_of("_.@-"));
  for (const Language& language : kLanguages) {
    if (language.code == code) return language.number;
  }
  return kLanguageEnglish;
}

std::uint32_t AnsiCodePage() {
  if (const char* const text = std::getenv("NVXPROFILE_CODEPAGE")) {
    std::uint32_t page = 0;
    const char* const end = text + std::strlen(text);
    const auto [rest, error] = std::from_chars(text, end, page);
    if (error == std::errc() && rest == end && rest != text) return page;
  }
  switch (PrimaryLanguage()) {
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

// Bytes first to last without a character, and what stands for them from `wide` on.
struct Holes {
  std::uint32_t page;
  unsigned char first;
  unsigned char last;
  char16_t wide;
};

// Holes above the range of the control characters. The vendor of these code pages gives them private characters, the
// same in all of its systems; two characters came later than the standards of their pages.
constexpr std::array<Holes, 20> kHoles{{
    {857, 0xD5, 0xD5, 0xF8BB},  {857, 0xE7, 0xE7, 0xF8BC},  {857, 0xF2, 0xF2, 0xF8BD},  {874, 0xDB, 0xDE, 0xF8C1},
    {874, 0xFC, 0xFF, 0xF8C5},  {932, 0xA0, 0xA0, 0xF8F0},  {932, 0xFD, 0xFF, 0xF8F1},  {936, 0x80, 0x80, 0x20AC},
    {936, 0xFF, 0xFF, 0xF8F5},  {949, 0xFF, 0xFF, 0xF8F7},  {950, 0xFF, 0xFF, 0xF8F8},  {1253, 0xAA, 0xAA, 0xF8F9},
    {1253, 0xD2, 0xD2, 0xF8FA}, {1253, 0xFF, 0xFF, 0xF8FB}, {1255, 0xCA, 0xCA, 0x05BA}, {1255, 0xD9, 0xDF, 0xF88D},
    {1255, 0xFB, 0xFC, 0xF894}, {1255, 0xFF, 0xFF, 0xF896}, {1257, 0xA1, 0xA1, 0xF8FC}, {1257, 0xA5, 0xA5, 0xF8FD},
}};

// Pages whose letters are joined with the marks behind them, unless they come one at a time. What is joined cannot
// always be taken apart again.
bool JoinsMarks(std::uint32_t page) { return page == 1255 || page == 1258; }

// What stands for a byte that the code page has no character for: the control character of the same number, where
// there is one.
char16_t StandIn(std::uint32_t page, unsigned char byte) {
  for (const Holes& holes : kHoles) {
    if (holes.page == page && byte >= holes.first && byte <= holes.last)
      return static_cast<char16_t>(holes.wide + (byte - holes.first));
  }
  const bool control =
      byte >= 0x80 && byte < 0xA0 && page != kCodePageUtf8 && !IsLeadByte(page, static_cast<char>(byte));
  return control ? byte : kReplacement;
}

// The byte that a unit stands for, or a question mark.
char BehindStandIn(std::uint32_t page, char16_t unit) {
  constexpr char kUnknown = '?';
  unsigned char byte = unit >= 0x80 && unit < 0xA0 ? static_cast<unsigned char>(unit) : 0;
  for (const Holes& holes : kHoles) {
    if (holes.page == page && unit >= holes.wide && unit <= holes.wide + (holes.last - holes.first))
      byte = static_cast<unsigned char>(holes.first + (unit - holes.wide));
  }
  if (byte == 0) return kUnknown;
  const char narrow = static_cast<char>(byte);
  return AnsiToWide({&narrow, 1}) == std::u16string_view(&unit, 1) ? narrow : kUnknown;
}

}  // namespace

std::u16string AnsiToWide(std::string_view text) {
  const std::uint32_t page = AnsiCodePage();
  Converter converter(kWideName, CodePageName(page).c_str());
  if (!converter.IsOpen()) return Utf8ToWide(text);
  const std::string bytes = converter.Convert(text.data(), text.size(), JoinsMarks(page) ? 1 : text.size(),
                                              [page](std::string& out, const char*& in, const char*) {
                                                const char16_t unit = StandIn(page, static_cast<unsigned char>(*in));
                                                out.append(reinterpret_cast<const char*>(&unit), sizeof unit);
                                                ++in;
                                              });
  std::u16string wide(bytes.size() / sizeof(char16_t), u'\0');
  std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(char16_t));
  return wide;
}

std::string WideToAnsi(std::u16string_view text) {
  const std::uint32_t page = AnsiCodePage();
  Converter converter(CodePageName(page).c_str(), kWideName);
  if (!converter.IsOpen()) return WideToUtf8(text);
  return converter.Convert(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t),
                           text.size() * sizeof(char16_t), [page](std::string& out, const char*& in, const char* end) {
                             char16_t unit;
                             std::memcpy(&unit, in, sizeof unit);
                             out += BehindStandIn(page, unit);
                             in += 2;
                             if (unit < 0xD800 || unit >= 0xDC00 || end - in < 2) return;
                             std::memcpy(&unit, in, sizeof unit);
                             if (unit >= 0xDC00 && unit < 0xE000) in += 2;
                           });
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
};

// The code point at the start of the text, which is not empty. A broken sequence is one replacement character, as long
// as the bytes that belong together.
Utf8Sequence FirstSequence(std::string_view text) {
  constexpr std::array<char32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t size = SequenceSize(lead);
  if (size == 0) return {kReplacement, 1};
  char32_t point = size == 1 ? lead : lead & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    const unsigned char next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    if ((next & 0xC0) != 0x80) return {kReplacement, i};
    point = point << 6 | (next & 0x3Fu);
  }
  const bool valid = point >= kLeast[size] && point < 0x110000 && !IsSurrogate(point);
  return {valid ? point : char32_t{kReplacement}, size};
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

}  // namespace

std::string WideToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t point = text[i];
    if (IsSurrogate(point)) {
      const bool pair = point < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
      point = pair ? 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00u) : char32_t{kReplacement};
    }
    AppendUtf8(out, point);
  }
  return out;
}

std::u16string Utf8ToWide(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const Utf8Sequence sequence = FirstSequence(text);
    AppendUtf16(out, sequence.point);
    text.remove_prefix(sequence.size);
  }
  return out;
}

}  // namespace nvx::platform
