// What the tables of entries in containers and in calibrations share: a header of each entry, then a body of each,
// behind a magic. `Header` is the header of one of the two forms.
#pragma once

#include "core/form.h"
#include "core/payload.h"

#include <nvxprofile/profile_entry.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nvx {

// The headers from `start` of the stream on, as they stand there; none of them after false. The magic of each body
// counts, so that even a table of empty entries is refused before it is made.
template <class Header, std::size_t kSize>
bool ReadEntryHeaders(CNvxFile& file, std::uint64_t start, std::uint32_t count, std::string_view title,
                      std::vector<std::array<std::uint8_t, kSize>>& headers) {
  static_assert(kSize == kRecordSize<Header>);
  headers.clear();
  if (!SeekTo(file, start)) return RefuseBy(file, title, "starts beyond the end");
  RecordTable<Header> table;
  if (!table.Read(file, count, title, Header::kBodyMagicSize) || !table.Check(file)) return false;
  headers.resize(count);
  if (count != 0) std::memcpy(headers.data(), table.BytesAt(0), std::size_t{count} * kSize);
  return true;
}

// Refuses a header whose used type has no entry, which is null then, or whose form is another than the entry's.
template <class Header>
bool CheckForm(CNvxFile& file, const Header& header, const CProfileDataEntry* entry) {
  if (entry == nullptr) return RefuseBy(file, kTitle<Header>, "unknown used type");
  return entry->GetFormatType() == header.formatType ||
         RefuseBy(file, kTitle<Header>, "format type does not belong to the used type");
}

// The bytes behind the magic of a body; nothing for a size that the stream does not hold.
template <class Header>
std::optional<std::uint32_t> BodySize(CNvxFile& file, const Header& header) {
  if (header.bodySize < Header::kBodyMagicSize) {
    RefuseBy(file, kTitle<Header>, "body size below 4");
    return std::nullopt;
  }
  const std::uint32_t size = header.bodySize - Header::kBodyMagicSize;
  if (Holds(file, size, 1)) return size;
  RefuseBy(file, kTitle<Header>, "body size beyond the end");
  return std::nullopt;
}

// Parses the buffer of an entry, which starts at `offset` of the stream; findings are those of "entry NAME". An entry
// whose payload does not parse keeps its bytes.
template <class Name>
void ParseListed(CNvxFile& file, std::uint32_t offset, CProfileDataEntry& entry, Name name) {
  const DiagnosisScope scope(file.GetDiagnosis(), offset, [&] { return "entry " + name(); });
  ParseInto(file.GetDiagnosis(), entry);
}

}  // namespace nvx
