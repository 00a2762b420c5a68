#include "terminal.h"

#include "console.h"
#include "files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace nvx::tool {
namespace {

// Columns that a text takes on a terminal: continuation bytes take none, East Asian characters two.
std::size_t Width(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned char lead = static_cast<unsigned char>(text[i]);
    if ((lead & 0xC0) == 0x80) continue;
    const unsigned char next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
    const bool wide =
        (lead == 0xE3 && next >= 0x80) || (lead >= 0xE4 && lead <= 0xED) || (lead == 0xEF && next >= 0xBC);
    width += wide ? 2 : 1;
  }
  return width;
}

std::string Utf8(char32_t point) {
  std::string text;
  text += static_cast<char>(0xE0 | point >> 12);
  text += static_cast<char>(0x80 | (point >> 6 & 0x3F));
  text += static_cast<char>(0x80 | (point & 0x3F));
  return text;
}

// Dots of one character of a plot.
struct DotGrid {
  std::size_t across;
  std::size_t down;
};

// The bit of each dot of a braille character, by row and column; the first one stands for a whole character as well.
constexpr std::uint8_t kDots[4][2] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};

}  // namespace

std::string Styled(Style style, std::string_view text) {
  const char* const plain = std::getenv("NO_COLOR");
  if (!IsTerminal(stdout) || (plain != nullptr && *plain != 0)) return std::string(text);
  const char* code = "1";
  if (style == Style::kDim) code = "2";
  if (style == Style::kGood) code = "32";
  if (style == Style::kWarning) code = "33";
  if (style == Style::kBad) code = "31";
  return fmt::format("\033[{}m{}\033[0m", code, text);
}

void PrintLine(std::string_view line) {
  WriteStandardOutput(line);
  WriteStandardOutput("\n");
}

void PrintError(std::string_view message) {
  const std::string line = fmt::format("nvxprofile: {}\n", message);
  std::fwrite(line.data(), 1, line.size(), stderr);
}

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == text.npos) return text;
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field + '"';
}

void Table::Print(int indent) const {
  std::vector<std::size_t> widths;
  for (const Column& column : columns_) widths.push_back(Width(column.title));
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  const auto line = [&](const auto& cellOf, std::size_t count) {
    std::string text(static_cast<std::size_t>(indent), ' ');
    for (std::size_t i = 0; i < count; ++i) {
      const std::string& cell = cellOf(i);
      const std::size_t pad = widths[i] - std::min(widths[i], Width(cell));
      const bool isRight = columns_[i].align == Align::kRight;
      text.append(isRight ? pad : 0, ' ').append(cell).append((isRight ? 0 : pad) + 2, ' ');
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
  };
  PrintLine(Styled(Style::kHeading,
                   line([&](std::size_t i) -> const std::string& { return columns_[i].title; }, columns_.size())));
  for (const auto& row : rows_) {
    PrintLine(line([&](std::size_t i) -> const std::string& { return row[i]; }, std::min(row.size(), columns_.size())));
  }
}

PlotStyle UsualPlotStyle() { return IsTerminal(stdout) && ShowsUtf8() ? PlotStyle::kBraille : PlotStyle::kNone; }

std::vector<std::string> Plot(std::span<const std::uint32_t> samples, std::uint32_t greatest, PlotStyle style,
                              int width, int height) {
  if (style == PlotStyle::kNone) return {};
  const bool braille = style == PlotStyle::kBraille;
  const DotGrid dots = braille ? DotGrid{2, 4} : DotGrid{1, 1};
  const std::size_t across = static_cast<std::size_t>(width) * dots.across;
  const std::size_t down = static_cast<std::size_t>(height) * dots.down;
  std::vector<std::vector<std::uint8_t>> cells(static_cast<std::size_t>(height),
                                               std::vector<std::uint8_t>(static_cast<std::size_t>(width)));
  for (std::size_t x = 0; x < across && !samples.empty(); ++x) {
    const std::size_t index = samples.size() == 1 ? 0 : x * (samples.size() - 1) / (across - 1);
    const std::uint64_t value = std::min(samples[index], greatest);
    const std::size_t up = greatest == 0 ? 0 : static_cast<std::size_t>(value * (down - 1) / greatest);
    const std::size_t y = down - 1 - up;
    cells[y / dots.down][x / dots.across] |= kDots[y % dots.down][x % dots.across];
  }
  std::vector<std::string> lines;
  for (const std::vector<std::uint8_t>& row : cells) {
    std::string& line = lines.emplace_back();
    for (const std::uint8_t cell : row) line += braille ? Utf8(0x2800u + cell) : cell != 0 ? "*" : " ";
  }
  return lines;
}

}  // namespace nvx::tool
