#include "measured_curves.h"

#include "cgats.h"
#include "csv.h"
#include "curve_view.h"
#include "numbers.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

namespace nvx::tool {
namespace {

constexpr std::uint32_t kGreatestSample = 0xFFFF;

// Positions of the columns; those that may be missing are then empty.
class Columns {
 public:
  explicit Columns(const CsvRow& titles)
      : ink(Needed(titles, "ink")),
        index(Needed(titles, "index")),
        sample(Needed(titles, "sample")),
        entry(Position(titles, "entry")),
        extend(Position(titles, "extend")),
        name(Position(titles, "name")),
        count(titles.cells.size()) {}

  std::size_t ink;
  std::size_t index;
  std::size_t sample;
  std::optional<std::size_t> entry;
  std::optional<std::size_t> extend;
  std::optional<std::size_t> name;
  std::size_t count;

 private:
  static std::optional<std::size_t> Position(const CsvRow& titles, std::string_view title) {
    const auto found = std::find(titles.cells.begin(), titles.cells.end(), title);
    if (found == titles.cells.end()) return std::nullopt;
    return static_cast<std::size_t>(found - titles.cells.begin());
  }
  static std::size_t Needed(const CsvRow& titles, std::string_view title) {
    const std::optional<std::size_t> position = Position(titles, title);
    if (!position) throw TextError(titles.line, fmt::format("the column \"{}\" is missing", title));
    return *position;
  }
};

std::uint32_t Number(const CsvRow& row, std::size_t column, const char* what, std::uint32_t greatest) {
  const std::string& text = row.cells[column];
  const auto number = NumberOf<std::uint32_t>(text);
  if (!number || *number > greatest) {
    throw TextError(row.line,
                    fmt::format("the {} is \"{}\", and a whole number from 0 to {} is expected", what, text, greatest));
  }
  return *number;
}

class MeasuredCurves {
 public:
  MeasuredCurves(const Columns& columns, const std::set<std::uint32_t>& inks) : columns_(columns), inks_(inks) {}

  void Add(const CsvRow& row) {
    if (row.cells.size() != columns_.count) {
      throw TextError(row.line, fmt::format("{} fields stand where {} are named", row.cells.size(), columns_.count));
    }
    const std::uint32_t index = Number(row, columns_.index, "index", 0xFFFFFF);
    if (index == 0) StartCurve(row);
    if (curve_ == nullptr || index != curve_->GetCount() || Key(row) != key_) {
      throw TextError(row.line, "the samples of a curve stand together, by ascending index from 0");
    }
    curve_->Add(Number(row, columns_.sample, "sample", kGreatestSample));
  }

  NewCalibration Take() {
    if (curve_ == nullptr) throw TextError(1, "there are no curves");
    return std::move(calibration_);
  }

 private:
  std::string Key(const CsvRow& row) const {
    std::string key = row.cells[columns_.ink];
    if (columns_.entry) key += "," + row.cells[*columns_.entry];
    if (columns_.extend) key += "," + row.cells[*columns_.extend];
    return key;
  }

  void StartCurve(const CsvRow& row) {
    key_ = Key(row);
    const std::uint32_t ink = Number(row, columns_.ink, "ink", 255);
    if (!inks_.empty() && !inks_.contains(ink)) {
      throw TextError(row.line, fmt::format("the profile has no ink {}", ink));
    }
    CProfileCurveEntry& entry = EntryFor(row);
    CCurveData& set = *entry.GetCurveData();
    const std::uint32_t extendInfo = ExtendInfoOf(row, entry);
    if (set.FindInkIDEntryonSize(ink, extendInfo) != nullptr) {
      throw TextError(row.line, fmt::format("the ink {} has this curve already", ink));
    }
    auto curve = std::make_unique<CCurveDataEntry16>();
    curve->SetInkID(ink);
    curve->SetExtendInfo(extendInfo);
    curve->SetMax(kGreatestSample);
    if (columns_.name) curve->SetInkName(WideToAnsi(Utf8ToWide(row.cells[*columns_.name])).c_str());
    curve_ = curve.release();
    set.AddTail(curve_);
  }

  CProfileCurveEntry& EntryFor(const CsvRow& row) {
    std::string_view kind = columns_.entry ? std::string_view(row.cells[*columns_.entry]) : "linearization";
    if (kind.starts_with("calibration-")) kind.remove_prefix(std::string_view("calibration-").size());
    if (kind == "linearization") return Made(calibration_.linearization);
    if (kind == "ink-limit") return Made(calibration_.inkLimit);
    if (kind == "gray-balance") return Made(calibration_.grayBalance);
    throw TextError(row.line,
                    fmt::format("a calibration has linearization, ink-limit and gray-balance, and no \"{}\"", kind));
  }

  template <class Entry>
  static CProfileCurveEntry& Made(std::unique_ptr<Entry>& entry) {
    if (!entry) {
      entry = std::make_unique<Entry>();
      entry->GetCurveData()->SetUsedType(entry->GetUsedType());
    }
    return *entry;
  }

  std::uint32_t ExtendInfoOf(const CsvRow& row, const CProfileCurveEntry& entry) const {
    const std::uint32_t stated = columns_.extend ? Number(row, *columns_.extend, "extend", UINT32_MAX) : 0;
    if (entry.GetUsedType() != CProfileDataEntry::kCalibrationInklimit) return stated;
    if (stated != 0 && stated != kInkLimitKey) {
      throw TextError(row.line, fmt::format("an ink limit of a calibration has the extend {}", kInkLimitKey));
    }
    return kInkLimitKey;
  }

  const Columns& columns_;
  const std::set<std::uint32_t>& inks_;
  NewCalibration calibration_;
  CCurveDataEntry* curve_ = nullptr;  // the one that is being read
  std::string key_;
};

}  // namespace

NewCalibration ReadMeasuredCurves(std::string_view text, const std::set<std::uint32_t>& inks) {
  const std::vector<CsvRow> rows = ReadCsv(text);
  if (rows.empty()) throw TextError(1, "the text is empty");
  const Columns columns(rows.front());
  MeasuredCurves curves(columns, inks);
  for (std::size_t i = 1; i < rows.size(); ++i) curves.Add(rows[i]);
  return curves.Take();
}

}  // namespace nvx::tool
