#include "core/payload.h"

#include <nvxprofile/calibration.h>

#include <algorithm>

namespace {

// True if containers with children stand below the deepest level. The walk itself goes no deeper.
bool NestsTooDeep(const CContainerData& data, std::uint32_t level) {
  return std::any_of(data.Children().begin(), data.Children().end(), [=](CProfileDataEntry* child) {
    auto* const container = dynamic_cast<CContainerEntry*>(child);
    if (container == nullptr) return false;
    const CContainerData& below = container->GetChildData();
    return level < CContainerEntry::kMaxLevels ? NestsTooDeep(below, level + 1) : !below.Children().IsEmpty();
  });
}

}  // namespace

CContainerData::~CContainerData() { children_.Clear(nvx::Ownership::kOwned); }

void CContainerData::DeleteContents() { children_.Clear(nvx::Ownership::kOwned); }

CProfileDataEntry* CContainerData::Find(std::uint32_t usedType, std::uint32_t optionInfo) const {
  const auto found = std::find_if(children_.begin(), children_.end(), [=](CProfileDataEntry* child) {
    return child->GetUsedType() == usedType && child->GetOptionInfo() == optionInfo;
  });
  return found != children_.end() ? *found : nullptr;
}

void CContainerData::Insert(std::size_t index, CProfileDataEntry* entry) {
  if (auto* const container = dynamic_cast<CContainerEntry*>(entry)) container->GetChildData().SetLevel(level_ + 1);
  children_.Insert(index, entry, nvx::Ownership::kOwned);
}

bool CContainerData::SetProfileDataEntry(CProfileDataEntry* entry) {
  if (entry == nullptr) return false;
  if (children_.Contains(entry) || Find(entry->GetUsedType(), entry->GetOptionInfo()) != nullptr) return true;
  Insert(children_.Count(), entry);
  return true;
}

tag_ContainerData* CContainerEntry::GetContainerData() { return data_.GetContainerData(); }

int CContainerEntry::GetEntryCount() const { return static_cast<int>(data_.Children().Count()); }

CContainerEntry::CContainerEntry() {
  SetFormatType(kFormatContainer);
  SetDisplay(false);
}

CContainerEntry::CContainerEntry(UsedType usedType, bool display, Removal removal)
    : CProfileDataEntry(usedType, kFormatContainer, display), removable_(removal == Removal::kAllowed) {}

CContainerEntry::~CContainerEntry() = default;

void CContainerEntry::DeleteContents() { DeleteBuffer(); }

void CContainerEntry::SetContainerData(const tag_ContainerData* description) {
  if (description != nullptr) *data_.GetContainerData() = *description;
}

CProfileDataEntry* CContainerEntry::GetProfileDataEntry(int index) {
  return index >= 0 ? data_.Children().At(static_cast<std::size_t>(index)) : nullptr;
}

CProfileDataEntry* CContainerEntry::GetProfileDataEntry(std::uint32_t usedType, std::uint32_t optionInfo) {
  return data_.Find(usedType, optionInfo);
}

void CContainerEntry::InsertProfileDataEntry(int index, CProfileDataEntry* entry) {
  if (entry == nullptr || data_.Children().Contains(entry)) return;
  data_.Insert(static_cast<std::size_t>(std::max(index, 0)), entry);
}

bool CContainerEntry::SetProfileDataEntry(CProfileDataEntry* entry) { return data_.SetProfileDataEntry(entry); }

CProfileDataEntry* CContainerEntry::RemoveProfileDataEntry(int index) {
  return removable_ && index >= 0 ? data_.TakeAt(static_cast<std::size_t>(index)) : nullptr;
}

CProfileDataEntry* CContainerEntry::RemoveProfileDataEntry(std::uint32_t usedType, std::uint32_t optionInfo) {
  const auto& children = data_.Children();
  const auto found = std::find(children.begin(), children.end(), data_.Find(usedType, optionInfo));
  return RemoveProfileDataEntry(found != children.end() ? static_cast<int>(found - children.begin()) : -1);
}

bool CContainerEntry::ParseChildren(std::uint32_t& optionValue) {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) {
    if (data_.GetLevel() > kMaxLevels) return nvx::Refuse(stream, "calibration container: nests too deep");
    data_.DeleteContents();
    CProfileFileCalibration form;
    form.SetOptionValue(optionValue);
    const bool loaded = form.LoadData(stream, &data_, false);
    optionValue = form.GetOptionValue();
    return loaded;
  });
}

bool CContainerEntry::JoinBuffers(std::uint32_t optionValue) {
  CProfileFileCalibration form;
  form.SetOptionValue(optionValue);
  return nvx::RebuildBuffer(*this, CProfileFileCalibration::GetSavedSize(data_), nvx::BufferLength::kExact,
                            [&](CNvxFile& stream) { return form.SaveData(stream, &data_); });
}

bool CContainerEntry::RebuildForm(std::uint32_t optionValue) {
  // What was too deep to be parsed keeps its bytes.
  if (data_.GetLevel() > kMaxLevels) return data_.Children().IsEmpty();
  if (NestsTooDeep(data_, data_.GetLevel())) return false;
  for (CProfileDataEntry* const child : data_.Children()) child->DataToBuffer();
  return JoinBuffers(optionValue);
}

bool CContainerEntry::BufferToData() {
  std::uint32_t unused = 0;
  return ParseChildren(unused);
}

bool CContainerEntry::DataToBuffer() { return RebuildForm(0); }
