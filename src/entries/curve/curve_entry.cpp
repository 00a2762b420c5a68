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
CurvesByKey IndexCurves(CCurveData& set, KeyOf keyOf) {
  CurvesByKey curves;
  bool more = set.GetHeadPosition();
  while (more) {
    CCurveDataEntry* const curve = set.GetNext(more);
    curves.emplace(keyOf(*curve), curve);
  }
  return curves;
}

template <class KeyOf>
bool ImportCurves(CProfileCurveEntry& target, CProfileDataEntry* source, KeyOf keyOf) {
  auto* const curves = dynamic_cast<CProfileCurveEntry*>(source);
  if (curves == nullptr) return false;
  const CurvesByKey found = IndexCurves(*curves->GetCurveData(), keyOf);
  CCurveData& set = *target.GetCurveData();
  bool more = !found.empty() && set.GetHeadPosition();
  while (more) {
    CCurveDataEntry* const curve = set.GetNext(more);
    const auto partner = found.find(keyOf(*curve));
    if (partner == found.end()) return false;
    partner->second->CopyData(curve);
  }
  return target.SetLabelString(source->GetLabelString());
}

}  // namespace

CProfileCurveEntry::~CProfileCurveEntry() = default;

CDataObject* CProfileCurveEntry::GetFormatData() { return &curves_; }

bool CProfileCurveEntry::DoImport(CProfileDataEntry* source) { return ImportCurves(*this, source, InkAndExtendKey); }
bool CSeparateLightEntry::DoImport(CProfileDataEntry* source) { return ImportCurves(*this, source, InkKey); }

bool CProfileCurveEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [this](CNvxMemFile& file) { return nvx::ReloadCurveSet(file, curves_); });
}

bool CProfileCurveEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::CurveSetSize(curves_), nvx::BufferLength::kExact,
                            [this](CNvxFile& file) { return CCurveFile().SaveFile(file, &curves_); });
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
