// Calibration histories: what loads must save, load again as the same bytes, and import without loss.
#include "core/payload.h"
#include "entry_round_trip.h"
#include "forms.h"

#include <nvxprofile/calibration_history.h>

#include <cstring>
#include <vector>

namespace {

using nvx::fuzz::Check;

std::vector<std::uint8_t> Saved(CCalibrationHistoryEntry& history) {
  Check(history.DataToBuffer());
  return {history.GetRefBuffer(), history.GetRefBuffer() + history.GetSize()};
}

std::size_t Calibrations(CCalibrationHistoryEntry& history) {
  std::size_t count = 0;
  for (int i = 0; i < history.GetEntryCount(); ++i) {
    count += history.GetProfileDataEntry(i)->GetUsedType() == CProfileDataEntry::kCalibrationContainer ? 1 : 0;
  }
  return count;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::CalibrationForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CCalibrationHistoryEntry history;
  std::uint8_t* const buffer = history.GetBuffer(static_cast<std::uint32_t>(size));
  if (size != 0) std::memcpy(buffer, data, size);
  if (!history.BufferToData() || nvx::fuzz::IsReadInPart(history, data, size)) return 0;

  const std::vector<std::uint8_t> saved = Saved(history);
  Check(history.BufferToData());
  Check(Saved(history) == saved);

  CCalibrationHistoryEntry grown;
  nvx::AddCalibration(grown, {});
  const auto imported = nvx::ImportCalibrations(grown, history);
  Check(imported && imported->size() == Calibrations(history));
  Check(Saved(history) == saved);
  Saved(grown);
  Check(grown.BufferToData());
  Check(Calibrations(grown) == Calibrations(history) + 1);
  return 0;
}
