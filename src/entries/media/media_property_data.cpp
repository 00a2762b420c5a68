#include <nvxprofile/media_property.h>

#include <algorithm>
#include <memory>

namespace {

struct BlockKind {
  std::uint32_t usedType;
  std::int32_t parameters;
  bool takesCount;  // the number of parameters may be another
};

constexpr BlockKind kBlockKinds[] = {
    {nvx::kMediaCorrect, 1, false},      {nvx::kMediaHeater, 2, true},         {nvx::kMediaWave, 1, false},
    {nvx::kMediaFeedSpeed, 1, false},    {nvx::kMediaWaveForm, 1, false},      {nvx::kMediaDotSize, 3, true},
    {nvx::kMediaPassDensity, 16, false}, {nvx::kMediaPassMask, 8, false},      {nvx::kMediaUvMode, 1, true},
    {nvx::kMediaTopBlower, 1, false},    {nvx::kMediaFeedDirection, 1, false},
};

}  // namespace

CMediaPropertyDataEntry::~CMediaPropertyDataEntry() = default;

CMediaPropertyDataEntry* CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(std::uint32_t usedType,
                                                                               std::uint32_t parameterCount) {
  auto* const entry = new CMediaPropertyDataEntry;
  entry->SetUsedType(usedType, parameterCount);
  return entry;
}

void CMediaPropertyDataEntry::SetUsedType(std::uint32_t usedType, std::uint32_t parameterCount) {
  usedType_ = usedType;
  parameterMax_ = 0;
  for (const BlockKind& kind : kBlockKinds) {
    if (kind.usedType != usedType) continue;
    const bool takesCount = kind.takesCount && parameterCount != 0;
    parameterMax_ = takesCount ? static_cast<std::int32_t>(std::min<std::uint32_t>(parameterCount, kParameterRoom))
                               : kind.parameters;
  }
}

std::int32_t CMediaPropertyDataEntry::GetParameter(std::int32_t index) const {
  return index >= 0 && index < kParameterRoom ? parameters_[static_cast<std::size_t>(index)] : 0;
}

bool CMediaPropertyDataEntry::SetParameter(std::int32_t index, std::int32_t value) {
  if (index < 0 || index >= parameterMax_) return false;
  parameters_[static_cast<std::size_t>(index)] = value;
  return true;
}

CMediaPropertyData::~CMediaPropertyData() = default;

bool CMediaPropertyData::AddTail(CMediaPropertyDataEntry* entry) {
  if (entry != nullptr) entries_.Append(std::unique_ptr<CMediaPropertyDataEntry>(entry));
  return entry != nullptr;
}

void CMediaPropertyData::DeleteMediaProperty() { entries_.Clear(); }

CMediaPropertyDataEntry* CMediaPropertyData::Find(std::uint32_t usedType) {
  return entries_.Find([usedType](const CMediaPropertyDataEntry& entry) { return entry.GetUsedType() == usedType; });
}
