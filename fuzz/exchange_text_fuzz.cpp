// Curves that come as text: refused with the line, or curves that go out as they came in.
#include "cal_file.h"
#include "cgats.h"
#include "check.h"
#include "measured_curves.h"
#include "monotone_curve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

using nvx::fuzz::Check;
using nvx::tool::CalFile;

bool AreNear(double a, double b) { return std::abs(a - b) <= 1e-8; }

void CheckCal(std::string_view text) {
  const CalFile file = nvx::tool::ReadCal(text);
  const CalFile again = nvx::tool::ReadCal(nvx::tool::WriteCal(file));
  Check(again.curves.size() == file.curves.size() && again.limits.size() == file.limits.size());
  for (const nvx::tool::CalCurve& curve : file.curves) {
    const auto same = std::find_if(again.curves.begin(), again.curves.end(),
                                   [&](const auto& other) { return other.colorant == curve.colorant; });
    Check(same != again.curves.end());
    Check(std::equal(curve.outputs.begin(), curve.outputs.end(), same->outputs.begin(), same->outputs.end(), AreNear));
    const nvx::tool::MonotoneCurve smooth(file.inputs, curve.outputs);
    for (int i = 0; i <= 64; ++i) {
      const double value = smooth.At(i / 64.0);
      Check(value >= -1e-9 && value <= 1 + 1e-9);
    }
  }
}

template <class Reader>
void CheckThat(Reader reader, std::string_view text) {
  try {
    reader(text);
  } catch (const nvx::tool::TextError& error) {
    Check(std::string_view(error.what()).starts_with("line "));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  CheckThat(CheckCal, text);
  CheckThat([](std::string_view csv) { nvx::tool::ReadMeasuredCurves(csv, {}); }, text);
  return 0;
}
