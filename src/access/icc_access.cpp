// The ICC profiles inside a profile.
#include "core/report.h"

#include <nvxprofile/profile_access.h>

namespace {

std::uint8_t* GiveBuffer(CProfileDataEntry* entry, int& size, CError* error) {
  if (entry == nullptr) {
    nvx::Fail(error, nvx::kReasonNotFound, "ProfileAccess", u"Profile:ICC profile entry - none");
    return nullptr;
  }
  size = static_cast<int>(entry->GetSize());
  return entry->GetRefBuffer();
}

}  // namespace

std::uint8_t* CProfileAccess::GetIccProfile(int& size, CError* error) {
  if (!profile_) return nullptr;
  return GiveBuffer(profile_->GetProfileDataEntryFromList(CProfileDataEntry::kIcm), size, error);
}

std::uint8_t* CProfileAccess::GetReplaceProfile(int& size, CError* error) {
  if (!profile_) return nullptr;
  CProfileDataEntry* const replacement = profile_->GetProfileDataEntryFromList(CProfileDataEntry::kReplaceProfile);
  return replacement != nullptr ? GiveBuffer(replacement, size, error) : GetIccProfile(size, error);
}
