#include "core/text.h"

#include <nvxprofile/profile_data.h>

#include <algorithm>
#include <utility>

namespace {

auto OfType(std::uint32_t usedType) {
  return [usedType](const CProfileDataEntry& entry) { return entry.GetUsedType() == usedType; };
}

}  // namespace

void CProfileRoute::Add(CProfileDataEntry* entry) { entries_.Append(entry); }
CProfileDataEntry* CProfileRoute::GetEntry(std::uint32_t usedType) const { return entries_.First(OfType(usedType)); }
int CProfileRoute::GetEntryCount() const { return static_cast<int>(entries_.Count()); }
bool CProfileRoute::IsExistEntry(CProfileDataEntry* entry) const { return entries_.Contains(entry); }

CProfileDataEntry* CProfileRoute::RemoveEntry(std::uint32_t usedType) {
  CProfileDataEntry* const entry = GetEntry(usedType);
  if (entry != nullptr) entries_.Remove(entry);
  return entry;
}

void CProfileRoute::GetQctInnerName(char* name) const {
  std::string_view text;
  if (routeType_ == nvx::kRouteIccRoot) text = "QctIcmForUse.qct";
  if (routeType_ == nvx::kRouteGrayBalance) text = "QctGryForUse.qct";
  nvx::CopyText(name, 17, text);
}

CProfileData::CProfileData() = default;
CProfileData::~CProfileData() { DeleteContents(); }

void CProfileData::DeleteContents() {
  routes_.clear();
  routeCursor_ = routes_.end();
  entries_.Clear();
  if (info_.Info.LayoutNumber == nvx::kBinaryView) info_.Info.Binary.MediaInfo = nullptr;
  mediaNames_.clear();
}

bool CProfileData::SetProfileDataEntry(CProfileDataEntry* entry, std::uint32_t route) {
  if (entry == nullptr) return false;
  CProfileDataEntry* present = GetProfileDataEntryFromList(entry->GetUsedType());
  // Goes with this scope if it is not kept, or if the heap is exhausted before it has a place.
  std::unique_ptr<CProfileDataEntry> arrived(present != entry ? entry : nullptr);
  std::unique_ptr<CProfileRoute>& place = routes_[route];
  if (!place) place = std::make_unique<CProfileRoute>(route);
  const bool stays = present == nullptr || present == entry;
  if (present == nullptr) {
    entries_.Append(std::move(arrived));
    present = entry;
  }
  place->Add(present);
  return stays;
}

CProfileDataEntry* CProfileData::GetProfileDataEntryFromList(std::uint32_t usedType) const {
  return entries_.First(OfType(usedType));
}

CProfileDataEntry* CProfileData::GetProfileDataEntry(std::uint32_t route, std::uint32_t usedType) const {
  const CProfileRoute* const place = GetProfileRoute(route);
  return place != nullptr ? place->GetEntry(usedType) : nullptr;
}

CProfileRoute* CProfileData::GetProfileRoute(std::uint32_t route) const {
  const auto found = routes_.find(route);
  return found != routes_.end() ? found->second.get() : nullptr;
}

int CProfileData::GetEntryCount(std::uint32_t route) const {
  const CProfileRoute* const place = GetProfileRoute(route);
  return place != nullptr ? place->GetEntryCount() : -1;
}

CProfileDataEntry* CProfileData::RemoveProfileDataEntry(std::uint32_t usedType, std::uint32_t route) {
  CProfileRoute* const place = GetProfileRoute(route);
  if (place == nullptr) return nullptr;
  CProfileDataEntry* const entry = place->RemoveEntry(usedType);
  if (place->GetEntryCount() == 0) {
    routes_.erase(route);
    routeCursor_ = routes_.end();
  }
  const bool elsewhere = std::any_of(routes_.begin(), routes_.end(),
                                     [entry](const auto& item) { return item.second->IsExistEntry(entry); });
  return elsewhere ? entry : entries_.Remove(entry).release();
}

std::unique_ptr<CProfileDataEntry> CProfileData::ReplaceProfileDataEntry(std::unique_ptr<CProfileDataEntry> entry) {
  CProfileDataEntry* const former = entry ? GetProfileDataEntryFromList(entry->GetUsedType()) : nullptr;
  if (former == nullptr) return entry;
  for (const auto& item : routes_) item.second->Exchange(former, entry.get());
  entries_.Exchange(former, std::move(entry)).reset();
  return nullptr;
}

bool CProfileData::GetRouteStartPos() {
  routeCursor_ = routes_.begin();
  return !routes_.empty();
}

CProfileRoute* CProfileData::GetNextRoute(bool& more) {
  CProfileRoute* route = nullptr;
  if (routeCursor_ != routes_.end()) {
    route = routeCursor_->second.get();
    ++routeCursor_;
  }
  more = routeCursor_ != routes_.end();
  return route;
}

bool CProfileData::IsSpecifiedRoute(std::uint32_t route) const { return routes_.find(route) != routes_.end(); }

tagMedia* CProfileData::CreateMediaInfoArray(int count) {
  if (count <= 0) return nullptr;
  mediaNames_.push_back(std::make_unique<tagMedia[]>(static_cast<std::size_t>(count)));
  return mediaNames_.back().get();
}

void CProfileData::SetMediaInfo(std::span<const tagMedia> names) {
  _tagDeviceProfileInfo::BinaryView& view = info_.Info.Binary;
  const tagMedia* const former = view.MediaInfo;
  tagMedia* const media = CreateMediaInfoArray(static_cast<int>(names.size()));
  std::copy(names.begin(), names.end(), media);
  view.MediaInfo = media;
  view.MediaInfoCount = static_cast<std::uint32_t>(names.size());
  std::erase_if(mediaNames_, [former](const auto& array) { return array.get() == former; });
}

void CProfileData::CopyProfileInfo(const CProfileData& from) {
  info_.Info = from.info_.Info;
  if (info_.Info.LayoutNumber != nvx::kBinaryView || info_.Info.Binary.MediaInfo == nullptr) return;
  const _tagDeviceProfileInfo::BinaryView& view = from.info_.Info.Binary;
  SetMediaInfo({view.MediaInfo, view.MediaInfoCount});
}
