// Profiles of one route from the buffers of their entries.
#pragma once

#include "support/byte_builder.h"
#include "support/entries.h"

#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nvx::test {

// The form, and the zeros up to the next multiple of 1024 that a rebuilt buffer may have.
inline Bytes ToCapacity(Bytes form) {
  form.resize((form.size() + 1023) / 1024 * 1024);
  return form;
}

struct EntryBytes {
  std::uint32_t usedType;
  std::uint32_t formatType;
  Bytes bytes;
  std::uint32_t complete = 1;
  std::uint32_t optionInfo = 0;
  std::string label = {};
};

// An entry-table container of these entries.
inline Bytes ContainerOf(const std::vector<EntryBytes>& entries, std::uint32_t route = 4) {
  ByteBuilder file;
  file.Text(" TCQ").U32(32, 0x00010000, 0, route, 0);
  file.U32(static_cast<std::uint32_t>(entries.size()), 0);
  for (const EntryBytes& entry : entries) {
    file.Text("IHEP").U32(292, entry.usedType, entry.formatType);
    file.U32(static_cast<std::uint32_t>(entry.bytes.size() + 4), entry.complete, entry.optionInfo);
    file.Text(entry.label, 264);
  }
  for (const EntryBytes& entry : entries) file.Text("SDEP").Append(entry.bytes);
  return file;
}

inline bool InitFromEntries(CProfileAccess& access, const std::vector<EntryBytes>& entries, std::uint32_t route = 4) {
  const TempFolder folder;
  WriteBytes(folder.File("profile.qct"), ContainerOf(entries, route));
  CError error;
  return access.Init(folder.WideFile("profile.qct").c_str(), &error);
}

// A profile of what an entry holds.
inline bool InitFromEntry(CProfileAccess& access, CProfileDataEntry& entry, std::uint32_t route = kRouteMain) {
  return entry.DataToBuffer() &&
         InitFromEntries(access, {{entry.GetUsedType(), entry.GetFormatType(), BytesOf(entry)}}, route);
}

// That a query failed for this reason, 0 for one without a word.
inline void ExpectError(const CError& error, std::uint32_t reason, std::u16string_view comment) {
  EXPECT_EQ(error.GetErrorReason(), reason);
  EXPECT_EQ(error.GetSystemErrorCode(), 0u);
  EXPECT_EQ(std::u16string_view(error.GetErrorCommentW()), comment);
}

}  // namespace nvx::test
