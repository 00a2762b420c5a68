// A smooth curve through points.
#pragma once

#include <vector>

namespace nvx::tool {

// Cubic interpolation that never leaves the span of two neighbouring points (Fritsch and Carlson, 1980): where the
// points rise the curve rises, and where they stay level it stays level.
class MonotoneCurve {
 public:
  // Two points at least, with x ascending.
  MonotoneCurve(std::vector<double> x, std::vector<double> y);

  // The value at x; that of the first or last point outside of them.
  double At(double x) const;

 private:
  std::vector<double> x_;
  std::vector<double> y_;
  std::vector<double> slopes_;  // at the points
};

}  // namespace nvx::tool
