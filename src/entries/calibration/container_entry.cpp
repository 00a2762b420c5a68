#include "core/payload.h"

#include <nvxprofile/calibration.h>

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

namespace {

// True if a container below the deepest level has children. The walk itself goes no deeper.
bool NestsTooDeep(const CContainerData& data) {
  if (data.Children().IsEmpty()) return false;
  return data.GetLevel() > CContainerEntry::kMaxLevels || data.Children().First([](CProfileDataEntry& child) {
    const CContainerEntry* const container = child.AsContainer();
    return container != nullptr && NestsTooDeep(container->GetChildData());
  }) != nullptr;
}

// True if a reader of the form would make one child of two.
bool HoldsTwins(const CContainerData& data) {
  std::set<std::pair<std::uint32_t, std::uint32_t>> seen;
  return data.Children().First([&](CProfileDataEntry& child) {
    return !seen.emplace(child.GetUsedType(), child.GetOptionInfo()).second;
  }) != nullptr;
}

}  // namespace

CContainerData::~CContainerData() = default;

void CContainerData::DeleteContents() { children_.Clear(); }

CProfileDataEntry* CContainerData::Find(std::uint32_t usedType, std::uint32_t optionInfo) const {
  return children_.First(
      [=](CProfileDataEntry& child) { return child.GetUsedType() == usedType && child.GetOptionInfo() == optionInfo; });
}

void CContainerData::SetLevel(CProfileDataEntry& entry, std::uint32_t level) {
  CContainerEntry* const container = entry.AsContainer();
  if (container == nullptr) return;
  container->data_.level_ = level;
  for (CProfileDataEntry* const child : container->data_.children_) SetLevel(*child, level + 1);
}

void CContainerData::Insert(std::size_t index, std::unique_ptr<CProfileDataEntry> entry) {
  SetLevelOfChild(*entry);
  children_.Insert(index, std::move(entry));
}

std::unique_ptr<CProfileDataEntry> CContainerData::TakeAt(std::size_t index) {
  std::unique_ptr<CProfileDataEntry> entry = children_.TakeAt(index);
  if (entry) SetLevel(*entry, 1);
  return entry;
}

std::unique_ptr<CProfileDataEntry> CContainerData::Add(std::unique_ptr<CProfileDataEntry> entry) {
  if (!entry || Find(entry->GetUsedType(), entry->GetOptionInfo()) != nullptr) return entry;
  Insert(children_.Count(), std::move(entry));
  return nullptr;
}

bool CContainerData::SetProfileDataEntry(CProfileDataEntry* entry) {
  if (entry == nullptr || children_.Contains(entry)) return entry != nullptr;
  static_cast<void>(Add(std::unique_ptr<CProfileDataEntry>(entry)).release());
  return true;
}

CContainerEntry* CContainerEntry::AsContainer() { return this; }

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

// Who is given nothing changes nothing.
CProfileDataEntry* CContainerEntry::HandOut(CProfileDataEntry* child) {
  if (child != nullptr) OpenPayload();
  return child;
}

CProfileDataEntry* CContainerEntry::GetProfileDataEntry(int index) {
  return HandOut(index >= 0 ? data_.Children().At(static_cast<std::size_t>(index)) : nullptr);
}

CProfileDataEntry* CContainerEntry::GetProfileDataEntry(std::uint32_t usedType, std::uint32_t optionInfo) {
  return HandOut(data_.Find(usedType, optionInfo));
}

bool CContainerEntry::InsertProfileDataEntry(int index, CProfileDataEntry* entry) {
  if (entry == nullptr || data_.Children().Contains(entry)) return false;
  GetChildData().Insert(static_cast<std::size_t>(std::max(index, 0)), std::unique_ptr<CProfileDataEntry>(entry));
  return true;
}

bool CContainerEntry::SetProfileDataEntry(CProfileDataEntry* entry) {
  return GetChildData().SetProfileDataEntry(entry);
}

std::unique_ptr<CProfileDataEntry> CContainerEntry::AddProfileDataEntry(std::unique_ptr<CProfileDataEntry> entry) {
  return GetChildData().Add(std::move(entry));
}

CProfileDataEntry* CContainerEntry::RemoveProfileDataEntry(int index) {
  if (!removable_ || index < 0) return nullptr;
  return GetChildData().TakeAt(static_cast<std::size_t>(index)).release();
}

CProfileDataEntry* CContainerEntry::RemoveProfileDataEntry(std::uint32_t usedType, std::uint32_t optionInfo) {
  const auto& children = data_.Children();
  const auto found = std::find(children.begin(), children.end(), data_.Find(usedType, optionInfo));
  return RemoveProfileDataEntry(found != children.end() ? static_cast<int>(found - children.begin()) : -1);
}

bool CContainerEntry::ParseChildren(std::uint32_t& optionValue) {
  if (data_.GetLevel() > kMaxLevels && GetSize() != 0) {
    nvx::EntryStream stream(*this);
    return nvx::Refuse(stream, "calibration container: nests too deep");
  }
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) {
    data_.DeleteContents();
    CProfileFileCalibration form;
    form.SetOptionValue(optionValue);
    const bool loaded = form.LoadData(stream, &data_, false);
    optionValue = form.GetOptionValue();
    return loaded;
  });
}

bool CContainerEntry::RebuildForm(std::uint32_t optionValue) {
  if (!nvx::PayloadKeeper::SaysAll(*this) || NestsTooDeep(data_) || HoldsTwins(data_)) return false;
  const auto& children = data_.Children();
  if (!std::all_of(children.begin(), children.end(), [](CProfileDataEntry* child) { return child->RenewBuffer(); })) {
    return false;
  }
  CProfileFileCalibration form;
  form.SetOptionValue(optionValue);
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kExact,
                            [&](CNvxFile& stream) { return form.SaveData(stream, &data_); });
}

bool CContainerEntry::BufferToData() {
  std::uint32_t unused = 0;
  return ParseChildren(unused);
}

bool CContainerEntry::DataToBuffer() { return RebuildForm(0); }
