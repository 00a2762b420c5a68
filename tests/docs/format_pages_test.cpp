// The tables of docs/formats say of each record what its description says: offset, size and name of every field, and
// what it always holds. With
// NVXPROFILE_WRITE_PAGES set the test writes these columns into the pages and keeps all others.
#include "entries/calibration/calibration_records.h"
#include "entries/curve/curve_form.h"
#include "entries/large_parameter/large_parameter_records.h"
#include "entries/lut/lut_records.h"
#include "entries/mask/mask_download_records.h"
#include "entries/mask/mask_records.h"
#include "entries/mask/packed_mask.h"
#include "entries/media/media_property_records.h"
#include "entries/model_info/model_info_records.h"
#include "entries/special_color/special_color_records.h"
#include "entries/word_table.h"
#include "formats/container_records.h"
#include "formats/qpf_records.h"
#include "formats/text_header.h"
#include "icc/icc_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using nvx::kRecordFields;
using Lines = std::vector<std::string>;

// A table is the first behind the line that starts with `heading`.
struct Table {
  const char* page;
  const char* heading;
  const nvx::RecordFields* fields;
};

const Table kTables[] = {
    {"calibration", "## Header", &kRecordFields<nvx::CalibrationHeader>},
    {"calibration", "## Entry header", &kRecordFields<nvx::CalibrationEntryHeader>},
    {"container", "## Header", &kRecordFields<nvx::ContainerHeader>},
    {"container", "## Entry header", &kRecordFields<nvx::ContainerEntryHeader>},
    {"curve_set", "## Header", &kRecordFields<tagCurveFileHeader>},
    {"curve_set", "## Curve record", &kRecordFields<nvx::CurveRecord>},
    {"icc", "## Header", &kRecordFields<nvx::IccHeaderForm>},
    {"icc", "## Tag table", &kRecordFields<nvx::IccTagForm>},
    {"large_parameter", "## Header", &kRecordFields<nvx::LargeParameterHeader>},
    {"large_parameter", "## Record", &kRecordFields<nvx::WordTableRecord>},
    {"lut", "## Header", &kRecordFields<nvx::LutHeader>},
    {"lut", "## Channel header", &kRecordFields<nvx::LutChannelHeader>},
    {"mask", "## Header of both forms", &kRecordFields<nvx::MaskParameterHeader>},
    {"mask", "## Record of the parameter list", &kRecordFields<nvx::MaskParameterRecord>},
    {"mask", "## Record of the pattern table", &kRecordFields<nvx::MaskPatternRecord>},
    {"mask_download", "## Header", &kRecordFields<nvx::WeftHeaderRecord>},
    {"mask_download", "## Block header", &kRecordFields<nvx::WeftBlockHeader>},
    {"mask_download", "## Output information", &kRecordFields<nvx::WeftOutputRecord>},
    {"media_property", "## Header", &kRecordFields<nvx::MediaPropertyHeader>},
    {"media_property", "## Entry header", &kRecordFields<nvx::MediaPropertyEntryHeader>},
    {"media_property", "## Data block", &kRecordFields<nvx::MediaPropertyBlock>},
    {"model_info", "## Model record", &kRecordFields<nvx::ModelRecord>},
    {"model_info", "## Info record", &kRecordFields<nvx::InfoRecord>},
    {"packed_mask", "## Header", &kRecordFields<nvx::PackedMaskHeader>},
    {"packed_mask", "## Pattern header", &kRecordFields<nvx::PackedPatternHeader>},
    {"qpf", "## Opening", &kRecordFields<nvx::PrivateTagOpening>},
    {"qpf", "### Header block", &nvx::kHeaderBlockFields},
    {"qpf", "## NVX2", &kRecordFields<nvx::MediaTableHeader>},
    {"qpf", "### Media name", &kRecordFields<nvx::MediaNameRecord>},
    {"special_color", "## Header", &kRecordFields<nvx::SpecialColorHeader>},
    {"special_color", "## Record", &kRecordFields<nvx::WordTableRecord>},
    {"text_header", "## Section table", &kRecordFields<nvx::SectionRecord>},
};

std::string PathOf(const Table& table) {
  return NVXPROFILE_SOURCE_FOLDER "/docs/formats/" + std::string(table.page) + ".md";
}

Lines LinesOf(const std::string& path) {
  std::ifstream file(path);
  Lines lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

void Write(const std::string& path, const Lines& lines) {
  std::ofstream file(path);
  for (const std::string& line : lines) file << line << '\n';
}

bool IsRow(const std::string& line) { return line.starts_with("| "); }

// The cells of a row without the blanks around them.
std::vector<std::string> CellsOf(const std::string& row) {
  std::vector<std::string> cells;
  std::istringstream stream(row.substr(1));
  for (std::string cell; std::getline(stream, cell, '|');) {
    const std::size_t first = cell.find_first_not_of(' ');
    cells.push_back(first == cell.npos ? "" : cell.substr(first, cell.find_last_not_of(' ') - first + 1));
  }
  return cells;
}

// The rows below the ruler of the table, as indices of the lines.
struct Rows {
  std::size_t first = 0;
  std::size_t end = 0;
};

Rows RowsBehind(const Lines& lines, std::string_view heading) {
  auto line = std::find_if(lines.begin(), lines.end(), [&](const std::string& l) {
    return l.starts_with(heading) && (l.size() == heading.size() || l[heading.size()] == ',');
  });
  line = std::find_if(line, lines.end(), [](const std::string& l) { return l.starts_with("| Offset"); });
  if (lines.end() - line < 3) return {};
  const auto first = line + 2;
  const auto end = std::find_if_not(first, lines.end(), IsRow);
  return {static_cast<std::size_t>(first - lines.begin()), static_cast<std::size_t>(end - lines.begin())};
}

// Rows whose offset or size is no number are about what has no fixed place.
bool HasFixedPlace(const std::vector<std::string>& cells) {
  const auto isNumber = [](const std::string& cell) {
    return !cell.empty() && cell.find_first_not_of("0123456789") == std::string::npos;
  };
  return cells.size() > 1 && isNumber(cells[0]) && isNumber(cells[1]);
}

std::string FrontOf(const nvx::RecordField& field) {
  return "| " + std::to_string(field.offset) + " | " + std::to_string(field.size) + " | " + std::string(field.name) +
         " |";
}

// The rows as they should be: what the description says, with the other columns of the row that stands there now.
Lines Expected(const Lines& lines, Rows rows, const nvx::RecordFields& fields) {
  Lines fixed;
  Lines others;
  for (std::size_t i = rows.first; i < rows.end; ++i) {
    (HasFixedPlace(CellsOf(lines[i])) ? fixed : others).push_back(lines[i]);
  }
  Lines expected;
  for (const nvx::RecordField& field : fields.All()) {
    std::string row = FrontOf(field);
    const auto present = std::find_if(fixed.begin(), fixed.end(), [&](const std::string& line) {
      return CellsOf(line)[0] == std::to_string(field.offset);
    });
    const std::vector<std::string> cells = present != fixed.end() ? CellsOf(*present) : std::vector<std::string>(4);
    for (std::size_t i = 3; i < cells.size(); ++i) row += (cells[i].empty() ? "" : " " + cells[i]) + " |";
    expected.push_back(row);
  }
  expected.insert(expected.end(), others.begin(), others.end());
  return expected;
}

// A constant as a page writes it: the four characters of a magic in the order of the file, or a number.
std::string ValueOf(const nvx::RecordConstant& constant) {
  std::string text = "\"";
  for (int i = 0; i < 4; ++i) text += static_cast<char>(constant.value >> 8 * i & 0xFF);
  if (std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isprint(c) != 0; })) return text + '"';
  std::ostringstream number;
  number << "0x" << std::hex << std::uppercase << std::setfill('0') << std::setw(8) << constant.value;
  return number.str();
}

void ExpectConstants(const Lines& rows, const nvx::RecordFields& fields) {
  for (const nvx::RecordConstant& constant : fields.Constants()) {
    const std::string offset = std::to_string(constant.offset);
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const std::string& line) { return CellsOf(line)[0] == offset; });
    ASSERT_NE(row, rows.end());
    EXPECT_TRUE(CellsOf(*row).at(3).starts_with(ValueOf(constant))) << *row << " " << ValueOf(constant);
  }
}

TEST(FormatPages, SayWhatTheDescriptionsSay) {
  const bool writes = std::getenv("NVXPROFILE_WRITE_PAGES") != nullptr;
  for (const Table& table : kTables) {
    SCOPED_TRACE(std::string(table.page) + ".md, " + table.heading);
    Lines lines = LinesOf(PathOf(table));
    const Rows rows = RowsBehind(lines, table.heading);
    ASSERT_NE(rows.end, 0u) << "no table";
    const auto first = lines.begin() + static_cast<std::ptrdiff_t>(rows.first);
    const auto end = lines.begin() + static_cast<std::ptrdiff_t>(rows.end);
    const Lines expected = Expected(lines, rows, *table.fields);
    if (!writes) {
      EXPECT_EQ(Lines(first, end), expected);
      ExpectConstants(expected, *table.fields);
      continue;
    }
    lines.insert(lines.erase(first, end), expected.begin(), expected.end());
    Write(PathOf(table), lines);
  }
}

}  // namespace
