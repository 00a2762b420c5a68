#include "support/entries.h"
#include "support/environment.h"
#include "support/forms_in_memory.h"
#include "support/qpf_builder.h"
#include "support/qpf_reader.h"
#include "support/record_text.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/diagnosis.h>
#include <nvxprofile/icc_profile.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace {

using namespace nvx::test;
using testing::ElementsAre;

constexpr const char* kPrivateTags[] = {"NVX1", "NVX2", "NVX3", "NVX4", "NVX5", "NVX6", "NVX7"};

bool Load(const Bytes& bytes, CProfileData& data, nvx::Diagnosis* diagnosis = nullptr) {
  return LoadBytes<CProfileFileQPFv3>(bytes, data, diagnosis);
}

std::optional<Bytes> Save(CProfileData& data, std::uint32_t flags = 0) {
  return SaveBytes<CProfileFileQPFv3>(data, flags);
}

void AddFrame(CProfileData& data, std::uint32_t route = 4) {
  const Bytes frame = IccFile({{"desc", DescriptionTag("old")}, {"wtpt", Bytes(20, 1)}});
  CProfileDataEntry& entry = AddEntry(data, 10, frame, route);
  entry.SetComplete(true);
  entry.SetLabelString("icc");
}

Bytes File(const std::vector<StoredEntry>& entries, const TagList& more = {}, const StoredHeader& header = {}) {
  TagList tags{{"desc", DescriptionTag("old")}, {"NVX1", EntryTag(entries, header)}, {"wtpt", Bytes(20, 1)}};
  tags.push_back({"NVX2", MediaTag({{17, u"日本"}, {9, u"English"}})});
  tags.insert(tags.end(), more.begin(), more.end());
  return IccFile(tags);
}

Bytes RouteTag(const Bytes& bytes) { return Opening().Append(bytes); }

// The protected operations by which the library's own steps can be seen.
class Format : public CProfileFileQPFv3 {
 public:
  using CProfileFileQPFv3::LoadHeader;
  using CProfileFileQPFv3::SaveHeader;
};

TEST(Qpf, LoadsTheHeaderBlockAndTheMediaNames) {
  const ScopedVariable zone("TZ", "UTC");
  const ScopedLanguage language("ja_JP.UTF-8");
  CProfileData data;
  ASSERT_TRUE(LoadBytes<CProfileFileQPFv3>(File({Placeholder()}, {}, {0x00040003}), data, nullptr, true))
      << "there is no load of the header alone";
  EXPECT_EQ(TextOf(*data.GetProfileInfo()),
            "ModelCode=1234 ModelSubCode=05 InternalCode=67 ScanResolution=720 FeedResolution=1440 RenderingScan=360 "
            "RenderingFeed=540 ColorsetCode=4 InkTypeCode=5 DotType=2 InkMakerCode=-6 InkVersion=7 "
            "MediaCode=012345678 MediaName=日本 RevisionCode=A1B2 DatabaseKey=21,22,23,24,25 HalftoneCode=8 "
            "SeparateWayCode=9 ProfileMajorVersion=3 ProfileMinorVersion=4 CreateTime=yes wYear=2023 wMonth=11 "
            "wDay=14 wHour=22 wMinute=13 wSecond=20 CreateTimeValue=1700000000 UpdateTime=yes wYear=2023 wMonth=11 "
            "wDay=14 wHour=22 wMinute=13 wSecond=21 UpdateTimeValue=1700000001 LayoutNumber=3 Unused=-1,-1 "
            "OutputThirdValue=300 Binary=yes ModelNumber=1234 ModelSubNumber=5 InternalNumber=67 "
            "MediaNumber=12345678 DefaultMediaName=Default CreateModule=Module MakerText=Maker "
            "StoredRevisionCode=A1B2 0=yes Language=17 Name=日本 1=yes Language=9 Name=English");
  EXPECT_THAT(TypesOn(data, 4), ElementsAre(10));
  EXPECT_EQ(data.Routes().size(), 1u);
}

TEST(Qpf, ChoosesTheMediaName) {
  const Bytes frame = EntryTag({Placeholder()});
  const auto nameIn = [&](const char* locale, const std::vector<std::pair<std::uint16_t, std::u16string>>& names) {
    const ScopedLanguage language(locale);
    CProfileData data;
    EXPECT_TRUE(Load(IccFile({{"NVX1", frame}, {"NVX2", MediaTag(names)}}), data));
    return std::u16string(data.GetProfileInfo()->MediaName);
  };
  EXPECT_EQ(nameIn("de_DE.UTF-8", {{17, u"日本"}, {9, u"English"}}), u"English");
  EXPECT_EQ(nameIn("ja_JP.UTF-8", {{17, u""}, {9, u"English"}}), u"English");
  EXPECT_EQ(nameIn("C", {{17, u"日本"}, {9, u""}}), u"Default");
  EXPECT_EQ(nameIn("ja_JP.UTF-8", {}), u"Default");
  EXPECT_EQ(nameIn("C", {{9, std::u16string(64, u'x')}}), std::u16string(64, u'x')) << "a name fills its field";
}

TEST(Qpf, FieldsThatHaveAnotherSource) {
  CProfileData data;
  data.GetProfileInfo()->SeparateWayCode = 5;
  ASSERT_TRUE(Load(File({Placeholder()}, {}, {3, 0, 0, ~std::uint64_t{0}, u"", 9}), data));
  const _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  EXPECT_EQ(info.SeparateWayCode, 5);
  EXPECT_EQ(std::u16string(info.RevisionCode), u"FFFF");
  EXPECT_EQ(std::u16string(info.Binary.StoredRevisionCode), u"FFFF");
  EXPECT_EQ(info.UpdateTime.wYear, 0) << "a time that cannot be broken down";

  // Numbers of the printer are signed, and cut to their fields.
  Bytes block = With(With(With(HeaderBlock(0), 12, static_cast<std::uint32_t>(-5)), 16, ~0u), 20, 123);
  CNvxMemFile stream(block.data(), static_cast<std::uint32_t>(block.size()));
  CProfileData odd;
  ASSERT_TRUE(Format().LoadHeader(stream, &odd));
  EXPECT_EQ(std::u16string(odd.GetProfileInfo()->ModelCode), u"-005");
  EXPECT_EQ(std::u16string(odd.GetProfileInfo()->ModelSubCode), u"-1");
  EXPECT_EQ(std::u16string(odd.GetProfileInfo()->InternalCode), u"12");

  // A record that held text must not be taken for pointers.
  CProfileData text;
  std::memset(&text.GetProfileInfo()->Text, 'x', sizeof text.GetProfileInfo()->Text);
  text.GetProfileInfo()->LayoutNumber = 1;
  const Bytes noNames = IccFile({{"NVX1", EntryTag({Placeholder()})}, {"NVX2", MediaTag({})}});
  ASSERT_TRUE(Load(noNames, text));
  EXPECT_EQ(text.GetProfileInfo()->Binary.MediaInfo, nullptr);
  EXPECT_EQ(text.GetProfileInfo()->Binary.MediaInfoCount, 0u);
}

TEST(Qpf, SavesTheSameBytesAgain) {
  const ScopedVariable time("SOURCE_DATE_EPOCH", "1800000000");
  const std::vector<StoredEntry> entries{
      {6, 6, CurveSet(2, {1, 2, 3, 4}), 1, 9, "first"}, {7, 6, Bytes(7, 3), 0, 0, "raw"}, Placeholder()};
  const Bytes mask = MaskStream(6);
  const Bytes file = File(entries, {{"NVX5", RouteTag(mask)}, {"NVX3", RouteTag(Bytes(5, 9))}});
  CProfileData data;
  ASSERT_TRUE(Load(file, data));
  EXPECT_TRUE(data.GetProfileInfo()->HasOutputBlock);
  CICCProfile inner;
  CProfileDataEntry* const icc = data.GetProfileDataEntry(4, 10);
  EXPECT_EQ(icc->GetPayloadState(), nvx::PayloadState::kWhole);
  ASSERT_TRUE(inner.OpenBuffer(icc->GetRefBuffer(), icc->GetSize(), false));
  for (const char* const tag : kPrivateTags) EXPECT_FALSE(inner.IsTagPresent(tag)) << tag;

  const auto saved = Save(data, nvx::kSaveReplaceProfile | nvx::kSaveCalibration);
  ASSERT_TRUE(saved);
  const QpfReader reader(*saved);
  EXPECT_EQ(reader.Tag("NVX1"), EntryTag(entries, {0x00040003, 720, 1440, 1800000000}));
  EXPECT_EQ(reader.Tag("NVX2"), QpfReader(file).Tag("NVX2"));
  EXPECT_EQ(reader.Body("NVX3"), Bytes({9, 9, 9, 9, 9, 0, 0, 0}));
  EXPECT_FALSE(reader.Has("NVX4")) << "asked for, but there is no such route";
  EXPECT_EQ(reader.Body("NVX5"), mask);
  EXPECT_EQ(reader.Tag("wtpt"), Bytes(20, 1));
  EXPECT_EQ(reader.Entries().size(), 3u);

  // What was padded comes back with its padding, and only then; a second save differs in its time alone.
  CProfileData again;
  ASSERT_TRUE(Load(*saved, again));
  EXPECT_EQ(again.GetProfileDataEntry(256, 18)->GetSize(), 8u);
  EXPECT_EQ(Save(again, nvx::kSaveReplaceProfile), saved);
  EXPECT_EQ(Save(again, 0xFFFF & ~nvx::kSaveReplaceProfile).value().size(), saved->size() - 12 - 20);
}

TEST(Qpf, HeaderBlockKeepsWhatLiesBehindATerminator) {
  Bytes block = HeaderBlock(0);
  for (const std::size_t offset : {238u, 302u, 366u, 374u}) block[offset] = 0x5A;  // last unit of each text
  Format format;
  CProfileData data;
  CNvxMemFile stream(block.data(), static_cast<std::uint32_t>(block.size()));
  ASSERT_TRUE(format.LoadHeader(stream, &data));
  AddFrame(data);
  const auto saved = Save(data);
  ASSERT_TRUE(saved);
  const Bytes tag = QpfReader(*saved).Tag("NVX1");
  EXPECT_TRUE(std::equal(block.begin() + 108, block.end(), tag.begin() + 108));
}

TEST(Qpf, SizesAndCounts) {
  CProfileFileQPFv3 format;
  CProfileData data;
  EXPECT_EQ(format.GetSizeNvx1Tag(&data), 0u);
  EXPECT_EQ(format.GetSizeNvx3Tag(&data), 0u);
  EXPECT_EQ(format.GetSizeNvx2Tag(&data), 16u);
  EXPECT_FALSE(Save(data)) << "no ICC entry";
  AddFrame(data);
  EXPECT_EQ(QpfReader(Save(data).value()).Tag("NVX1").size(), 696u);
  EXPECT_EQ(QpfReader(Save(data).value()).Tag("NVX2"), MediaTag({}));
  AddEntry(data, 6, Bytes(10, 1));
  AddEntry(data, 7, Bytes(7, 2));
  data.GetProfileInfo()->Binary.MediaInfo = data.CreateMediaInfoArray(2);
  data.GetProfileInfo()->Binary.MediaInfoCount = 2;
  EXPECT_EQ(format.GetSizeNvx1Tag(&data), 1308u);
  EXPECT_EQ(format.GetEntryCountWithoutICCProfile(&data), 2u);
  const auto saved = Save(data);
  ASSERT_TRUE(saved);
  const QpfReader reader(*saved);
  EXPECT_EQ(reader.Tag("NVX1").size(), 1308u);
  EXPECT_EQ(reader.Tag("NVX2").size(), 276u);
  EXPECT_EQ(reader.Entries().size(), 3u);
  EXPECT_EQ(reader.Entries()[2].label, "icc");
  EXPECT_EQ(reader.Entries()[2].bytes.size(), 0u);
  EXPECT_THAT(TypesOn(data, 4), ElementsAre(6, 7, 10)) << "the ICC entry has moved to the end";
}

TEST(Qpf, VersionTellsWhatTheFileHolds) {
  struct Case {
    bool mask, output, large, special, five;
    std::uint8_t minor;
  };
  for (const Case& c : {Case{false, false, false, false, false, 0}, Case{true, false, false, false, false, 1},
                        Case{true, false, true, false, false, 2}, Case{true, false, true, true, false, 3},
                        Case{true, true, true, true, false, 4}, Case{false, true, true, false, false, 2},
                        Case{true, true, true, true, true, 5}}) {
    CProfileData data;
    AddFrame(data);
    AddEntry(data, 27, MaskStream(3), 8);
    AddEntry(data, 28, {1, 2, 3}, 1024);
    AddEntry(data, 30, {1, 2, 3, 4}, 2048);
    _tagDeviceProfileInfo& info = *data.GetProfileInfo();
    info.HasMaskDownload = c.mask;
    info.HasOutputBlock = c.output;
    info.HasLargeParameter = c.large;
    info.HasSpecialColor = c.special;
    info.SaveVersion5 = c.five;
    info.ProfileMajorVersion = 2;
    const auto saved = Save(data);
    ASSERT_TRUE(saved);
    const QpfReader reader(*saved);
    const Bytes tag = reader.Tag("NVX1");
    EXPECT_EQ(Bytes(tag.begin() + 100, tag.begin() + 104), Bytes({3, 0, c.minor, 0}));
    EXPECT_EQ(info.ProfileMajorVersion, 3u);
    EXPECT_EQ(info.ProfileMinorVersion, c.minor);
    EXPECT_EQ(reader.Has("NVX5"), c.mask);
    EXPECT_EQ(reader.Has("NVX6"), c.large);
    EXPECT_EQ(reader.Has("NVX7"), c.special);
  }
}

TEST(Qpf, DetectionGoesByTheVersionWord) {
  const TempFolder folder;
  const auto detect = [&](const Bytes& file) {
    WriteBytes(folder.File("a.icc"), file);
    return std::unique_ptr<CProfileFile>(CProfileFile::CreateProfileFile(folder.WideFile("a.icc").c_str(), true));
  };
  const auto isLater = [&](std::uint32_t version) {
    const auto format = detect(File({Placeholder()}, {}, {version}));
    EXPECT_EQ(format->GetMyFormat(), 4);
    return dynamic_cast<CProfileFileQPFv4*>(format.get()) != nullptr;
  };
  EXPECT_TRUE(isLater(0x00050003));
  EXPECT_FALSE(isLater(0x00040003));
  EXPECT_TRUE(isLater(0x00000004));
  EXPECT_FALSE(isLater(0x00090002));
  EXPECT_EQ(detect(IccFile({{"NVX1", Bytes(20, 0)}}))->GetMyFormat(), 4);
  EXPECT_EQ(detect(IccFile({{"wtpt", Bytes(20, 0)}}))->GetMyFormat(), 6);
  EXPECT_EQ(detect(Bytes(500, 1)), nullptr);

  CICCProfile profile;
  const auto open = [&](const Bytes& file) {
    return profile.OpenBuffer(file.data(), static_cast<std::uint32_t>(file.size()), false);
  };
  CProfileFileQPFv3 format;
  ASSERT_TRUE(open(File({{6, 6, {1, 2, 3}}, Placeholder()}, {}, {0x00040003})));
  EXPECT_EQ(format.GetProfileMajorVersion(profile), 3);
  EXPECT_EQ(format.GetProfileMinerVersion(profile), 4);
  ASSERT_TRUE(open(File({{6, 7, {}}}, {}, {0x00040003})));
  EXPECT_EQ(format.GetProfileMajorVersion(profile), 0) << "an entry of another form does not load";
  EXPECT_EQ(format.GetProfileMinerVersion(profile), -1);
}

TEST(Qpf, LaterTagsBecomeOneEntryEach) {
  CProfileData data;
  const Bytes special = ByteBuilder().Text("RCPS").U32(32, 1, 0, 1, 0).Zero(8);
  ASSERT_TRUE(Load(File({Placeholder()}, {{"NVX3", RouteTag({7})},
                                          {"NVX4", RouteTag({1, 2, 3})},
                                          {"NVX5", RouteTag(MaskStream(3))},
                                          {"NVX6", RouteTag({4})},
                                          {"NVX7", RouteTag(special)}}),
                   data));
  EXPECT_EQ(BytesOf(*data.GetProfileDataEntry(256, 18)), Bytes({7}));
  EXPECT_EQ(BytesOf(*data.GetProfileDataEntry(512, 19)), Bytes({1, 2, 3})) << "does not parse, stays";
  EXPECT_EQ(BytesOf(*data.GetProfileDataEntry(8, 27)), MaskStream(3));
  EXPECT_EQ(BytesOf(*data.GetProfileDataEntry(1024, 28)), Bytes({4}));
  EXPECT_TRUE(data.GetProfileDataEntry(2048, 30)->IsComplete());
  const _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  EXPECT_TRUE(info.HasMaskDownload && info.HasLargeParameter && info.HasSpecialColor);
  EXPECT_FALSE(info.HasOutputBlock);
  EXPECT_EQ(info.SeparateWayCode, 3) << "special colours of type 1";

  for (const std::uint32_t flag : {0u, nvx::kSaveReplaceProfile, nvx::kSaveCalibration}) {
    const auto some = Save(data, flag);
    ASSERT_TRUE(some);
    EXPECT_EQ(QpfReader(*some).Has("NVX3"), flag == nvx::kSaveReplaceProfile);
    EXPECT_EQ(QpfReader(*some).Has("NVX4"), flag == nvx::kSaveCalibration);
  }

  // One block of type 5 is the other class, whatever follows; too short a tag is the first.
  CProfileData patterns;
  const Bytes type5 = ByteBuilder().U32(2, 0, 1).Zero(8).Text("TFEW").U32(24, 5).Zero(12);
  ASSERT_TRUE(Load(File({Placeholder()}, {{"NVX5", RouteTag(type5)}}), patterns));
  EXPECT_THAT(TypesOn(patterns, 8), ElementsAre(29));
  CProfileData cut;
  ASSERT_TRUE(Load(File({Placeholder()}, {{"NVX5", RouteTag(Bytes(type5.begin(), type5.end() - 1))}}), cut));
  EXPECT_THAT(TypesOn(cut, 8), ElementsAre(27));

  // Several entries of a route stand one behind the other in the tag.
  AddEntry(data, 2, {8, 9}, 256);
  const auto saved = Save(data, nvx::kSaveReplaceProfile);
  ASSERT_TRUE(saved);
  EXPECT_EQ(QpfReader(*saved).Body("NVX3"), Bytes({7, 8, 9, 0}));

  // And one without bytes has no tag, whatever stood in the frame, so that the file loads.
  CProfileData empty;
  AddEntry(empty, 10, IccFile({{"NVX3", RouteTag({1})}, {"wtpt", Bytes(20, 1)}}));
  AddEntry(empty, 18, {}, 256);
  AddEntry(empty, 28, {}, 1024);
  empty.GetProfileInfo()->HasLargeParameter = true;
  const auto small = Save(empty, nvx::kSaveReplaceProfile);
  ASSERT_TRUE(small);
  EXPECT_FALSE(QpfReader(*small).Has("NVX3") || QpfReader(*small).Has("NVX6"));
  CProfileData again;
  EXPECT_TRUE(Load(*small, again));
}

TEST(Qpf, CurvesBecome16BitAndWhatDoesNotParseStays) {
  const Bytes whole = CurveSet(1, {1, 2, 3, 4});
  const Bytes cut(whole.begin(), whole.end() - 1);
  CProfileData data;
  ASSERT_TRUE(Load(File({{6, 6, whole}, {7, 6, cut}, {5, 6, {9}}, Placeholder()}), data));
  auto* const parsed = dynamic_cast<CProfileCurveEntry*>(data.GetProfileDataEntry(4, 6));
  EXPECT_EQ(parsed->GetCurveData()->GetCurveDataSizeType(), 2u);
  EXPECT_EQ(parsed->GetCurveData()->FindInkIDEntry(1)->GetDataType(), 2u);
  EXPECT_EQ(BytesOf(*parsed), CurveSet(2, {1, 2, 3, 4}));
  EXPECT_EQ(BytesOf(*data.GetProfileDataEntry(4, 7)), cut);
  EXPECT_EQ(BytesOf(*data.GetProfileDataEntry(4, 5)), Bytes({9}));
}

TEST(Qpf, AnEntryMayStandTwiceAndTheIccEntryElsewhereToo) {
  const ScopedVariable time("SOURCE_DATE_EPOCH", "1700000001");
  const Bytes curves = CurveSet(2, {1, 2});
  CProfileData data;
  ASSERT_TRUE(Load(File({{6, 6, curves}, Placeholder(), {6, 6, {5}}, {10, 3, {6}}}), data));
  EXPECT_THAT(TypesOn(data, 4), ElementsAre(6, 10, 6, 10));
  data.SetProfileDataEntry(data.GetProfileDataEntryFromList(10), 1);  // gives the same entry a second route
  const Bytes bytes = BytesOf(*data.GetProfileDataEntryFromList(10));
  const auto saved = Save(data);
  ASSERT_TRUE(saved);
  EXPECT_EQ(QpfReader(*saved).Tag("NVX1"), EntryTag({{6, 6, curves}, {6, 6, curves}, Placeholder()}, {3, 720, 1440}));
  EXPECT_THAT(TypesOn(data, 4), ElementsAre(6, 6, 10));
  EXPECT_THAT(TypesOn(data, 1), ElementsAre(10));
  EXPECT_EQ(BytesOf(*data.GetProfileDataEntryFromList(10)), bytes);
}

TEST(Qpf, RefusesPrivateTagsCutAtEveryLength) {
  const std::vector<StoredEntry> entries{{6, 6, {1, 2, 3, 4}, 1, 0, "x"}, Placeholder()};
  const Bytes entryTag = EntryTag(entries);
  const Bytes mediaTag = MediaTag({{9, u"name"}});
  for (std::size_t size = 0; size < entryTag.size(); ++size) {
    CProfileData data;
    nvx::Diagnosis diagnosis;
    const Bytes cut = First(entryTag, size);
    ASSERT_FALSE(Load(IccFile({{"NVX1", cut}, {"NVX2", mediaTag}}), data, &diagnosis)) << size;
    ASSERT_TRUE(diagnosis.HasErrors());
  }
  for (std::size_t size = 0; size < 146; ++size) {
    CProfileData data;
    const Bytes cut = First(mediaTag, size);
    ASSERT_FALSE(Load(IccFile({{"NVX1", entryTag}, {"NVX2", cut}}), data)) << size;
  }
  for (const char* const tag : {"NVX3", "NVX4", "NVX5", "NVX6", "NVX7"}) {
    for (std::size_t size = 0; size <= 13; ++size) {
      CProfileData data;
      EXPECT_EQ(Load(File(entries, {{tag, Bytes(size, 1)}}), data), size == 0 || size == 13) << tag << size;
    }
  }
}

TEST(Qpf, SaysWhereATagIsBroken) {
  const auto offsetOf = [](const Bytes& file, const std::string& tag) {
    for (std::size_t line = 132;; line += 12) {
      if (std::string(file.begin() + static_cast<std::ptrdiff_t>(line),
                      file.begin() + static_cast<std::ptrdiff_t>(line + 4)) == tag)
        return static_cast<std::size_t>(file[line + 6]) << 8 | file[line + 7];
    }
  };
  struct Case {
    std::size_t offset;  // in NVX1, where 0xEE is put
    std::uint64_t found;
    const char* rule;
  };
  const Bytes good = File({{6, 6, {1, 2, 3, 4}}, Placeholder()});
  for (const Case& c :
       {Case{104, 400, "entry table: count beyond the end"}, Case{400, 400, "entry header: wrong magic"},
        Case{692, 692, "entry header: wrong magic"}, Case{984, 988, "entry body: wrong magic"},
        Case{992, 996, "entry body: wrong magic"}, Case{408, 988, "entry header: unknown used type"},
        Case{412, 988, "entry header: format type does not belong to the used type"},
        Case{416, 988, "entry header: body size beyond the end"}}) {
    Bytes bad = good;
    const std::size_t start = offsetOf(good, "NVX1");
    bad[start + c.offset] = 0xEE;
    CProfileData data;
    nvx::Diagnosis diagnosis;
    EXPECT_FALSE(Load(bad, data, &diagnosis)) << c.rule;
    ASSERT_FALSE(diagnosis.Findings().empty());
    EXPECT_EQ(diagnosis.Findings().back().rule, c.rule);
    EXPECT_EQ(diagnosis.Findings().back().place, "NVX1");
    EXPECT_EQ(diagnosis.Findings().back().offset, start + c.found) << c.rule;
  }
  Bytes bad = good;
  bad[offsetOf(good, "NVX2") + 12] = 3;
  CProfileData data;
  nvx::Diagnosis diagnosis;
  EXPECT_FALSE(Load(bad, data, &diagnosis));
  EXPECT_EQ(diagnosis.Findings().back().rule, "media names: count beyond the end");
}

TEST(Qpf, LoadsWithoutThePlaceholder) {
  CProfileData data;
  nvx::Diagnosis diagnosis;
  ASSERT_TRUE(Load(File({}), data, &diagnosis));
  EXPECT_FALSE(diagnosis.HasErrors());
  EXPECT_THAT(TypesOn(data, 4), ElementsAre(10));
  EXPECT_TRUE(data.GetProfileDataEntry(4, 10)->IsComplete());
  CProfileData flagged;
  StoredEntry placeholder = Placeholder();
  placeholder.complete = 0;
  ASSERT_TRUE(Load(File({placeholder}), flagged, &diagnosis));
  EXPECT_FALSE(diagnosis.HasErrors()) << "an empty placeholder is no fault";
  EXPECT_FALSE(flagged.GetProfileDataEntry(4, 10)->IsComplete());
  EXPECT_STREQ(flagged.GetProfileDataEntry(4, 10)->GetLabelString(), "icc");
}

TEST(Qpf, WhatIsMissingFailsTheSave) {
  CProfileData data;
  AddFrame(data, 1);
  EXPECT_FALSE(Save(data)) << "no route 4";
  AddEntry(data, 6, {1});
  EXPECT_FALSE(Save(data)) << "the ICC entry stands not on route 4";
  CProfileData noProfile;
  AddEntry(noProfile, 10, Bytes(200, 1));
  EXPECT_FALSE(Save(noProfile));
  for (bool _tagDeviceProfileInfo::*const flag :
       {&_tagDeviceProfileInfo::HasMaskDownload, &_tagDeviceProfileInfo::HasLargeParameter,
        &_tagDeviceProfileInfo::HasSpecialColor}) {
    CProfileData flagged;
    AddFrame(flagged);
    flagged.GetProfileInfo()->*flag = true;
    EXPECT_FALSE(Save(flagged)) << "a flag without its route";
  }
}

TEST(Qpf, ASaveNamesTheProfileAfterItsFileOrLeavesTheOldOne) {
  const TempFolder folder;
  CProfileData good, none;
  AddFrame(good);
  EXPECT_FALSE(CProfileFileQPFv3().SaveData(u"/dev/full", &good, 0));
  EXPECT_FALSE(CProfileFileQPFv3().SaveData(folder.WideFile("a.icc").c_str(), nullptr, 0));
  EXPECT_TRUE(CProfileFileQPFv3().SaveData(folder.WideFile("a.icc").c_str(), &good, 0));
  const Bytes saved = ReadBytes(folder.File("a.icc"));
  const Bytes description = QpfReader(saved).Tag("desc");
  EXPECT_EQ(Bytes(description.begin() + 12, description.begin() + 18), Bytes({'a', '.', 'i', 'c', 'c', 0}));
  EXPECT_FALSE(CProfileFileQPFv3().SaveData(folder.WideFile("a.icc").c_str(), &none, 0));
  EXPECT_EQ(ReadBytes(folder.File("a.icc")), saved);
  EXPECT_EQ(folder.FileCount(), 1u);
}

}  // namespace
