// The entries that hold curve sets.
#include "core/payload.h"
#include "entries/curve/curve_form.h"

#include <nvxprofile/curve_entry.h>

#include <unordered_map>

namespace {

using CurvesByKey = std::unordered_map<std::uint64_t, CCurveDataEntry*>;

std::uint64_t InkKey(const CCurveDataEntry& curve) { return curve.GetInkID(); }

std::uint64_t InkAndExtendKey(const CCurveDataEntry& curve) {
  return std::uint64_t{curve.GetInkID()} << 32 | curve.GetExtendInfo();
}

// Of curves with one key the first counts.
template <class KeyOf>
CurvesByKey IndexCurves(const CCurveData& set, KeyOf keyOf) {
  CurvesByKey curves;
  for (CCurveDataEntry* const curve : set.Curves()) curves.emplace(keyOf(*curve), curve);
  return curves;
}

template <class KeyOf>
bool ImportCurves(CProfileCurveEntry& target, CProfileDataEntry* source, KeyOf keyOf) {
  const auto* const curves = dynamic_cast<const CProfileCurveEntry*>(source);
  if (curves == nullptr || !nvx::PayloadKeeper::SaysAll(*source) || !nvx::PayloadKeeper::SaysAll(target)) return false;
  const CurvesByKey found = IndexCurves(*curves->GetCurveData(), keyOf);
  if (!found.empty()) {
    for (CCurveDataEntry* const curve : target.GetCurveData()->Curves()) {
      const auto partner = found.find(keyOf(*curve));
      if (partner == found.end()) return false;
      partner->second->CopyData(curve);
    }
  }
  return target.SetLabelString(source->GetLabelString());
}

}  // namespace

CProfileCurveEntry::~CProfileCurveEntry() = default;

CDataObject* CProfileCurveEntry::GetFormatData() { return GetCurveData(); }
CProfileCurveEntry* CProfileCurveEntry::AsCurveEntry() { return this; }

bool CProfileCurveEntry::DoImport(CProfileDataEntry* source) { return ImportCurves(*this, source, InkAndExtendKey); }
bool CSeparateLightEntry::DoImport(CProfileDataEntry* source) { return ImportCurves(*this, source, InkKey); }

bool CProfileCurveEntry::BufferToData() {
  const bool parsed = nvx::ParseBuffer(*this, [this](CNvxMemFile& file) { return nvx::ReloadCurveSet(file, curves_); });
  if (takes16Bit_ && GetPayloadState() == nvx::PayloadState::kPart) MakeCurves16Bit();
  return parsed;
}

bool CProfileCurveEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kExact,
                            [this](CNvxFile& file) { return CCurveFile().SaveFile(file, &curves_); });
}

bool CProfileCurveEntry::TakeSamplesAs16Bit() {
  takes16Bit_ = true;
  MakeCurves16Bit();
  return GetPayloadState() == nvx::PayloadState::kPart || DataToBuffer();
}

void CProfileCurveEntry::MakeCurves16Bit() {
  curves_.SetCurveDataSizeType(CCurveDataEntry::kSamples16);
  for (CCurveDataEntry* const curve : curves_.Curves()) curve->SetDataType(CCurveDataEntry::kSamples16);
}

CGrayBalanceEntry::~CGrayBalanceEntry() = default;

std::uint16_t CGrayBalanceEntry::GetCoordCol(std::uint16_t index) {
  return index < coordinates_.size() ? static_cast<std::uint16_t>(coordinates_[index]) : std::uint16_t{0};
}

std::uint16_t CGrayBalanceEntry::GetCoordRow(std::uint16_t index) {
  return index < coordinates_.size() ? static_cast<std::uint16_t>(coordinates_[index] >> 16) : std::uint16_t{0};
}

void CGrayBalanceEntry::SetCoord(std::uint16_t index, std::uint16_t row, std::uint16_t col) {
  if (index < coordinates_.size()) coordinates_[index] = std::uint32_t{row} << 16 | std::uint32_t{col};
}

bool CGrayBalanceEntry::IsArrayEnpty() { return coordinates_.empty(); }
