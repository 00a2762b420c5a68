#include "core/text.h"

#include <nvxprofile/profile_info.h>

bool CProfileInfoObject::IsOrderedBefore(const CProfileInfoObject&) const { return false; }

CProfileDataInfo::~CProfileDataInfo() = default;

std::uint32_t CProfileDataInfo::VersionWord() const {
  return Info.ProfileMinorVersion * 0x10000u + Info.ProfileMajorVersion;
}

bool CProfileDataInfo::IsKnownVersion() const {
  switch (VersionWord()) {
    case 1:
    case 2:
    case 3:
    case 0x10003:
    case 0x20003:
    case 0x30003:
    case 0x40003:
    case 0x50003:
      return true;
    default:
      return false;
  }
}

bool CProfileDataInfo::IsNotVersion2() const { return VersionWord() != 2; }

bool CProfileDataInfo::IsOrderedBefore(const CProfileInfoObject& other) const {
  const auto* const that = dynamic_cast<const CProfileDataInfo*>(&other);
  if (that == nullptr) return false;
  const auto compare = [](const auto& a, const auto& b) { return nvx::FieldText(a).compare(nvx::FieldText(b)); };
  const _tagDeviceProfileInfo& a = Info;
  const _tagDeviceProfileInfo& b = that->Info;
  for (const int order : {compare(a.ListKeys[1], b.ListKeys[1]), compare(a.ListKeys[4], b.ListKeys[4]),
                          compare(a.ListKeys[2], b.ListKeys[2]), compare(a.MediaName, b.MediaName),
                          compare(a.ListKeys[0], b.ListKeys[0]), compare(a.ListKeys[3], b.ListKeys[3])}) {
    if (order != 0) return order < 0;
  }
  return a.ProfileMajorVersion < b.ProfileMajorVersion;
}
