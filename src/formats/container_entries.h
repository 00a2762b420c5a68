// Entries as an entry table stores them: what the formats that hold such a table share.
#pragma once

#include "formats/container_records.h"

#include <nvxprofile/file.h>
#include <nvxprofile/profile_data.h>

#include <cstdint>

namespace nvx {

// Bytes that an entry takes in a table beside its buffer: its header and the body's magic.
inline constexpr std::uint32_t kEntryOverhead =
    kRecordSize<ContainerEntryHeader> + ContainerEntryHeader::kBodyMagicSize;

// Calls visit(entry) for each entry of the route in order until one gives false.
template <class Visit>
bool ForEachEntry(CProfileRoute& route, Visit visit) {
  bool more = route.GetHeadPos();
  while (more) {
    if (!visit(*route.GetNext(more))) return false;
  }
  return true;
}

// Write the header and the body of an entry of which the table holds `size` bytes. False for a size that the header
// cannot tell and for a short write.
bool WriteEntryHeader(CNvxFile& file, CProfileDataEntry& entry, std::uint32_t size);
bool WriteEntryBody(CNvxFile& file, CProfileDataEntry& entry, std::uint32_t size);

}  // namespace nvx
