// Output for people: aligned tables, small plots, and colours where a terminal shows them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

enum class Style { kHeading, kDim, kGood, kWarning, kBad };

// The text in a style on a terminal, unless NO_COLOR is set; the bare text elsewhere.
std::string Styled(Style style, std::string_view text);

// Writes a line to standard output.
void PrintLine(std::string_view line = {});
// Writes "nvxprofile: message" to standard error.
void PrintError(std::string_view message);

// A field of a line of comma-separated values (RFC 4180), quoted where it has to be.
std::string CsvField(const std::string& text);

// Columns of text, as wide as their widest cell. Numbers stand to the right.
class Table {
 public:
  enum class Align { kLeft, kRight };
  struct Column {
    std::string title;
    Align align = Align::kLeft;
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}
  void Add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  bool IsEmpty() const { return rows_.empty(); }
  // Writes the rows with the titles above, each line behind `indent` blanks.
  void Print(int indent = 0) const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

enum class PlotStyle { kNone, kAscii, kBraille };

// Braille for a terminal that shows UTF-8, and nothing elsewhere.
PlotStyle UsualPlotStyle();

// A plot of samples against their index, `width` by `height` characters, lines from top to bottom. Values above
// `greatest` stand at the top. No lines for kNone.
std::vector<std::string> Plot(std::span<const std::uint32_t> samples, std::uint32_t greatest, PlotStyle style,
                              int width = 48, int height = 8);

}  // namespace nvx::tool
