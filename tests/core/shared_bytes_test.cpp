// Bytes that several objects refer to: whoever writes changes nobody else's.
#include "core/payload.h"
#include "support/entries.h"
#include "support/sample_profile.h"

#include <nvxprofile/calibration_history.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/shared_bytes.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

using nvx::SharedBytes;
using Bytes = std::vector<std::uint8_t>;

Bytes BytesOf(std::span<const std::uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

TEST(SharedBytes, EachHasItsOwnBytesOnceItWrites) {
  const Bytes start = {1, 2, 3, 4, 5};
  SharedBytes all(start);
  SharedBytes view = all.View(1, 3);
  const SharedBytes copy = all;
  EXPECT_EQ(view.Data(), all.Data() + 1) << "a view copies nothing";
  EXPECT_NE(copy.Data(), all.Data());

  view.Writable()[0] = 9;
  EXPECT_EQ(BytesOf(view.Bytes()), (Bytes{9, 3, 4}));
  all.Writable()[4] = 8;
  EXPECT_EQ(BytesOf(all.Bytes()), (Bytes{1, 2, 3, 4, 8}));
  EXPECT_EQ(BytesOf(copy.Bytes()), start);

  SharedBytes second = all.View(0, 2);
  all = SharedBytes();
  EXPECT_EQ(BytesOf(second.Bytes()), (Bytes{1, 2})) << "a view outlives what it looks at";
  const std::uint8_t* const place = second.Data();
  const SharedBytes moved = std::move(second);
  EXPECT_EQ(moved.Data(), place);
  EXPECT_EQ(SharedBytes::Allocate(3).Part(1, 2).Size(), 2u);
  EXPECT_EQ(SharedBytes(Bytes{}).Writable(), nullptr);
}

// What a load makes of a form, with the bytes that it came from.
template <class Entry>
std::unique_ptr<Entry> Reloaded(CProfileDataEntry& source) {
  auto entry = std::make_unique<Entry>();
  EXPECT_TRUE(nvx::test::Parse(*entry, BytesOf(source.Bytes())));
  return entry;
}

TEST(SharedBytes, AMaskEntryAndItsPatternsAreTwoFormsOfOneThing) {
  CMaskDownloadIncludePatternEntry made;
  auto* const pattern = CMaskPatternDataEntry::CreateEntry();
  const Bytes content(64, 0x55);
  pattern->SetMaskPatternBuffer(content.data(), 64);
  made.GetMaskPatternData()->Add(pattern);
  ASSERT_TRUE(made.DataToBuffer());
  const Bytes form = BytesOf(made.Bytes());

  const auto entry = Reloaded<CMaskDownloadIncludePatternEntry>(made);
  CMaskPatternDataEntry& loaded = *std::as_const(*entry).GetMaskPatternData()->GetEntry(0);
  const std::uint8_t* const inside = std::as_const(loaded).GetMaskPatternBuffer();
  EXPECT_TRUE(inside > entry->Bytes().data() && inside < entry->Bytes().data() + form.size()) << "no copy was made";
  const CMaskPatternDataEntry twin(loaded);

  std::fill_n(entry->GetRefBuffer(), form.size(), std::uint8_t{0});
  EXPECT_EQ(BytesOf({std::as_const(loaded).GetMaskPatternBuffer(), 64}), content) << "the payload stays";
  loaded.GetMaskPatternBuffer()[0] = 1;
  EXPECT_EQ(BytesOf(entry->Bytes()), Bytes(form.size(), 0)) << "the buffer stays";
  EXPECT_EQ(BytesOf({twin.GetMaskPatternBuffer(), 64}), content) << "copies are deep";

  const auto again = Reloaded<CMaskDownloadIncludePatternEntry>(made);
  again->GetMaskPatternData()->GetEntry(0)->GetMaskPatternBuffer()[0] = 7;
  EXPECT_EQ(BytesOf(again->Bytes()), form) << "the buffer stays until the payload is serialized";
  again->DeleteBuffer();
  EXPECT_EQ(std::as_const(*again).GetMaskPatternData()->GetEntry(0)->GetMaskPatternBuffer()[63], 0x55);
  ASSERT_TRUE(again->DataToBuffer());
  EXPECT_NE(BytesOf(again->Bytes()), form);
}

TEST(SharedBytes, ACalibrationKeepsItsBytesWhenTheHistoryIsWrittenOver) {
  const auto made = nvx::test::SampleHistory(2);
  const auto history = Reloaded<CCalibrationHistoryEntry>(*made);
  CProfileDataEntry& child = *std::as_const(*history).GetChildData().Children().At(1);
  const Bytes form = BytesOf(history->Bytes());
  const Bytes own = BytesOf(child.Bytes());
  std::fill_n(history->GetRefBuffer(), form.size(), std::uint8_t{0});
  EXPECT_EQ(BytesOf(child.Bytes()), own);
  std::fill_n(child.GetRefBuffer(), own.size(), std::uint8_t{1});
  EXPECT_EQ(BytesOf(history->Bytes()), Bytes(form.size(), 0));
}

}  // namespace
