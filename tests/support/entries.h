// Entries and their buffers as byte sequences.
#pragma once

#include "support/files.h"

#include <nvxprofile/profile_data.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace nvx::test {

inline void SetBytes(CProfileDataEntry& entry, const Bytes& bytes) {
  std::copy(bytes.begin(), bytes.end(), entry.GetBuffer(static_cast<std::uint32_t>(bytes.size())));
}

inline Bytes BytesOf(const CProfileDataEntry& entry) { return {entry.Bytes().begin(), entry.Bytes().end()}; }

// Parses the bytes; the entry keeps them.
inline bool Parse(CProfileDataEntry& entry, const Bytes& bytes) {
  SetBytes(entry, bytes);
  return entry.BufferToData();
}

// An entry with bytes that nobody has read; null for a type without a class.
inline std::unique_ptr<CProfileDataEntry> NewEntry(std::uint32_t usedType, const Bytes& bytes = {}) {
  std::unique_ptr<CProfileDataEntry> entry(
      CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
  if (entry && !bytes.empty()) SetBytes(*entry, bytes);
  return entry;
}

// Gives the entry of this type that the route holds then: an older one of the profile, if it has one.
inline CProfileDataEntry& AddEntry(CProfileData& data, std::uint32_t usedType, const Bytes& bytes,
                                   std::uint32_t route = kRouteMain) {
  data.SetProfileDataEntry(NewEntry(usedType, bytes).release(), route);
  return *data.GetProfileDataEntry(route, usedType);
}

// The types of the entries of a route in turn; none if there is no such route.
inline std::vector<std::uint32_t> TypesOn(CProfileData& data, std::uint32_t route) {
  std::vector<std::uint32_t> types;
  if (CProfileRoute* const place = data.GetProfileRoute(route)) {
    for (const CProfileDataEntry* const entry : place->Entries()) types.push_back(entry->GetUsedType());
  }
  return types;
}

}  // namespace nvx::test
