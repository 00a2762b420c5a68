#include "platform/posix/private_characters.h"

#include <array>

namespace nvx::platform {
namespace {

struct Run {
  unsigned char first = 1;
  unsigned char last = 0;

  constexpr std::uint32_t Size() const { return last < first ? 0u : last - first + 1u; }
  constexpr bool Has(unsigned char byte) const { return byte >= first && byte <= last; }
};

// Rows of characters that follow each other: those of each lead byte take up the bytes of both runs.
struct Rows {
  std::uint32_t page;
  unsigned char firstLead;
  unsigned char lastLead;
  Run low;
  Run high;
  char16_t wide;

  constexpr std::uint32_t Width() const { return low.Size() + high.Size(); }
};

// The areas for characters of the user's own, and holes of the code pages. Three characters came later than the
// standards of their pages.
constexpr std::array kRows{
    Rows{857, 0, 0, {0xD5, 0xD5}, {0xE7, 0xE7}, 0xF8BB},
    Rows{857, 0, 0, {0xF2, 0xF2}, {}, 0xF8BD},
    Rows{864, 0, 0, {0xA6, 0xA7}, {0xFF, 0xFF}, 0xF8BE},
    Rows{874, 0, 0, {0xDB, 0xDE}, {0xFC, 0xFF}, 0xF8C1},
    Rows{932, 0, 0, {0xA0, 0xA0}, {0xFD, 0xFF}, 0xF8F0},
    Rows{936, 0, 0, {0x80, 0x80}, {}, 0x20AC},
    Rows{936, 0, 0, {0xFF, 0xFF}, {}, 0xF8F5},
    Rows{936, 0xAA, 0xAF, {0xA1, 0xFE}, {}, 0xE000},
    Rows{936, 0xF8, 0xFE, {0xA1, 0xFE}, {}, 0xE234},
    Rows{936, 0xA1, 0xA7, {0x40, 0x7E}, {0x80, 0xA0}, 0xE4C6},
    Rows{936, 0xA2, 0xA2, {0xAB, 0xB0}, {0xE3, 0xE4}, 0xE766},
    Rows{936, 0xA2, 0xA2, {0xEF, 0xF0}, {0xFD, 0xFE}, 0xE76E},
    Rows{936, 0xA4, 0xA4, {0xF4, 0xFE}, {}, 0xE772},
    Rows{936, 0xA5, 0xA5, {0xF7, 0xFE}, {}, 0xE77D},
    Rows{936, 0xA6, 0xA6, {0xB9, 0xC0}, {0xD9, 0xDF}, 0xE785},
    Rows{936, 0xA6, 0xA6, {0xEC, 0xED}, {0xF3, 0xF3}, 0xE794},
    Rows{936, 0xA6, 0xA6, {0xF6, 0xFE}, {}, 0xE797},
    Rows{936, 0xA7, 0xA7, {0xC2, 0xD0}, {0xF2, 0xFE}, 0xE7A0},
    Rows{936, 0xA8, 0xA8, {0x96, 0xA0}, {0xBC, 0xBC}, 0xE7BC},
    Rows{936, 0xA8, 0xA8, {0xBF, 0xBF}, {0xC1, 0xC4}, 0xE7C8},
    Rows{936, 0xA8, 0xA8, {0xEA, 0xFE}, {}, 0xE7CD},
    Rows{936, 0xA9, 0xA9, {0x58, 0x58}, {0x5B, 0x5B}, 0xE7E2},
    Rows{936, 0xA9, 0xA9, {0x5D, 0x5F}, {0x89, 0x95}, 0xE7E4},
    Rows{936, 0xA9, 0xA9, {0x97, 0xA3}, {0xF0, 0xFE}, 0xE7F4},
    Rows{936, 0xD7, 0xD7, {0xFA, 0xFE}, {}, 0xE810},
    Rows{936, 0xFE, 0xFE, {0x50, 0x7E}, {0x80, 0xA0}, 0xE815},
    Rows{949, 0, 0, {0xFF, 0xFF}, {}, 0xF8F7},
    Rows{949, 0xC9, 0xC9, {0xA1, 0xFE}, {}, 0xE000},
    Rows{949, 0xFE, 0xFE, {0xA1, 0xFE}, {}, 0xE05E},
    Rows{950, 0, 0, {0xFF, 0xFF}, {}, 0xF8F8},
    Rows{950, 0xFA, 0xFE, {0x40, 0x7E}, {0xA1, 0xFE}, 0xE000},
    Rows{950, 0x8E, 0xA0, {0x40, 0x7E}, {0xA1, 0xFE}, 0xE311},
    Rows{950, 0x81, 0x8D, {0x40, 0x7E}, {0xA1, 0xFE}, 0xEEB8},
    Rows{1253, 0, 0, {0xAA, 0xAA}, {0xD2, 0xD2}, 0xF8F9},
    Rows{1253, 0, 0, {0xFF, 0xFF}, {}, 0xF8FB},
    Rows{1255, 0, 0, {0xCA, 0xCA}, {}, 0x05BA},
    Rows{1255, 0, 0, {0xD9, 0xDF}, {0xFB, 0xFC}, 0xF88D},
    Rows{1255, 0, 0, {0xFF, 0xFF}, {}, 0xF896},
    Rows{1257, 0, 0, {0xA1, 0xA1}, {0xA5, 0xA5}, 0xF8FC},
};

}  // namespace

std::optional<char16_t> PrivateCharacter(std::uint32_t page, unsigned char lead, unsigned char byte) {
  for (const Rows& rows : kRows) {
    if (rows.page != page || lead < rows.firstLead || lead > rows.lastLead) continue;
    const std::uint32_t start = rows.wide + (lead - rows.firstLead) * rows.Width();
    if (rows.low.Has(byte)) return static_cast<char16_t>(start + byte - rows.low.first);
    if (rows.high.Has(byte)) return static_cast<char16_t>(start + rows.low.Size() + byte - rows.high.first);
  }
  return std::nullopt;
}

std::string PrivateBytes(std::uint32_t page, char16_t character) {
  for (const Rows& rows : kRows) {
    const std::uint32_t count = rows.Width() * (rows.lastLead - rows.firstLead + 1u);
    if (rows.page != page || character < rows.wide || character - rows.wide >= static_cast<int>(count)) continue;
    const std::uint32_t offset = static_cast<std::uint32_t>(character - rows.wide);
    const std::uint32_t column = offset % rows.Width();
    const bool high = column >= rows.low.Size();
    std::string bytes;
    if (rows.firstLead != 0) bytes += static_cast<char>(rows.firstLead + offset / rows.Width());
    bytes += static_cast<char>(high ? rows.high.first + column - rows.low.Size() : rows.low.first + column);
    return bytes;
  }
  return {};
}

}  // namespace nvx::platform
