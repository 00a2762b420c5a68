// A profile of any format through nvx::Profile: whoever opens it may ask everything, write every entry back and save;
// what was saved is what was opened.
#include "check.h"
#include "forms.h"

#include <nvxprofile/profile.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <vector>

namespace {

using nvx::fuzz::Check;
using Bytes = std::vector<std::uint8_t>;

void AskEverything(const nvx::Profile& profile) {
  using namespace nvx;
  profile.Info();
  for (const EntryType& type : EntryTypes()) {
    if (type.formatType == CProfileDataEntry::kFormatCurve) {
      for (const Curve& curve : profile.Curves(static_cast<CurveKind>(type.usedType))) {
        Check(profile.Curves(static_cast<CurveKind>(type.usedType)).size() != 0);
        profile.MergedGrayBalance(curve.ink);
        profile.Linearization(curve.ink);
        profile.VariableInkLimit(curve.ink, curve.extendInfo);
      }
    }
  }
  profile.Table();
  for (std::uint32_t setting = 0; setting < 13; ++setting) profile.Media(static_cast<MediaSetting>(setting));
  profile.MaskBlocks();
  if (const auto masks = profile.Masks()) {
    for (const MaskRule& rule : masks->rules) profile.PackedMask(rule.condition);
  }
  profile.Lamp({1, 2, 3, 4});
  profile.LampPatterns();
  profile.SpecialColors();
  profile.RecommendedLevel({1, 2}, std::vector<std::int32_t>{3, 4});
  profile.VariableDotCurve({1, 2}, 3, 4);
  for (const Calibration& calibration : profile.Calibrations()) {
    profile.CalibrationCurve(calibration.code, CalibrationCurves::kInkLimit, 1);
    profile.CurvesOfCalibration(calibration.code, CalibrationCurves::kLinearization);
  }
}

// An ICC profile gets a new description when it is saved, and tags are padded.
std::map<nvx::EntryKind, Bytes> EntriesOf(const nvx::Profile& profile) {
  std::map<nvx::EntryKind, Bytes> entries;
  for (const nvx::Entry& entry : profile.Entries()) {
    Bytes bytes(entry.bytes.begin(), entry.bytes.end());
    bytes.resize((bytes.size() + 3) / 4 * 4);
    if (entry.kind != nvx::EntryKind::kIcc && !bytes.empty()) entries[entry.kind] = std::move(bytes);
  }
  return entries;
}

// What does not refuse an edit leaves the rest alone.
void Edit(nvx::Profile& profile) {
  for (const nvx::Entry& entry : profile.Entries()) {
    if (!entry.isUnderstood || entry.bytes.empty()) continue;
    const Bytes bytes(entry.bytes.begin(), entry.bytes.end());
    const auto before = EntriesOf(profile);
    try {
      profile.SetEntryBytes(entry.kind, bytes);
    } catch (const nvx::ProfileError&) {
    }
    Check(EntriesOf(profile) == before);
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::QpfForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  try {
    nvx::Profile profile = nvx::Profile::FromBytes({bytes, size}, "input");
    AskEverything(profile);
    const auto entries = EntriesOf(profile);
    Edit(profile);
    const Bytes saved = profile.ToBytes("a.icc");
    const nvx::Profile again = nvx::Profile::FromBytes(saved, "input");
    Check(again.IsWhole());
    Check(EntriesOf(again) == entries);
  } catch (const nvx::ProfileError& error) {
    Check(*error.what() != 0);
  }
  return 0;
}
