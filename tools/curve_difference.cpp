#include "curve_difference.h"

#include "curve_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace nvx::tool {
namespace {

// A curve over inputs of 0 to 1.
class Line {
 public:
  explicit Line(CCurveDataEntry& curve) : samples_(SamplesOf(curve)), greatest_(curve.GetMaxBitValue()) {}

  std::size_t Count() const { return samples_.size(); }
  double InputOf(std::size_t index) const {
    return Count() > 1 ? static_cast<double>(index) / static_cast<double>(Count() - 1) : 0;
  }
  double At(double input) const {
    const double place = input * static_cast<double>(Count() - 1);
    const auto index = static_cast<std::size_t>(place);
    const double left = samples_[index];
    const double right = samples_[std::min(index + 1, Count() - 1)];
    return (left + (right - left) * (place - static_cast<double>(index))) / greatest_;
  }

 private:
  std::vector<std::uint32_t> samples_;
  double greatest_;
};

}  // namespace

CurveDifference GreatestDifference(CCurveDataEntry& first, CCurveDataEntry& second) {
  const Line a(first);
  const Line b(second);
  CurveDifference greatest;
  if (a.Count() == 0 || b.Count() == 0) return greatest;
  // Two broken lines lie farthest apart at a break of one of them.
  for (const Line* const line : {&a, &b}) {
    for (std::size_t i = 0; i < line->Count(); ++i) {
      const double input = line->InputOf(i);
      const double percent = 100 * (b.At(input) - a.At(input));
      if (std::abs(percent) > std::abs(greatest.percent)) greatest = {percent, 100 * input};
    }
  }
  return greatest;
}

std::string TextOf(const CurveDifference& difference) {
  if (difference.percent == 0) return "0";
  return fmt::format("{:+.2f} % at {:.0f} %", difference.percent, difference.input);
}

}  // namespace nvx::tool
