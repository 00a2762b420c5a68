// Calibration curves of an output device as CGATS text, known by the extension .cal.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

struct CalCurve {
  std::string colorant;         // "C", "k", "2m", ...
  std::vector<double> outputs;  // 0 to 1, one for each input
};

struct CalFile {
  std::string description;
  std::vector<double> inputs;  // ascending from 0 to 1
  std::vector<CalCurve> curves;
  std::vector<double> limits;  // greatest amount of each ink, above 0 and up to 1; empty if the file states none
};

// Throws TextError for a text that is no calibration of an output device, and for one with a value out of range.
CalFile ReadCal(std::string_view text);

// The text, with the curves in the order of the form.
std::string WriteCal(const CalFile& file);

}  // namespace nvx::tool
