// Printer profiles of the current generation. The one of the usual size has some 3.3 MB: 11 curve entries of 16 inks,
// a table of grid 33, a replacement profile and 2 MB of print masks. The large one, some 20 MB, has six times the masks
// and ICC profiles, and a history of 150 calibrations. Benchmarks and memory tests share them.
#pragma once

#include <nvxprofile/calibration_history.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace nvx::test {

// An ICC profile of one tag with `size` bytes, all numbers most significant byte first.
inline std::vector<std::uint8_t> SampleIccProfile(std::uint32_t size) {
  constexpr std::uint32_t kFrontSize = 144;
  std::vector<std::uint8_t> bytes(kFrontSize + size, 0x33);
  std::fill_n(bytes.begin(), kFrontSize, std::uint8_t{0});
  const auto store = [&](std::size_t offset, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
      bytes[offset + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
  };
  store(0, kFrontSize + size);
  std::memcpy(bytes.data() + 12, "prtrCMYKLab ", 12);
  std::memcpy(bytes.data() + 36, "acsp", 4);
  store(128, 1);
  std::memcpy(bytes.data() + 132, "A2B0", 4);
  store(136, kFrontSize);
  store(140, size);
  return bytes;
}

inline void AddIccProfile(CProfileData& data, CProfileDataEntry::UsedType usedType, std::uint32_t route,
                          std::uint32_t size) {
  CProfileDataEntry* const entry = CProfileDataEntry::CreateDataEntry(usedType);
  const auto bytes = SampleIccProfile(size);
  std::memcpy(entry->GetBuffer(static_cast<std::uint32_t>(bytes.size())), bytes.data(), bytes.size());
  data.SetProfileDataEntry(entry, route);
}

inline std::unique_ptr<CCalibrationHistoryEntry> SampleHistory(int calibrations) {
  const auto filled = [](auto entry) {
    for (std::uint32_t ink = 0; ink < 8; ++ink) {
      auto* const curve = new CCurveDataEntry16;
      curve->SetInkID(ink);
      curve->SetExtendInfo(entry->GetUsedType() == CProfileDataEntry::kCalibrationInklimit ? 12 : 0);
      for (std::uint32_t i = 0; i < 256; ++i) curve->Add(i * 257);
      entry->GetCurveData()->AddTail(curve);
    }
    return entry;
  };
  auto history = std::make_unique<CCalibrationHistoryEntry>();
  for (int i = 0; i < calibrations; ++i) {
    NewCalibration calibration;
    calibration.name = u"calibration";
    calibration.time = 1 + i;
    calibration.inkLimit = filled(std::make_unique<CCalibrationInklimitEntry>());
    calibration.linearization = filled(std::make_unique<CCalibrationLinearizationEntry>());
    calibration.grayBalance = filled(std::make_unique<CCalibrationGrayBalanceEntry>());
    AddCalibration(*history, std::move(calibration));
  }
  history->DataToBuffer();
  return history;
}

enum class SampleSize : std::uint32_t { kUsual = 1, kLarge = 6 };

// A save of it takes the flags kSaveReplaceProfile and kSaveCalibration.
inline void FillSampleProfile(CProfileData& data, SampleSize size = SampleSize::kUsual) {
  const auto scale = static_cast<std::uint32_t>(size);
  for (const std::uint32_t usedType : {2u, 3u, 4u, 5u, 6u, 7u, 9u, 17u, 23u, 24u, 25u}) {
    auto* const entry = static_cast<CProfileCurveEntry*>(
        CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
    for (std::uint32_t ink = 0; ink < 16; ++ink) {
      auto* const curve = new CCurveDataEntry16;
      curve->SetInkID(ink);
      for (std::uint32_t i = 0; i < 256; ++i) curve->Add(i * 257);
      entry->GetCurveData()->AddTail(curve);
    }
    entry->DataToBuffer();
    data.SetProfileDataEntry(entry, kRouteMain);
  }
  auto chroma = std::make_unique<CSeparateChromaEntry>();
  chroma->GetLutData()->Initialize(8, 33);
  const SampleRun run = chroma->GetLutData()->GetRun(0);
  std::memset(run.samples, 0x44, run.size);
  chroma->DataToBuffer();
  data.SetProfileDataEntry(chroma.release(), kRouteMain);

  auto masks = std::make_unique<CMaskDownloadIncludePatternEntry>();
  const std::vector<std::uint8_t> pattern(65536, 0x55);
  for (std::uint32_t id = 0; id < 32 * scale; ++id) {
    CMaskPatternDataEntry* const mask = CMaskPatternDataEntry::CreateEntry();
    mask->SetMaskPatternID(id);
    mask->SetMaskPatternBuffer(pattern.data(), static_cast<std::uint32_t>(pattern.size()));
    masks->GetMaskPatternData()->Add(mask);
  }
  masks->DataToBuffer();
  data.SetProfileDataEntry(masks.release(), kRouteMaskDownload);
  data.GetProfileInfo()->HasMaskDownload = true;

  AddIccProfile(data, CProfileDataEntry::kIcm, kRouteMain, 190'000 * scale);
  AddIccProfile(data, CProfileDataEntry::kReplaceProfile, kRouteReplaceProfile, 560'000 * scale);
  if (size == SampleSize::kLarge) data.SetProfileDataEntry(SampleHistory(150).release(), kRouteCalibration);
}

}  // namespace nvx::test
