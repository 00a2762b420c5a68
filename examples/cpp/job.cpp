// Reads what a print job asks a profile for. Arguments: a profile.
#include <nvxprofile/profile.h>

#include <cstdio>

namespace {

std::size_t CountOf(const std::optional<nvx::Samples>& samples) {
  return samples ? std::visit([](auto values) { return values.size(); }, *samples) : 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  nvx::ProfileError why;
  const auto profile = nvx::Profile::TryOpen(argv[1], &why);
  if (!profile) {
    std::fprintf(stderr, "%s\n", why.what());
    return 1;
  }
  const nvx::ProfileInfo info = profile->Info();
  std::printf("%s: %s, %u x %u dpi\n", info.fileName.c_str(), info.mediaName.c_str(), info.scanResolution,
              info.feedResolution);
  for (const nvx::Curve& curve : profile->Curves(nvx::CurveKind::kLinearization)) {
    std::printf("ink %d: linearization %zu, limit %zu, gray balance %zu, light ink %zu samples\n", curve.ink,
                CountOf(curve.samples), CountOf(profile->InkLimit(curve.ink)), CountOf(profile->GrayBalance(curve.ink)),
                CountOf(profile->LightInk(curve.ink)));
  }
  if (const auto table = profile->Table()) {
    std::printf("separation: %zu to %zu channels, %u grid points\n", table->inputs.size(), table->outputs.size(),
                table->gridPoints);
  }
  if (const auto icc = profile->IccProfile()) std::printf("ICC profile: %zu bytes\n", icc->size());
  if (const auto heater = profile->Media(nvx::MediaSetting::kHeater)) {
    for (const int celsius : *heater) std::printf("heater: %d\n", celsius);
  }
  if (const auto mask = profile->PackedMask({.pass = 4, .specialColorset = 0, .printMethod = 0, .layerColors = {}})) {
    std::printf("mask for 4 passes: %zu bytes\n", mask->size());
  }
  if (const auto lamp = profile->Lamp({1, 0, 0, 0})) std::printf("lamp: %zu splits\n", lamp->splits.size());
  if (const auto newest = profile->NewestCalibration()) {
    const auto curve = profile->CalibrationCurve(newest->code, nvx::CalibrationCurves::kLinearization, 1);
    std::printf("newest calibration: %s, %zu samples for ink 1\n", newest->name.c_str(), CountOf(curve));
  }
}
