#include "cal_file.h"

#include "cgats.h"
#include "clock.h"
#include "colorants.h"
#include "numbers.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ctime>
#include <locale>
#include <numeric>
#include <set>
#include <sstream>

namespace nvx::tool {
namespace {

constexpr const char* kKind = "CAL";
// The row of the table of targets that states the ink limits, in the files of those who have targets.
constexpr const char* kMaximum = "DEVMAX_USED";
// The keyword that states them in the files of those who have none, one number for each ink. A table of targets that
// holds nothing else makes other programs fail.
constexpr const char* kLimits = "INK_LIMITS";

double Number(const CgatsTable& table, const CgatsTable::Row& row, std::size_t column) {
  const std::string& text = row.cells[column];
  const auto value = NumberOf<double>(text);
  if (!value) {
    throw TextError(row.line, fmt::format("{} is \"{}\", which is no number", table.fields[column], text));
  }
  if (!(*value >= 0 && *value <= 1)) {
    throw TextError(row.line, fmt::format("{} is {}, and 0 to 1 is possible", table.fields[column], text));
  }
  return *value;
}

// The colour representation, which is also the start of each field's name.
std::string RepresentationOf(const CgatsTable& table) {
  if (table.kind != kKind) {
    throw TextError(table.line, fmt::format("a table of the kind CAL is expected, and this is \"{}\"", table.kind));
  }
  const std::string* const device = table.Find("DEVICE_CLASS");
  if (device == nullptr || *device != "OUTPUT") {
    throw TextError(table.line,
                    fmt::format("DEVICE_CLASS must be OUTPUT, and is {}", device != nullptr ? *device : "missing"));
  }
  const std::string* const representation = table.Find("COLOR_REP");
  if (representation == nullptr) throw TextError(table.line, "COLOR_REP is missing");
  const std::vector<std::string> colorants = ColorantsIn(*representation);
  if (colorants.empty()) throw TextError(table.line, fmt::format("COLOR_REP \"{}\" names no inks", *representation));
  if (std::set<std::string>(colorants.begin(), colorants.end()).size() != colorants.size()) {
    throw TextError(table.line, fmt::format("COLOR_REP \"{}\" names an ink twice", *representation));
  }
  return *representation;
}

std::size_t ColumnOf(const CgatsTable& table, const std::string& name) {
  const auto found = std::find(table.fields.begin(), table.fields.end(), name);
  if (found == table.fields.end()) throw TextError(table.fieldsLine, fmt::format("the field {} is missing", name));
  return static_cast<std::size_t>(found - table.fields.begin());
}

std::vector<double> ReadInputs(const CgatsTable& table, std::size_t column) {
  constexpr double kRounding = 1e-5;
  constexpr double kLeastStep = 1e-7;
  std::vector<double> inputs;
  for (const CgatsTable::Row& row : table.rows) {
    const double input = Number(table, row, column);
    if (!inputs.empty() && input < inputs.back() + kLeastStep) throw TextError(row.line, "the inputs do not ascend");
    inputs.push_back(input);
  }
  if (inputs.size() < 2) throw TextError(table.line, "two sets at least are needed for a curve");
  if (inputs.front() > kRounding) throw TextError(table.rows.front().line, "the first input is not 0");
  if (inputs.back() < 1 - kRounding) throw TextError(table.rows.back().line, "the last input is not 1");
  return inputs;
}

void CheckLimits(const std::vector<double>& limits, const std::vector<CalCurve>& curves, std::size_t line) {
  if (limits.size() != curves.size()) {
    throw TextError(line, fmt::format("there are {} ink limits and {} inks", limits.size(), curves.size()));
  }
  for (std::size_t i = 0; i < limits.size(); ++i) {
    if (!(limits[i] > 0 && limits[i] <= 1)) {
      throw TextError(
          line, fmt::format("the ink limit of {} is {}, and above 0 to 1 is possible", curves[i].colorant, limits[i]));
    }
  }
}

// What the table of targets says, if there is one.
std::vector<double> ReadTargets(const std::vector<CgatsTable>& tables, const std::string& representation,
                                const std::vector<CalCurve>& curves) {
  std::vector<double> limits;
  for (const CgatsTable& table : tables) {
    if (table.fields.front() != "PARAMTYPE") continue;
    for (const CgatsTable::Row& row : table.rows) {
      if (row.cells.front() != kMaximum) continue;
      if (!limits.empty()) throw TextError(row.line, fmt::format("{} stands there twice", kMaximum));
      for (const CalCurve& curve : curves) {
        limits.push_back(Number(table, row, ColumnOf(table, representation + "_" + curve.colorant)));
      }
      CheckLimits(limits, curves, row.line);
    }
  }
  return limits;
}

std::vector<double> ReadLimits(const std::vector<CgatsTable>& tables, const std::string& representation,
                               const std::vector<CalCurve>& curves) {
  const std::string* const stated = tables.front().Find(kLimits);
  if (stated == nullptr) return ReadTargets(tables, representation, curves);
  std::vector<double> limits;
  std::istringstream text(*stated);
  text.imbue(std::locale::classic());
  double limit = 0;
  while (text >> limit) limits.push_back(limit);
  if (!text.eof()) throw TextError(tables.front().line, fmt::format("{} holds more than numbers", kLimits));
  CheckLimits(limits, curves, tables.front().line);
  return limits;
}

std::string Value(double value) { return fmt::format("{:.9g}", value); }

// As CGATS texts have it: "Sat Mar 14 12:05:09 2026".
std::string Now() {
  const auto now = static_cast<std::time_t>(PresentTime());
  const std::tm* const parts = std::localtime(&now);
  char text[32];
  return parts != nullptr ? std::string(text, std::strftime(text, sizeof text, "%a %b %d %H:%M:%S %Y", parts)) : "";
}

// Positions of the curves in the order of the form.
std::vector<std::size_t> OrderOf(const std::vector<CalCurve>& curves) {
  std::vector<std::size_t> order(curves.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return PositionOf(curves[a].colorant) < PositionOf(curves[b].colorant);
  });
  return order;
}

}  // namespace

CalFile ReadCal(std::string_view text) {
  const std::vector<CgatsTable> tables = ReadCgats(text);
  const CgatsTable& table = tables.front();
  const std::string representation = RepresentationOf(table);
  CalFile file;
  if (const std::string* const description = table.Find("DESCRIPTION")) file.description = *description;
  file.inputs = ReadInputs(table, ColumnOf(table, representation + "_I"));
  for (const std::string& colorant : ColorantsIn(representation)) {
    const std::size_t column = ColumnOf(table, representation + "_" + colorant);
    CalCurve& curve = file.curves.emplace_back(CalCurve{colorant, {}});
    for (const CgatsTable::Row& row : table.rows) curve.outputs.push_back(Number(table, row, column));
  }
  file.limits = ReadLimits(tables, representation, file.curves);
  return file;
}

std::string WriteCal(const CalFile& file) {
  const std::vector<std::size_t> order = OrderOf(file.curves);
  std::string representation;
  for (const std::size_t i : order) representation += file.curves[i].colorant;

  CgatsTable table;
  table.kind = kKind;
  table.keywords = {{"DESCRIPTOR", "Device Calibration Curves"},
                    {"ORIGINATOR", "nvxprofile"},
                    {"CREATED", Now()},
                    {"DEVICE_CLASS", "OUTPUT"},
                    {"COLOR_REP", representation}};
  if (!file.description.empty()) table.keywords.emplace_back("DESCRIPTION", file.description);
  if (!file.limits.empty()) {
    std::vector<std::string> limits;
    for (const std::size_t i : order) limits.push_back(Value(file.limits[i]));
    table.keywords.emplace_back("KEYWORD", kLimits);
    table.keywords.emplace_back(kLimits, fmt::format("{}", fmt::join(limits, " ")));
  }
  table.fields.push_back(representation + "_I");
  for (const std::size_t i : order) table.fields.push_back(representation + "_" + file.curves[i].colorant);
  for (std::size_t row = 0; row < file.inputs.size(); ++row) {
    CgatsTable::Row& cells = table.rows.emplace_back();
    cells.cells.push_back(Value(file.inputs[row]));
    for (const std::size_t i : order) cells.cells.push_back(Value(file.curves[i].outputs[row]));
  }
  return WriteCgats({table});
}

}  // namespace nvx::tool
