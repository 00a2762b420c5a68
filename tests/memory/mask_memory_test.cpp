// What print masks take of the heap.
#include "memory/heap.h"
#include "support/files.h"

#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace {

namespace heap = nvx::test::heap;

void AddPatterns(CMaskDownloadIncludePatternEntry& entry, std::uint32_t count, std::uint32_t size) {
  CMaskParameterDataEntry* const record = CMaskParameterDataEntry::CreateEntry();
  const nvx::test::Bytes bytes(size, 1);
  for (std::uint32_t id = 0; id < count; ++id) {
    CMaskPatternDataEntry* const pattern = CMaskPatternDataEntry::CreateEntry();
    pattern->SetMaskPatternID(id);
    pattern->SetMaskPatternBuffer(bytes.data(), size);
    entry.GetMaskPatternData()->Add(pattern);
  }
  for (std::uint32_t id = 0; id < 15; ++id) record->AddUsePatternID(id * count / 15);
  entry.GetMaskParameterData()->AddTail(record);
}

TEST(MaskMemory, LoadTakesOneMoreCopy) {
  for (const std::uint32_t size : {64u, 4096u}) {
    CMaskDownloadIncludePatternEntry entry;
    AddPatterns(entry, (2u << 20) / size, size);
    ASSERT_TRUE(entry.DataToBuffer());
    CMaskDownloadIncludePatternEntry loaded;
    std::copy_n(entry.GetRefBuffer(), entry.GetSize(), loaded.GetBuffer(entry.GetSize()));
    EXPECT_LE(heap::PeakOf([&] { ASSERT_TRUE(loaded.BufferToData()); }), 2u * entry.GetSize()) << size;
  }
}

TEST(MaskMemory, LookupAllocatesOnce) {
  const nvx::test::TempFolder folder;
  const std::u16string path = folder.WideFile("masks.qct");
  auto entry = std::make_unique<CMaskDownloadIncludePatternEntry>();
  AddPatterns(*entry, 10000, 16);
  ASSERT_TRUE(entry->DataToBuffer());
  CProfileData data;
  data.SetProfileDataEntry(entry.release(), nvx::kRouteMaskDownload);
  ASSERT_TRUE(CProfileFileQCT().SaveData(path.c_str(), &data, nvx::kRouteMaskDownload));
  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(path.c_str(), &error));

  std::uint8_t buffer[3 + 15 * (6 + 16)];
  EXPECT_LE(heap::CountOf([&] {
              EXPECT_EQ(access.GetMaskParameterAndPatternBuffer(buffer, 0, 0, 0, 0, nullptr, &error), sizeof buffer);
            }),
            1u);
}

}  // namespace
