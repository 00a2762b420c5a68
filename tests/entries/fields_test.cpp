// Telling the fields of an entry, and filling entries with them.
#include "support/entries.h"
#include "support/random_model.h"
#include "support/recorded_fields.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/fields.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/text_conversion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>

namespace {

using namespace nvx::test;
using testing::ElementsAre;

Told Tell(const CProfileDataEntry& entry) {
  Recorder recorder;
  EXPECT_TRUE(nvx::TellFields(entry, recorder));
  return recorder.told;
}

// What is refused of an entry that is filled with this.
std::string Refusal(CProfileDataEntry& entry, const Told& told) {
  Player player(told);
  try {
    nvx::FillFields(entry, player);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(Fields, MakeTheBytesAgainThatTheyWereToldOf) {
  std::mt19937 random(20);
  for (const nvx::EntryType& type : nvx::EntryTypes()) {
    SCOPED_TRACE(type.name);
    if (type.formatType == CProfileDataEntry::kFormatIcc) continue;
    for (int round = 0; round < 40; ++round) {
      const auto loaded = NewEntry(type.usedType);
      nvx::test::MakeRandomEntry(type.usedType, random)->Copy(*loaded);
      if (loaded->GetSize() != 0) loaded->BufferToData();
      const nvx::PayloadState state = loaded->GetPayloadState();
      const Told told = Tell(*loaded);
      EXPECT_EQ(loaded->GetPayloadState(), state) << "telling has changed the entry";
      const auto made = NewEntry(type.usedType);
      EXPECT_EQ(Refusal(*made, told), "");
      if (loaded->GetSize() != 0) {
        EXPECT_EQ(BytesOf(*made), BytesOf(*loaded));
      }
      EXPECT_EQ(Tell(*made).values, told.values);
    }
  }
}

TEST(Fields, AreToldInTheirOrderAndOfThePayloadAsItIs) {
  CMediaPropertyEntry entry;
  auto* const block = CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(nvx::kMediaHeater, 2);
  block->SetParameter(0, -5);
  entry.GetMediaPropertyData()->AddTail(block);
  const Told told = Tell(entry);
  EXPECT_THAT(told.places, ElementsAre("mediaProperties", "mediaProperties/0", "mediaProperties/0/usedType",
                                       "mediaProperties/0/parameterMax", "mediaProperties/0/parameters"));
  EXPECT_EQ(std::get<NumberList>(told.values.at("mediaProperties/0/parameters")), (NumberList{-5, 0}));
  EXPECT_EQ(entry.GetSize(), 0u);
}

TEST(Fields, AreNotThereForProfilesAndForWhatIsNoEntryType) {
  Recorder recorder;
  Told nothing;
  Player player(nothing);
  CICMEntry icc;
  CProfileDataEntry bare;
  CInfoEntry misnamed;
  misnamed.SetUsedType(CProfileDataEntry::kModel);
  for (CProfileDataEntry* const entry :
       {static_cast<CProfileDataEntry*>(&icc), &bare, static_cast<CProfileDataEntry*>(&misnamed)}) {
    EXPECT_FALSE(nvx::TellFields(*entry, recorder));
    EXPECT_FALSE(nvx::FillFields(*entry, player));
  }
  EXPECT_TRUE(recorder.told.places.empty());
}

TEST(Fields, AreRefusedBeyondTheirRanges) {
  CLinearizationEntry curves;
  auto* const curve = CCurveDataEntry::CreateCurveDataEntry(CCurveDataEntry::kSamples8);
  curve->Add(1);
  curve->Add(255);
  curves.GetCurveData()->AddTail(curve);
  const Told good = Tell(curves);
  const auto refusal = [&](const char* place, Value value) {
    Told bad = good;
    bad.values.at(place) = std::move(value);
    CLinearizationEntry entry;
    std::string why = Refusal(entry, bad);
    EXPECT_EQ(entry.GetSize(), 0u);
    return why;
  };
  const std::string between = ": the number must lie between ";
  EXPECT_EQ(refusal("curves/0/inkID", std::int64_t{256}), "curves/0|inkID" + between + "0 and 255");
  EXPECT_EQ(refusal("curves/0/max", std::int64_t{-1}), "curves/0|max" + between + "0 and 4294967295");
  EXPECT_EQ(refusal("curves/0/dataType", std::int64_t{3}), "curves/0|dataType" + between + "1 and 2");
  EXPECT_EQ(refusal("curves/0/samples", NumberList{0, 256}), "curves/0|samples/1" + between + "0 and 255");
  EXPECT_EQ(refusal("curves/0/inkName", std::string(256, 'x')), "curves/0|inkName: the text is longer than 255 bytes");
}

TEST(Fields, AreRefusedWhereTheyDoNotGoTogether) {
  const auto refusal = [](std::uint32_t usedType, std::map<std::string, Value> values) {
    const auto entry = NewEntry(usedType);
    return Refusal(*entry, {std::move(values), {}});
  };
  using Entry = CProfileDataEntry;
  const std::size_t one = 1;
  const std::int64_t two = 2;
  EXPECT_EQ(refusal(Entry::kMediaProperty, {{"mediaProperties", one},
                                            {"mediaProperties/0", true},
                                            {"mediaProperties/0/usedType", std::int64_t{nvx::kMediaWave}},
                                            {"mediaProperties/0/parameterMax", std::int64_t{16}}}),
            "mediaProperties/0|parameterMax: a block of this type has 1 parameters");
  EXPECT_EQ(refusal(Entry::kLargeParameter, {{"entries", one},
                                             {"entries/0", true},
                                             {"entries/0/usedType", two},
                                             {"entries/0/patternCount", two},
                                             {"entries/0/parameters", one}}),
            "entries/0/parameters|: 2 items are expected");
  EXPECT_EQ(refusal(Entry::kSeparateChroma, {{"gridCount", two},
                                             {"inputChannels", std::size_t{0}},
                                             {"outputChannels", std::size_t{0}},
                                             {"samples", ByteList{1}}}),
            "|samples: 0 bytes are expected, one for each output and node");
  EXPECT_EQ(refusal(Entry::kInfo, {{"versionStr", std::string()},
                                   {"comment", std::string()},
                                   {"userName", std::string()},
                                   {"reserveBuffer", ByteList(191)}}),
            "|reserveBuffer: 192 bytes are expected");
}

// A filled entry has what the source has and nothing of what it had before; bytes that nobody read are not filled over.
TEST(Fields, ReplaceAPayloadAndKeepUnreadBytes) {
  CMaskDownLoadEntry masks;
  masks.Initialize(2);
  masks.SetWeftDataParameter(0, 6);
  masks.SetWeftDataParameter(1, 6);
  ASSERT_TRUE(masks.DataToBuffer());
  Told told = Tell(masks);
  told.values.at("weftData") = std::size_t{1};
  EXPECT_EQ(Refusal(masks, told), "");
  EXPECT_EQ(masks.GetWeftBlocks().size(), 1u);
  EXPECT_EQ(*masks.GetWeftDataCount(), 1u);

  CModelEntry model;
  ASSERT_TRUE(model.DataToBuffer());
  const Told record = Tell(model);
  *model.GetBuffer(1) = 7;
  EXPECT_EQ(Refusal(model, record), "|: the entry has bytes that were not read whole");
  EXPECT_EQ(BytesOf(model), ByteList{7});
  CCalibrationTargetEntry target;
  *target.GetBuffer(1) = 7;
  EXPECT_NE(Refusal(target, {{{"createTime", std::int64_t{1}}}, {}}), "");
  EXPECT_EQ(BytesOf(target), ByteList{7});
}

TEST(Fields, ChildrenAreCompleteUnlessToldOtherwise) {
  CCalibrationHistoryEntry history;
  Told told;
  told.values = {{"containerData", true},
                 {"entries", std::size_t{1}},
                 {"entries/0", true},
                 {"entries/0/usedType", std::int64_t{CProfileDataEntry::kCalibrationTarget}},
                 {"entries/0/payload", ByteList(8)}};
  EXPECT_EQ(Refusal(history, told), "");
  ASSERT_EQ(history.GetChildData().Children().Count(), 1u);
  EXPECT_TRUE(history.GetChildData().Children().At(0)->IsComplete());
}

TEST(Fields, OfARecordComeBackEachInItsPlace) {
  for (const std::uint32_t layout : {nvx::kTextView, nvx::kBinaryView}) {
    CProfileData data;
    data.GetProfileInfo()->LayoutNumber = layout;
    Recorder before;
    nvx::TellFields(*data.GetProfileInfo(), before);
    Told given = std::move(before.told);
    std::int64_t next = 1;
    for (auto& [place, value] : given.values) {
      if (place == "LayoutNumber") continue;
      if (std::holds_alternative<bool>(value)) value = true;
      if (std::holds_alternative<std::int64_t>(value)) value = next++;
      if (std::holds_alternative<std::string>(value)) value = std::to_string(next++);
      if (std::holds_alternative<std::u16string>(value)) value = nvx::AnsiToWide(std::to_string(next++));
      if (auto* const numbers = std::get_if<NumberList>(&value)) {
        for (std::int64_t& number : *numbers) number = next++;
      }
    }
    Player player(given);
    nvx::FillRecord(data, player);
    Recorder after;
    nvx::TellFields(*data.GetProfileInfo(), after);
    EXPECT_EQ(after.told.values, given.values);
  }
}

TEST(Fields, OfARecordAreOptional) {
  CProfileData data;
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  info.LayoutNumber = nvx::kBinaryView;
  const auto put = [](char16_t* field, std::u16string_view text) { text.copy(field, text.size()); };
  put(info.ModelCode, u"1");
  put(info.ModelSubCode, u"2");
  put(info.InternalCode, u"3");
  put(info.MediaCode, u"4");
  put(info.MediaName, u"5");
  put(info.RevisionCode, u"6");
  put(info.PrinterComment, u"7");
  const tagMedia names[] = {{9, u"Glossy"}, {17, u"Matte"}};
  data.SetMediaInfo(names);
  info.DatabaseKey[4] = 44;
  Recorder recorder;
  nvx::TellFields(info, recorder);
  EXPECT_EQ(std::get<std::u16string>(recorder.told.values.at("Binary/MediaInfo/1/Name")), u"Matte");
  std::u16string texts;
  for (const char* const name :
       {"ModelCode", "ModelSubCode", "InternalCode", "MediaCode", "MediaName", "RevisionCode", "PrinterComment"}) {
    texts += std::get<std::u16string>(recorder.told.values.at(name));
  }
  EXPECT_EQ(texts, u"1234567");

  Told told;
  told.values = {{"DatabaseKey", NumberList{1, 2}}, {"Binary", true}, {"Binary/ModelNumber", std::int64_t{1234}}};
  Player player(told);
  nvx::FillRecord(data, player);
  EXPECT_THAT(info.DatabaseKey, ElementsAre(1, 2, -1, -1, 44));
  EXPECT_EQ(info.Binary.ModelNumber, 1234u);
  EXPECT_EQ(info.Binary.MediaInfoCount, 2u);

  told.values = {{"Binary", true}, {"Binary/MediaInfo", std::size_t{0}}};
  Player emptying(told);
  nvx::FillRecord(data, emptying);
  EXPECT_EQ(info.Binary.MediaInfoCount, 0u);
}

}  // namespace
