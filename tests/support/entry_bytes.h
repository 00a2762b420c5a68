// Entries and their buffers as byte sequences.
#pragma once

#include "support/byte_builder.h"

#include <nvxprofile/profile_entry.h>

#include <algorithm>

namespace nvx::test {

inline bool LoadBytes(CProfileDataEntry& entry, const Bytes& bytes) {
  std::uint8_t* const buffer = entry.GetBuffer(static_cast<std::uint32_t>(bytes.size()));
  std::copy(bytes.begin(), bytes.end(), buffer);
  return entry.BufferToData();
}

inline Bytes BytesOf(CProfileDataEntry& entry) {
  return Bytes(entry.GetRefBuffer(), entry.GetRefBuffer() + entry.GetSize());
}

// The form, and the zeros up to the next multiple of 1024 that a rebuilt buffer has.
inline Bytes Padded(Bytes form) {
  form.resize((form.size() + 1023) / 1024 * 1024);
  return form;
}

}  // namespace nvx::test
