// How far two curves lie apart, in the units of the trade.
#pragma once

#include <nvxprofile/curve.h>

#include <string>

namespace nvx::tool {

struct CurveDifference {
  double percent = 0;  // of the range: the second curve less the first
  double input = 0;    // percent of the input at which that is
};

// The greatest difference. Curves of different sample counts and widths are compared as the lines that join their
// samples, over the same input. Curves without samples differ in nothing.
CurveDifference GreatestDifference(CCurveDataEntry& first, CCurveDataEntry& second);

// "+3.20 % at 45 %", and "0" for no difference.
std::string TextOf(const CurveDifference& difference);

}  // namespace nvx::tool
