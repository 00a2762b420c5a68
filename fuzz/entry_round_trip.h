// What every entry owes: a refusal says why; what loads whole saves, loads again and then saves the same bytes, and its
// fields make another entry that tells the same, or are refused.
#pragma once

#include "check.h"
#include "support/recorded_fields.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/profile_entry.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace nvx::fuzz {

inline std::vector<std::uint8_t> BytesOf(CProfileDataEntry& entry) {
  return {entry.GetRefBuffer(), entry.GetRefBuffer() + entry.GetSize()};
}

// True if the payload that loaded says less than the bytes: they are kept then, and never made anew from it.
inline bool IsReadInPart(CProfileDataEntry& entry, const std::uint8_t* bytes, std::size_t size) {
  if (entry.GetPayloadState() != PayloadState::kPart) return false;
  Check(!entry.DataToBuffer() && entry.RenewBuffer());
  Check(entry.GetSize() == size && std::memcmp(entry.GetRefBuffer(), bytes, size) == 0);
  return true;
}

inline test::Told Tell(const CProfileDataEntry& entry) {
  test::Recorder recorder;
  Check(TellFields(entry, recorder));
  return recorder.told;
}

// Fields are refused where a file has more than a source may give, such as the last characters of a name.
inline void TryFields(const CProfileDataEntry& entry) {
  const test::Told told = Tell(entry);
  const std::unique_ptr<CProfileDataEntry> made(FindEntryType(entry.GetUsedType())->create());
  test::Player player(told);
  try {
    Check(FillFields(*made, player));
  } catch (const std::runtime_error&) {
    return;
  }
  Check(Tell(*made).values == told.values);
}

// True if the entry's payload loads whole from the bytes; its buffer is then the saved form.
inline bool RoundTrip(CProfileDataEntry& entry, const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return false;
  std::memcpy(entry.GetBuffer(static_cast<std::uint32_t>(size)), bytes, size);
  Diagnosis diagnosis;
  entry.SetDiagnosis(&diagnosis);
  const bool loaded = entry.BufferToData();
  entry.SetDiagnosis(nullptr);
  Check(loaded != diagnosis.HasErrors());
  if (!loaded || IsReadInPart(entry, bytes, size)) return false;
  Check(entry.DataToBuffer());
  const std::vector<std::uint8_t> saved = BytesOf(entry);
  Check(entry.BufferToData());
  Check(entry.DataToBuffer());
  Check(BytesOf(entry) == saved);
  TryFields(entry);
  return true;
}

}  // namespace nvx::fuzz
