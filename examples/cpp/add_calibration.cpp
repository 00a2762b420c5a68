// Appends a calibration to a profile: the linearization of the profile, ink by ink, under a new name. Arguments: a
// profile, the name.
#include <nvxprofile/profile.h>

#include <cstdio>

int main(int argc, char** argv) try {
  if (argc != 3) return 2;
  auto profile = nvx::Profile::Open(argv[1]);
  nvx::CalibrationData calibration;
  calibration.name = argv[2];
  calibration.time = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  calibration.linearization = profile.Curves(nvx::CurveKind::kLinearization);
  const std::uint32_t code = profile.AddCalibration(calibration);
  profile.Save(argv[1]);
  std::printf("calibration %u of %zu\n", code, profile.Calibrations().size());
} catch (const nvx::ProfileError& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
