// Writes down what becomes of each character of each code page, for scripts/test-windows, which compares the lists of
// two systems.
#include "platform/locale.h"
#include "support/environment.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using nvx::test::ScopedVariable;

// The bytes that stand alone from 0x80 on, and each pair of a lead byte and what may follow.
std::vector<std::string> Characters(std::uint32_t page) {
  std::vector<std::string> characters;
  for (int first = 0x80; first < 0x100; ++first) {
    const char lead = static_cast<char>(first);
    if (!nvx::platform::IsLeadByte(page, lead)) {
      characters.emplace_back(1, lead);
      continue;
    }
    for (int second = 0x40; second < 0x100; ++second) characters.push_back({lead, static_cast<char>(second)});
  }
  return characters;
}

template <class Text>
void Print(std::ostream& out, const Text& text, std::size_t digits) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const auto unit : text) {
    for (std::size_t i = digits; i-- > 0;) out << kDigits[static_cast<std::uint16_t>(unit) >> (4 * i) & 0xF];
  }
}

std::vector<std::u16string> Converted(std::uint32_t page, const std::vector<std::string>& characters) {
  const ScopedVariable variable("NVXPROFILE_CODEPAGE", std::to_string(page));
  std::vector<std::u16string> wide;
  for (const std::string& character : characters) wide.push_back(nvx::platform::AnsiToWide(character));
  return wide;
}

TEST(CodePages, AreWrittenDown) {
  const char* const path = std::getenv("NVXPROFILE_CODEPAGE_LIST");
  if (path == nullptr) GTEST_SKIP() << "NVXPROFILE_CODEPAGE_LIST names no file for the list";
  std::ofstream list(path, std::ios::binary);
  for (const std::uint32_t page :
       {437u, 737u, 775u, 850u, 852u, 855u, 857u,  858u,  860u,  861u,  862u,  863u,  864u,  865u,  866u,
        869u, 874u, 932u, 936u, 949u, 950u, 1250u, 1251u, 1252u, 1253u, 1254u, 1255u, 1256u, 1257u, 1258u}) {
    const std::vector<std::string> characters = Characters(page);
    const std::vector<std::u16string> wide = Converted(page, characters);
    // What a system does not know is taken for UTF-8.
    if (wide == Converted(nvx::platform::kCodePageUtf8, characters)) continue;
    const ScopedVariable variable("NVXPROFILE_CODEPAGE", std::to_string(page));
    for (std::size_t i = 0; i < characters.size(); ++i) {
      list << page << ' ';
      Print(list, characters[i], 2);
      list << ' ';
      Print(list, wide[i], 4);
      list << ' ';
      Print(list, nvx::platform::WideToAnsi(wide[i]), 2);
      list << '\n';
    }
  }
  EXPECT_TRUE(list.flush());
}

}  // namespace
