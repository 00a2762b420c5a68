#include "platform/locale.h"

#include "support/environment.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace nvx::test {
namespace {

using platform::AnsiCodePage;
using platform::AnsiToWide;
using platform::BytesToWide;
using platform::CutAnsi;
using platform::PrimaryLanguage;
using platform::Utf8ToWide;
using platform::WideToAnsi;
using platform::WideToBytes;
using platform::WideToUtf8;

TEST(Locale, LanguageAndCodePage) {
  const struct {
    const char* locale;
    std::uint16_t language;
    std::uint32_t page;
  } kCases[] = {{"ja_JP.UTF-8", 17, 932}, {"ja", 17, 932},    {"en_GB", 9, 1252},  {"de_DE@euro", 7, 1252},
                {"zh_CN.UTF-8", 4, 936},  {"ko_KR", 18, 949}, {"ru-RU", 25, 1251}, {"C.UTF-8", 9, 1252},
                {"POSIX", 9, 1252},       {"xx_YY", 9, 1252}, {"jam", 9, 1252}};
  for (const auto& item : kCases) {
    const ScopedLanguage language(item.locale);
    EXPECT_EQ(PrimaryLanguage(), item.language) << item.locale;
    EXPECT_EQ(AnsiCodePage(), item.page) << item.locale;
  }
}

// The published primary language numbers: codes whose numbers follow each other, from the first one's on.
TEST(Locale, LanguagesHaveTheirNumbers) {
  const std::pair<std::uint16_t, const char*> kRuns[] = {
      {1,
       "ar bg ca zh cs da de el en es fi fr he hu is it ja ko nl nb pl pt rm ro ru hr sk sq sv th tr ur id uk be sl "
       "et lv lt tg fa vi hy az eu"},
      {13, "iw"},
      {20, "nn"},
      {20, "no"},
      {26, "sr"},
      {26, "bs"},
      {47, "mk"},
      {54, "af ka fo hi mt"},
      {62, "ms kk ky sw"},
      {67, "uz"},
      {69, "bn pa gu"},
      {73, "ta te kn"},
      {78, "mr"},
      {80, "mn"},
      {82, "cy"}};
  for (auto [number, codes] : kRuns) {
    std::istringstream words(codes);
    for (std::string code; words >> code; ++number) EXPECT_EQ(platform::LanguageNumber(code + "_XX"), number) << code;
  }
  EXPECT_EQ(platform::LanguageNumber("xx"), std::nullopt);
}

TEST(Locale, FirstVariableThatIsSetDecides) {
  const ScopedLanguage none(nullptr);
  const ScopedVariable language("LANG", "fr_FR.UTF-8");
  const ScopedVariable messages("LC_MESSAGES", "");
  EXPECT_EQ(PrimaryLanguage(), 12);
  const ScopedVariable japanese("LC_MESSAGES", "ja_JP");
  EXPECT_EQ(PrimaryLanguage(), 17);
  const ScopedVariable page("NVXPROFILE_CODEPAGE", "1252");
  EXPECT_EQ(AnsiCodePage(), 1252u);
  const ScopedVariable noNumber("NVXPROFILE_CODEPAGE", "1252x");
  EXPECT_EQ(AnsiCodePage(), 932u);
}

TEST(Locale, BothWays) {
  // Half-width katakana, characters whose second byte is a backslash, and an extension of the vendor code page.
  for (const auto& [number, wide, narrow] :
       {std::tuple("932", u"光沢紙 ソ表 ｱｲ ①～ A4",
                   "\x8C\xF5\x91\xF2\x8E\x86 \x83\x5C\x95\x5C \xB1\xB2 \x87\x40\x81\x60 A4"),
        {"1252", u"Papêter € 5… “hi” ß", "Pap\xEAter \x80 5\x85 \x93hi\x94 \xDF"}}) {
    const ScopedVariable page("NVXPROFILE_CODEPAGE", number);
    EXPECT_EQ(AnsiToWide(narrow), wide);
    EXPECT_EQ(WideToAnsi(wide), narrow);
  }
}

TEST(Locale, WhatDoesNotConvertBecomesASubstitute) {
  {
    const ScopedVariable page("NVXPROFILE_CODEPAGE", "932");
    EXPECT_EQ(AnsiToWide("a\x83"), u"a\xFFFD");  // half a character at the end
    EXPECT_EQ(AnsiToWide("a\x83 b"), u"a\xFFFD b");
    EXPECT_EQ(WideToAnsi(u"aé\xD83D\xDE00z"), "a??z");
  }
  const ScopedVariable page("NVXPROFILE_CODEPAGE", "1252");
  EXPECT_EQ(WideToAnsi(u"光x\xD83Dy\xDE00z\xD83D"), "?x?y?z?");
  EXPECT_EQ(WideToAnsi(u"\x80|\xF8F1"), "?|?") << "a control whose byte has a character, a private one of another page";
  EXPECT_EQ(WideToAnsi(u"\x80"), "?");
  EXPECT_EQ(AnsiToWide(std::string(3000, '\x81')), std::u16string(3000, u'\x81'));
  EXPECT_EQ(AnsiToWide(std::string(3000, 'e')), std::u16string(3000, u'e'));
  EXPECT_EQ(AnsiToWide(""), u"");
  const ScopedVariable unknown("NVXPROFILE_CODEPAGE", "99999");
  EXPECT_EQ(AnsiToWide("é"), u"é");
  EXPECT_EQ(WideToAnsi(u"é"), "é");
}

// Text that is all ASCII takes a way of its own, which must end where that of any other text does.
TEST(Locale, AsciiIsTheSameInAnyCompany) {
  std::string ascii;
  for (int value = 0; value < 0x80; ++value) ascii += static_cast<char>(value);
  const std::u16string wide(ascii.begin(), ascii.end());
  for (const int number : {37, 437, 874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258}) {
    SCOPED_TRACE(number);
    const ScopedVariable page("NVXPROFILE_CODEPAGE", std::to_string(number));
    // No page has this character, so that the whole text goes through the converter.
    const std::string bytes = WideToAnsi(wide + u'\x1234');
    EXPECT_EQ(WideToAnsi(wide), bytes.substr(0, wide.size()));
    const std::u16string accompanied = AnsiToWide(ascii + "\xE9");
    EXPECT_EQ(AnsiToWide(ascii), accompanied.substr(0, ascii.size()));
  }
}

// Text of the bytes that are no half of a character comes back, whatever the code page has no character for.
TEST(Locale, NoByteIsLost) {
  const struct {
    std::uint32_t page;
    std::string_view controls;  // bytes that stand for the control of the same number
    std::string_view privates;  // bytes that stand for private characters, which follow each other
    char16_t firstPrivate = 0;
  } kPages[] = {
      {857, "", "\xD5\xE7\xF2", 0xF8BB},
      {864, "", "\xA6\xA7\xFF", 0xF8BE},
      {874, "\x81\x82\x83\x84\x86\x90\x98\x9F", "\xDB\xDC\xDD\xDE\xFC\xFD\xFE\xFF", 0xF8C1},
      {932, "\x80", "\xA0\xFD\xFE\xFF", 0xF8F0},
      {936, "", "\xFF", 0xF8F5},
      {949, "\x80", "\xFF", 0xF8F7},
      {950, "\x80", "\xFF", 0xF8F8},
      {1250, "\x81\x83\x88\x90\x98", ""},
      {1251, "\x98", ""},
      {1252, "\x81\x8D\x8F\x90\x9D", ""},
      {1253, "\x81\x88\x8A\x8C\x8D\x8E\x8F\x90\x98\x9A\x9C\x9D\x9E\x9F", "\xAA\xD2\xFF", 0xF8F9},
      {1254, "\x81\x8D\x8E\x8F\x90\x9D\x9E", ""},
      {1255, "\x81\x8A\x8C\x8D\x8E\x8F\x90\x9A\x9C\x9D\x9E\x9F", "\xD9\xDA\xDB\xDC\xDD\xDE\xDF\xFB\xFC\xFF", 0xF88D},
      {1256, "", ""},
      {1257, "\x81\x83\x88\x8A\x8C\x90\x98\x9A\x9C\x9F", "\xA1\xA5", 0xF8FC},
      {1258, "\x81\x8A\x8D\x8E\x8F\x90\x9A\x9D\x9E", ""},
  };
  for (const auto& item : kPages) {
    const ScopedVariable page("NVXPROFILE_CODEPAGE", std::to_string(item.page));
    for (int value = 1; value < 256; ++value) {
      const char byte = static_cast<char>(value);
      if (platform::IsLeadByte(item.page, byte)) continue;
      const std::u16string wide = AnsiToWide({&byte, 1});
      ASSERT_EQ(wide.size(), 1u) << item.page << ' ' << value;
      EXPECT_EQ(WideToAnsi(wide), std::string(1, byte)) << item.page << ' ' << value;
      const bool isPrivate = wide[0] >= 0xE000 && wide[0] < 0xF900;
      const std::size_t index = item.privates.find(byte);
      ASSERT_EQ(isPrivate, index != item.privates.npos) << item.page << ' ' << value;
      if (isPrivate) {
        EXPECT_EQ(wide[0], item.firstPrivate + index) << item.page << ' ' << value;
      }
      const bool isControl = wide[0] >= 0x80 && wide[0] < 0xA0;
      if (item.controls.find(byte) != item.controls.npos) {
        EXPECT_EQ(wide[0], value) << item.page;
      } else {
        EXPECT_FALSE(isControl && wide[0] != value) << item.page << ' ' << value;
      }
    }
  }
  const ScopedVariable euro("NVXPROFILE_CODEPAGE", "936");
  EXPECT_EQ(AnsiToWide("\x80"), u"€");
}

// The areas of pairs for characters of the user's own leave no gap in the private characters.
TEST(Locale, AreasOfTheUserComeBack) {
  const struct {
    std::uint32_t page;
    char16_t last;
    std::vector<std::pair<std::string, char16_t>> ends;
  } kPages[] = {
      {936, 0xE864, {{"\xAA\xA1", 0xE000}, {"\xF8\xA1", 0xE234}, {"\xFE\xFE", 0xE4C5}, {"\xA1\x40", 0xE4C6}}},
      {949, 0xE0BB, {{"\xC9\xA1", 0xE000}, {"\xFE\xA1", 0xE05E}}},
      {950, 0xF6B0, {{"\xFA\x40", 0xE000}, {"\x8E\x40", 0xE311}, {"\x81\x40", 0xEEB8}}},
  };
  for (const auto& item : kPages) {
    const ScopedVariable page("NVXPROFILE_CODEPAGE", std::to_string(item.page));
    std::u16string all;
    for (char16_t character = 0xE000; character <= item.last; ++character) all += character;
    const std::string narrow = WideToAnsi(all);
    EXPECT_EQ(narrow.size(), 2 * all.size()) << item.page;
    EXPECT_EQ(AnsiToWide(narrow), all) << item.page;
    for (const auto& [bytes, character] : item.ends) {
      EXPECT_EQ(AnsiToWide(bytes), std::u16string(1, character)) << item.page;
    }
  }
}

TEST(Locale, CutsBetweenCharacters) {
  const std::string_view text = "a\x8C\xF5\x91\xF2";
  const std::string_view utf8 = "aé光";
  for (const auto& [number, whole, most, kept] : {std::tuple("932", text, 5u, 5u),
                                                  {"932", text, 4u, 3u},
                                                  {"932", text, 3u, 3u},
                                                  {"932", text, 2u, 1u},
                                                  {"932", text, 0u, 0u},
                                                  {"65001", utf8, 5u, 3u},
                                                  {"65001", utf8, 2u, 1u},
                                                  {"1252", text, 4u, 4u}}) {
    const ScopedVariable page("NVXPROFILE_CODEPAGE", number);
    EXPECT_EQ(CutAnsi(whole, most), whole.substr(0, kept)) << number << ' ' << most;
  }
}

TEST(Locale, Utf8BothWays) {
  const std::u16string wide = u"aé光\xD83D\xDE00";
  EXPECT_EQ(Utf8ToWide("aé光😀"), wide);
  EXPECT_EQ(WideToUtf8(wide), "aé光😀");
  EXPECT_EQ(Utf8ToWide("\xEF\xBF\xBF|\xF0\x90\x80\x80|\xF4\x8F\xBF\xBF"), u"\xFFFF|\xD800\xDC00|\xDBFF\xDFFF");
  EXPECT_EQ(WideToUtf8(u"\x7F\x80\x7FF\x800\xFFFF\xD800\xDC00\xDBFF\xDFFF"),
            "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
  EXPECT_EQ(WideToUtf8(u"\xD83Dx\xDE00"), "\xEF\xBF\xBDx\xEF\xBF\xBD");
  EXPECT_EQ(WideToUtf8(u"\xDC00\xDC00"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "two second halves";
  EXPECT_EQ(Utf8ToWide("\xC0\x80|\xED\xA0\x80|\xF5|\xE5\x85|\x80|\xE5\x85"),
            u"\xFFFD\xFFFD|\xFFFD|\xFFFD|\xFFFD|\xFFFD|\xFFFD");
}

TEST(Locale, NamesKeepBytesThatAreNoUtf8) {
  for (const std::string name : {"plain", "aé光😀", "gl\xE4nzend.icc", "\xC0\x80|\xED\xA0\x80|\xF5|\xE5\x85|\x80",
                                 "\xEF\xBF\xBD", "\xF0\x9F\x98\xE4"}) {
    EXPECT_EQ(WideToBytes(BytesToWide(name)), name);
    EXPECT_EQ(WideToUtf8(BytesToWide(name)).find('\xE4'), std::string::npos) << "a text has none of them";
  }
  EXPECT_EQ(BytesToWide("\xE4"), u"\xDCE4");
  EXPECT_EQ(WideToBytes(u"\xDC7F\xDD00\xD800"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace nvx::test
