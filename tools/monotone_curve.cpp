#include "monotone_curve.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nvx::tool {

MonotoneCurve::MonotoneCurve(std::vector<double> x, std::vector<double> y)
    : x_(std::move(x)), y_(std::move(y)), slopes_(x_.size()) {
  const std::size_t last = x_.size() - 1;
  std::vector<double> secants;
  for (std::size_t i = 0; i < last; ++i) secants.push_back((y_[i + 1] - y_[i]) / (x_[i + 1] - x_[i]));
  slopes_[0] = secants[0];
  slopes_[last] = secants[last - 1];
  for (std::size_t i = 1; i < last; ++i) {
    slopes_[i] = secants[i - 1] * secants[i] > 0 ? (secants[i - 1] + secants[i]) / 2 : 0;
  }
  // Slopes within a circle of radius 3 around the secant keep each piece monotone.
  for (std::size_t i = 0; i < last; ++i) {
    if (secants[i] == 0) {
      slopes_[i] = slopes_[i + 1] = 0;
      continue;
    }
    const double length = std::hypot(slopes_[i] / secants[i], slopes_[i + 1] / secants[i]);
    if (length <= 3) continue;
    slopes_[i] *= 3 / length;
    slopes_[i + 1] *= 3 / length;
  }
}

double MonotoneCurve::At(double x) const {
  if (x <= x_.front()) return y_.front();
  if (x >= x_.back()) return y_.back();
  const std::size_t i = static_cast<std::size_t>(std::upper_bound(x_.begin(), x_.end(), x) - x_.begin()) - 1;
  const double width = x_[i + 1] - x_[i];
  const double t = (x - x_[i]) / width;
  const double u = 1 - t;
  return y_[i] * (1 + 2 * t) * u * u + y_[i + 1] * (3 - 2 * t) * t * t +
         width * t * u * (slopes_[i] * u - slopes_[i + 1] * t);
}

}  // namespace nvx::tool
