// A save changes the model only if it goes through.
#pragma once

#include <nvxprofile/profile_data.h>

#include <vector>

namespace nvx {

// Puts information record and main route back as they were, unless it is told that the save went through. The record
// owns nothing, so that its copy is as good as itself.
class ModelGuard {
 public:
  explicit ModelGuard(CProfileData& data) : data_(data), info_(*data.GetProfileInfo()) {
    if (const CProfileRoute* const route = data.GetProfileRoute(kRouteMain)) {
      entries_.assign(route->Entries().begin(), route->Entries().end());
    }
  }
  ModelGuard(const ModelGuard&) = delete;
  ModelGuard& operator=(const ModelGuard&) = delete;
  ~ModelGuard() {
    if (saved_) return;
    *data_.GetProfileInfo() = info_;
    if (CProfileRoute* const route = data_.GetProfileRoute(kRouteMain)) route->SetEntries(std::move(entries_));
  }

  // Gives the result of the save.
  bool Done(bool saved) { return saved_ = saved; }

 private:
  CProfileData& data_;
  const _tagDeviceProfileInfo info_;
  std::vector<CProfileDataEntry*> entries_;
  bool saved_ = false;
};

}  // namespace nvx
