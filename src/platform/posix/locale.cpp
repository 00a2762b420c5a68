#include "platform/locale.h"

#include "platform/environment.h"
#include "platform/posix/private_characters.h"

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

// Pages that have ASCII in their first half: of a text that has nothing else the bytes are the characters, and to find
// the converter takes longer than most texts.
bool StartsWithAscii(std::uint32_t page) {
  return page == 932 || page == 936 || page == 949 || page == 950 || (page >= 1250 && page <= 1258);
}

template <class Text>
bool IsAscii(const Text& text) {
  return std::all_of(text.begin(), text.end(), [](auto unit) { return static_cast<std::uint16_t>(unit) < 0x80; });
}

// Pages whose letters are joined with the marks behind them, unless they come one at a time. What is joined cannot
// always be taken apart again.
bool JoinsMarks(std::uint32_t page) { return page == 1255 || page == 1258; }

// What stands for bytes that iconv has no character for: a private one, or the control character of the same number.
struct StandIn {
  char16_t unit;
  std::size_t size;  // of the bytes that it stands for
};

StandIn ForBytes(std::uint32_t page, const char* in, const char* end) {
  const auto byte = static_cast<unsigned char>(*in);
  if (!IsLeadByte(page, *in)) {
    if (const auto character = PrivateCharacter(page, 0, byte)) return {*character, 1};
    return {byte >= 0x80 && byte < 0xA0 ? char16_t{byte} : kReplacement, 1};
  }
  const auto character = end - in > 1 ? PrivateCharacter(page, byte, static_cast<unsigned char>(in[1])) : std::nullopt;
  return character ? StandIn{*character, 2} : StandIn{kReplacement, 1};
}

// The bytes that a unit stands for, or a question mark.
std::string BehindStandIn(std::uint32_t page, char16_t unit) {
  std::string bytes = PrivateBytes(page, unit);
  if (bytes.empty() && unit >= 0x80 && unit < 0xA0) bytes = static_cast<char>(unit);
  // Not where the bytes have a character after all.
  return !bytes.empty() && AnsiToWide(bytes) == std::u16string_view(&unit, 1) ? bytes : "?";
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
  if (text.empty()) return {};
  const std::uint32_t page = AnsiCodePage();
  if (page == kCodePageUtf8) return Utf8ToWide(text);
  if (StartsWithAscii(page) && IsAscii(text)) return {text.begin(), text.end()};
  Converter converter(kWideName, CodePageName(page).c_str());
  if (!converter.IsOpen()) return Utf8ToWide(text);
  const std::string bytes =
      converter.Convert(text.data(), text.size(), JoinsMarks(page) ? 1 : text.size(),
                        [page](std::string& out, const char*& in, const char* end) {
                          const StandIn standIn = ForBytes(page, in, end);
                          out.append(reinterpret_cast<const char*>(&standIn.unit), sizeof standIn.unit);
                          in += standIn.size;
                        });
  std::u16string wide(bytes.size() / sizeof(char16_t), u'\0');
  std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(char16_t));
  return wide;
}

std::string WideToAnsi(std::u16string_view text) {
  if (text.empty()) return {};
  const std::uint32_t page = AnsiCodePage();
  if (page == kCodePageUtf8) return WideToUtf8(text);
  if (StartsWithAscii(page) && IsAscii(text)) return {text.begin(), text.end()};
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
