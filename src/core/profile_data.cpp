#include "core/text.h"

#include <nvxprofile/profile_data.h>

#include <algorithm>
#include <cstring>

namespace {

auto OfType(std::uint32_t usedType) {
  return [usedType](const CProfileDataEntry& entry) { return entry.GetUsedType() == usedType; };
}

}  // namespace

void CProfileRoute::Add(CProfileDataEntry* entry) { entries_.Append(entry); }
CProfileDataEntry* CProfileRoute::GetEntry(std::uint32_t usedType) { return entries_.Find(OfType(usedType)); }
int CProfileRoute::GetEntryCount() const { return static_cast<int>(entries_.Count()); }
bool CProfileRoute::GetHeadPos() { return entries_.Head(); }
CProfileDataEntry* CProfileRoute::GetNext(bool& more) { return entries_.Next(more); }
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
  entries_.Clear(nvx::Ownership::kOwned);
  _tagDeviceProfileInfo& info = info_.Info;
  if (info.LayoutNumber == 3) {
    delete[] info.Binary.MediaInfo;
    info.Binary.MediaInfo = nullptr;
  }
}

void CProfileData::SetProfileDataEntry(CProfileDataEntry* entry, std::uint32_t route) {
  if (entry == nullptr) return;
  CProfileDataEntry* present = GetProfileDataEntryFromList(entry->GetUsedType());
  // Goes with this scope if it is not kept, or if the heap is exhausted before it has a place.
  std::unique_ptr<CProfileDataEntry> arrived(present != entry ? entry : nullptr);
  std::unique_ptr<CProfileRoute>& place = routes_[route];
  if (!place) place = std::make_unique<CProfileRoute>(route);
  if (present == nullptr) {
    entries_.Append(arrived.release(), nvx::Ownership::kOwned);
    present = entry;
  }
  place->Add(present);
}

CProfileDataEntry* CProfileData::GetProfileDataEntryFromList(std::uint32_t usedType) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [usedType](const CProfileDataEntry* e) { return e->GetUsedType() == usedType; });
  return found != entries_.end() ? *found : nullptr;
}

CProfileDataEntry* CProfileData::GetProfileDataEntry(std::uint32_t route, std::uint32_t usedType) {
  CProfileRoute* const place = GetProfileRoute(route);
  return place != nullptr ? place->GetEntry(usedType) : nullptr;
}

CProfileRoute* CProfileData::GetProfileRoute(std::uint32_t route) {
  const auto found = routes_.find(route);
  return found != routes_.end() ? found->second.get() : nullptr;
}

int CProfileData::GetEntryCount(std::uint32_t route) {
  CProfileRoute* const place = GetProfileRoute(route);
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
  if (!elsewhere) entries_.Remove(entry);
  return entry;
}

bool CProfileData::GetEntryStartPos() { return entries_.Head(); }
CProfileDataEntry* CProfileData::GetNextEntry(bool& more) { return entries_.Next(more); }

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

_tagDeviceProfileInfo* CProfileData::GetProfileInfo() { return &info_.Info; }

bool CProfileData::IsSpecifiedRoute(std::uint32_t route) { return routes_.find(route) != routes_.end(); }

tagMedia* CProfileData::CreateMediaInfoArray(int count) {
  return count > 0 ? new tagMedia[static_cast<std::size_t>(count)]() : nullptr;
}
