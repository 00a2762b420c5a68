// Entries as an entry table stores them: what the formats that hold such a table share.
#pragma once

#include "formats/container_records.h"

#include <nvxprofile/file.h>
#include <nvxprofile/profile_data.h>

#include <algorithm>
#include <cstdint>

namespace nvx {

// Bytes that an entry takes in a table beside its buffer: its header and the body's magic.
inline constexpr std::uint32_t kEntryOverhead =
    kRecordSize<ContainerEntryHeader> + ContainerEntryHeader::kBodyMagicSize;

// Gives true if visit(entry) does for each entry of the route, and stops at the first false.
template <class Visit>
bool ForEachEntry(const CProfileRoute& route, Visit visit) {
  return std::all_of(route.Entries().begin(), route.Entries().end(),
                     [&](CProfileDataEntry* entry) { return visit(*entry); });
}

// Write the header and the body of an entry of which the table holds `size` bytes. False for a size that the header
// cannot tell and for a short write.
bool WriteEntryHeader(CNvxFile& file, CProfileDataEntry& entry, std::uint32_t size);
bool WriteEntryBody(CNvxFile& file, CProfileDataEntry& entry, std::uint32_t size);

}  // namespace nvx
