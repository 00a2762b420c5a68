// Makes a printer profile from nothing but an ICC profile. Arguments: the ICC profile, the file to write.
#include <nvxprofile/profile.h>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

std::vector<std::uint8_t> ReadFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) return 2;
  auto profile = nvx::Profile::Create(ReadFile(argv[1]));

  nvx::ProfileInfo info = profile.Info();
  info.modelCode = "1234";
  info.defaultMediaName = "Glossy film";
  info.mediaNames = {{9, "Glossy film"}, {17, "光沢フィルム"}};
  info.scanResolution = info.feedResolution = 720;
  info.dotType = 1;
  profile.SetInfo(info);

  std::vector<std::uint16_t> ramp(256);
  for (std::size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<std::uint16_t>(i * 257);
  nvx::Curve curve;
  curve.samples = nvx::Samples16(ramp);
  curve.max = 65535;
  for (const char* const name : {"Cyan", "Magenta", "Yellow", "Black"}) {
    ++curve.ink;
    curve.name = name;
    profile.SetCurve(nvx::CurveKind::kLinearization, curve);
    profile.SetCurve(nvx::CurveKind::kInkLimit, curve);
  }
  profile.SetMedia(nvx::MediaSetting::kHeater, std::array{40, 45, 40});
  profile.SetLampPatterns(std::array{
      nvx::LampPattern{{nvx::Condition::Is(1), nvx::Condition::Any(), nvx::Condition::Any(), nvx::Condition::Any()},
                       {{0, 0}, {{100, 80}, {60, 40}}, {}}}});
  profile.SetMasks({.rules = {{{.pass = 4, .specialColorset = 0, .printMethod = 0, .layerColors = {}}, {1, 2, 3}, {7}}},
                    .patterns = {{7, {0xAA, 0x55}}}});
  profile.Save(argv[2]);
} catch (const nvx::ProfileError& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
