#include "platform/locale.h"

#include "platform/environment.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>

namespace nvx::platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr const char* kWideName = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

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
  const bool control = byte >= 0x80 && byte < 0xA0 && !IsLeadByte(page, static_cast<char>(byte));
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

std::uint16_t PrimaryLanguage() {
  for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const auto locale = EnvironmentVariable(variable)) return LanguageNumber(*locale).value_or(kLanguageEnglish);
  }
  return kLanguageEnglish;
}

std::uint32_t AnsiCodePage() {
  const auto page = EnvironmentNumber<std::uint32_t>("NVXPROFILE_CODEPAGE");
  return page ? *page : CodePageOf(PrimaryLanguage());
}

std::u16string AnsiToWide(std::string_view text) {
  const std::uint32_t page = AnsiCodePage();
  if (page == kCodePageUtf8) return Utf8ToWide(text);
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
  if (page == kCodePageUtf8) return WideToUtf8(text);
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

}  // namespace nvx::platform
