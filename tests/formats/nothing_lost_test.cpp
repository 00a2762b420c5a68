// What a true result must not hide, and what a false one must leave alone: one test for each way in which bytes were
// once lost.
#include "core/replacing_file.h"
#include "support/entry_bytes.h"
#include "support/entry_forms.h"
#include "support/environment.h"
#include "support/qpf_builder.h"
#include "support/record_text.h"

#include <nvxprofile/calibration_history.h>
#include <nvxprofile/convert.h>
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/special_color.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace nvx::test {
namespace {

using testing::ElementsAre;

// Two curves of which the second is cut short.
Bytes DamagedCurves() {
  Bytes bytes = TwoCurves();
  bytes.pop_back();
  return bytes;
}

TEST(PayloadState, WhatAReaderPassesOverStaysInTheBuffer) {
  CMaskDownloadIncludePatternEntry entry;
  const Bytes form = With(MaskPatternsForm(), 413 + 2 * 40, 0);
  ASSERT_TRUE(Parse(entry, form));
  EXPECT_EQ(entry.GetPayloadState(), PayloadState::kPart);
  EXPECT_FALSE(entry.DataToBuffer()) << "the record with the strange magic would be gone";
  EXPECT_EQ(BytesOf(entry), form);
}

TEST(PayloadState, CopyHandsOnNoOldBytes) {
  CLinearizationEntry source;
  ASSERT_TRUE(Parse(source, TwoCurves()));
  source.GetCurveData()->FindInkIDEntry(1)->SetDataType(9);
  CLinearizationEntry target;
  SetBytes(target, {1, 2, 3});
  target.SetLabelString("own");
  EXPECT_FALSE(source.Copy(target)) << "no form carries the change";
  EXPECT_EQ(BytesOf(target), (Bytes{1, 2, 3}));
  EXPECT_STREQ(target.GetLabelString(), "own");
  EXPECT_EQ(CloneEntry(source), nullptr);
}

// A form with one calibration that holds one linearization.
Bytes CalibrationForm(const Bytes& curves) {
  ByteBuilder calibration = CalibrationFileHeader(1);
  AddHeader(calibration, {static_cast<std::uint32_t>(curves.size()), 24, 6, 1}).Text("DEAC").Append(curves);
  ByteBuilder form = CalibrationFileHeader(2);
  AddHeader(form, {8, 21, 9, 1});
  AddHeader(form, {static_cast<std::uint32_t>(calibration.Size()), 20, 10, 1});
  return form.Text("DEAC").U64(5).Text("DEAC").Append(calibration);
}

NewCalibration Named(std::u16string_view name) {
  NewCalibration calibration;
  calibration.name = name;
  calibration.time = 9;
  return calibration;
}

TEST(Calibrations, ADamagedCurveSetKeepsItsBytesThroughEveryStep) {
  const Bytes form = CalibrationForm(DamagedCurves());
  CCalibrationHistoryEntry history;
  ASSERT_TRUE(Parse(history, form));
  ASSERT_TRUE(history.DataToBuffer());
  EXPECT_EQ(BytesOf(history), form);
  ASSERT_NE(AddCalibration(history, Named(u"new")), nullptr);
  ASSERT_TRUE(history.DataToBuffer());
  ASSERT_TRUE(history.BufferToData());
  auto& calibration = dynamic_cast<CContainerEntry&>(*history.GetProfileDataEntry(1));
  EXPECT_EQ(BytesOf(*calibration.GetProfileDataEntry(0)), DamagedCurves());

  auto damaged = std::make_unique<CCalibrationLinearizationEntry>();
  EXPECT_FALSE(Parse(*damaged, DamagedCurves()));
  NewCalibration withDamage = Named(u"damaged");
  withDamage.linearization = std::move(damaged);
  const CCalibrationContainerEntry* const added = AddCalibration(history, std::move(withDamage));
  ASSERT_NE(added, nullptr);
  EXPECT_EQ(BytesOf(*added->GetChildData().Find(24, 0)), DamagedCurves());
}

TEST(Calibrations, WhatCannotBeTakenOverIsNotSaidToBe) {
  CCalibrationHistoryEntry source;
  ASSERT_TRUE(Parse(source, CalibrationForm(TwoCurves())));
  auto& calibration = dynamic_cast<CContainerEntry&>(*source.GetProfileDataEntry(1));
  auto& curves = dynamic_cast<CProfileCurveEntry&>(*calibration.GetProfileDataEntry(0));
  curves.GetCurveData()->FindInkIDEntry(1)->SetDataType(9);
  for (const std::size_t own : {2u, 0u}) {
    CCalibrationHistoryEntry history;
    if (own != 0) {
      ASSERT_TRUE(Parse(history, CalibrationForm(TwoCurves())));
    }
    const Bytes before = BytesOf(history);
    EXPECT_FALSE(history.DoImport(&source)) << own;
    EXPECT_EQ(ImportCalibrations(history, source), std::nullopt);
    EXPECT_EQ(BytesOf(history), before);
    EXPECT_EQ(history.GetEntryCount(), static_cast<int>(own));
  }
  EXPECT_FALSE(source.DataToBuffer());
  EXPECT_EQ(BytesOf(source), CalibrationForm(TwoCurves()));

  // A history that was itself read in part takes nothing in, since it could not be written.
  CCalibrationHistoryEntry broken;
  EXPECT_FALSE(Parse(broken, First(CalibrationForm(TwoCurves()), 200)));
  EXPECT_EQ(AddCalibration(broken, Named(u"x")), nullptr);
  CCalibrationHistoryEntry good;
  ASSERT_TRUE(Parse(good, CalibrationForm(TwoCurves())));
  EXPECT_EQ(ImportCalibrations(broken, good), std::nullopt);
}

std::unique_ptr<CCalibrationContainerEntry> Nested(int levels) {
  auto entry = std::make_unique<CCalibrationContainerEntry>();
  entry->InsertProfileDataEntry(0, (levels > 0 ? Nested(levels - 1) : NewEntry(21, Bytes(8, 3))).release());
  return entry;
}

int DepthOf(CContainerEntry& entry) {
  auto* const below = dynamic_cast<CContainerEntry*>(entry.GetProfileDataEntry(0));
  return below != nullptr ? 1 + DepthOf(*below) : 0;
}

TEST(Calibrations, TreesThatMoveBetweenLevelsLoseNothing) {
  // As deep as it goes: the container of the history's children is the first level.
  CCalibrationHistoryEntry history;
  history.InsertProfileDataEntry(0, Nested(6).release());
  ASSERT_TRUE(history.DataToBuffer());
  ASSERT_TRUE(history.BufferToData());
  EXPECT_EQ(DepthOf(history), 7);

  // Taken out, the tree is the outermost of its own and may be put one level deeper inside a shallow one.
  std::unique_ptr<CProfileDataEntry> tree(history.RemoveProfileDataEntry(0));
  auto& container = dynamic_cast<CContainerEntry&>(*tree);
  EXPECT_EQ(container.GetChildData().GetLevel(), 1u);
  EXPECT_TRUE(container.DataToBuffer());
  EXPECT_TRUE(container.BufferToData());
  EXPECT_EQ(DepthOf(container), 6);

  // One level too many: refused, and nothing is gone.
  CCalibrationHistoryEntry outer;
  auto middle = std::make_unique<CCalibrationContainerEntry>();
  middle->InsertProfileDataEntry(0, tree.release());
  outer.InsertProfileDataEntry(0, middle.release());
  EXPECT_FALSE(outer.DataToBuffer());
  EXPECT_EQ(outer.GetSize(), 0u);
  EXPECT_EQ(DepthOf(outer), 8);
}

TEST(Containers, AnEntryWithoutBytesStaysWithout) {
  const TempFolder folder;
  CProfileData data;
  auto* const info = new CCalibrationInfoEntry;
  data.SetProfileDataEntry(info, 4);
  info->DeleteBuffer();
  const std::u16string path = folder.WideFile("a.qct");
  ASSERT_TRUE(CProfileFileQCT().SaveData(path.c_str(), &data, 4));
  const Bytes saved = ReadBytes(folder.File("a.qct"));
  CProfileData loaded;
  ASSERT_TRUE(CProfileFileQCT().LoadData(path.c_str(), &loaded, false));
  EXPECT_EQ(loaded.GetProfileDataEntryFromList(22)->GetSize(), 0u);
  ASSERT_TRUE(CProfileFileQCT().SaveData(path.c_str(), &loaded, 4));
  EXPECT_EQ(ReadBytes(folder.File("a.qct")), saved);
}

TEST(Containers, ASecondEntryOfATypeIsToldOf) {
  CProfileAccess access;
  ASSERT_TRUE(InitFromEntries(access, {{6, 6, TwoCurves()}, {6, 6, {1, 2, 3}}}));
  EXPECT_EQ(BytesOf(*access.GetProfileData()->GetProfileDataEntryFromList(6)), TwoCurves());
  CProfileData data;
  EXPECT_TRUE(data.SetProfileDataEntry(new CLinearizationEntry, 1));
  EXPECT_FALSE(data.SetProfileDataEntry(new CLinearizationEntry, 2)) << "the first stays, on both routes";
  EXPECT_EQ(data.GetProfileDataEntry(1, 6), data.GetProfileDataEntry(2, 6));
  EXPECT_FALSE(data.SetProfileDataEntry(nullptr, 1));
}

TEST(Saves, AFormCutByTheSystemReplacesNothing) {
  const TempFolder folder;
  WriteBytes(folder.File("old"), {'o', 'l', 'd'});
  CContainerData data;
  auto curves = std::make_unique<CCalibrationLinearizationEntry>();
  curves->GetCurveData()->AddTail(MakeCurve(CCurveDataEntry::kSamples16, 1, {}).release());
  curves->GetCurveData()->FindInkIDEntry(1)->GetBuffer(100'000);
  ASSERT_TRUE(curves->DataToBuffer());
  ASSERT_EQ(data.Add(std::move(curves)), nullptr);
  {
    const ScopedFileSizeLimit limit(50'000);
    EXPECT_FALSE(CProfileFileCalibration().SaveData(folder.WideFile("old").c_str(), &data));
    CNvxFile file;
    ASSERT_TRUE(file.Open(folder.WideFile("cut").c_str(), kGenericWrite, 0, kCreateAlways));
    const Bytes block(60'000);
    EXPECT_LT(file.Write(block.data(), 60'000), 60'000u);
    EXPECT_EQ(file.Write(block.data(), 1), 0u) << "the stream has failed for good";
    EXPECT_FALSE(file.Flush());
    ASSERT_TRUE(file.Open(folder.WideFile("next").c_str(), kGenericWrite, 0, kCreateAlways));
    EXPECT_EQ(file.Write(block.data(), 9), 9u) << "the failure was that of the file before";
    EXPECT_TRUE(file.Flush());
  }
  EXPECT_EQ(ReadBytes(folder.File("old")), (Bytes{'o', 'l', 'd'}));
}

TEST(Streams, OpenedForReadingRefusesToWrite) {
  const TempFolder folder;
  WriteBytes(folder.File("a"), {1, 2, 3});
  CNvxFile file;
  ASSERT_TRUE(file.Open(folder.WideFile("a").c_str(), kGenericRead, 0, kOpenExisting));
  std::uint8_t byte = 0;
  ASSERT_EQ(file.Read(&byte, 1), 1u);
  EXPECT_EQ(file.Write("x", 1), 0u);
  EXPECT_EQ(file.GetPosition(), 1u);
  EXPECT_EQ(file.Read(&byte, 1), 1u);
  EXPECT_EQ(byte, 2);
  ASSERT_TRUE(file.Open(folder.WideFile("b").c_str(), kGenericWrite, 0, kCreateAlways));
  EXPECT_EQ(file.Write("x", 1), 1u) << "the next file is another matter";
}

TEST(Streams, NamesLeaveAloneWhatLiesBehindThem) {
  const TempFolder folder;
  WriteBytes(folder.File("name.bin"), {});
  CNvxFile file;
  ASSERT_TRUE(file.Open(folder.WideFile("name.bin").c_str(), kGenericRead, 0, kOpenExisting));
  std::u16string room(300, u'#');
  file.GetFileName(room.data());
  EXPECT_EQ(room.substr(0, 10), std::u16string(u"name.bin\0#", 10));
  room.assign(300, u'#');
  file.GetPathName(room.data());
  const std::size_t length = folder.WideFile("name.bin").size();
  EXPECT_EQ(room[length], u'\0');
  EXPECT_EQ(room[length + 1], u'#');
}

TEST(Saves, AFailedSaveLeavesTheRecordOfTheOtherGeneration) {
  const TempFolder folder;
  const std::u16string path = folder.WideFile("a.icc");
  CProfileData data;
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  info.LayoutNumber = kTextView;
  std::copy_n("Printer", 8, info.Text.Printer_Label);
  std::copy_n("Glossy", 7, info.Text.Media_Eng);
  std::copy_n(u"1234", 5, info.ModelCode);
  data.SetProfileDataEntry(new CLinearizationEntry, 4);
  const std::string before = TextOf(info);
  const auto expectAsBefore = [&] { EXPECT_EQ(TextOf(info), before); };
  EXPECT_FALSE(CProfileFileQPFv3().SaveData(path.c_str(), &data, 4)) << "there is no ICC entry";
  expectAsBefore();
  CProfileDataEntry* const icc = &AddEntry(data, 10, IccFile({{"desc", DescriptionTag("frame")}}));
  data.SetProfileDataEntry(new CInfoEntry, 4);
  info.HasLargeParameter = true;
  EXPECT_FALSE(CProfileFileQPFv3().SaveData(path.c_str(), &data, 4)) << "there is no such route";
  info.HasLargeParameter = false;
  expectAsBefore();
  EXPECT_FALSE(CProfileFileQPFv3().SaveData(folder.WideFile("none/a.icc").c_str(), &data, 4));
  expectAsBefore();
  EXPECT_EQ(data.GetProfileRoute(4)->Entries().At(1), icc) << "the ICC entry moves in a save that goes through";

  ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &data, 4));
  EXPECT_EQ(data.GetProfileRoute(4)->Entries().At(2), icc);
  EXPECT_EQ(info.LayoutNumber, kBinaryView);
  EXPECT_EQ(info.Binary.ModelNumber, 1234u) << "what the text said went over";
  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(path.c_str(), &error));
  EXPECT_EQ(access.GetProfileInfo()->ModelCode, std::u16string(u"1234"));
  EXPECT_EQ(access.GetProfileInfo()->MediaName, std::u16string(u"Glossy"));
}

TEST(Record, CopiesOwnNothing) {
  CProfileData target;
  {
    CProfileData source;
    _tagDeviceProfileInfo& info = *source.GetProfileInfo();
    info.LayoutNumber = kBinaryView;
    info.Binary = {};
    tagMedia media;
    media.Language = 9;
    media.Name[0] = u'G';
    source.SetMediaInfo({&media, 1});
    *target.GetProfileInfo() = info;  // a bare copy looks at the source's names, and releases none of them
    EXPECT_EQ(target.GetProfileInfo()->Binary.MediaInfo, info.Binary.MediaInfo);
    target.CopyProfileInfo(source);
    EXPECT_NE(target.GetProfileInfo()->Binary.MediaInfo, info.Binary.MediaInfo);
  }
  EXPECT_EQ(target.GetProfileInfo()->Binary.MediaInfo[0].Name[0], u'G');
}

TEST(Walks, LookupsAndRenewalsInsideAWalkLeaveItAlone) {
  CProfileData data;
  for (const std::uint32_t type : {2u, 6u, 7u}) {
    AddEntry(data, type, {});
  }
  CProfileRoute& route = *data.GetProfileRoute(4);
  std::vector<std::uint32_t> types;
  bool more = route.GetHeadPos();
  while (more && types.size() < 9) {
    types.push_back(route.GetNext(more)->GetUsedType());
    EXPECT_NE(data.GetProfileDataEntry(4, 2), nullptr);
  }
  EXPECT_THAT(types, ElementsAre(2, 6, 7));

  CLinearizationEntry entry;
  ASSERT_TRUE(Parse(entry, TwoCurves()));
  CCurveData& curves = *entry.GetCurveData();
  std::vector<std::uint32_t> inks;
  more = curves.GetHeadPosition();
  while (more && inks.size() < 9) {
    inks.push_back(curves.GetNext(more)->GetInkID());
    EXPECT_TRUE(entry.DataToBuffer());
  }
  EXPECT_THAT(inks, ElementsAre(1, 2));
}

TEST(CurrentGeneration, DamagedAndOddCurvesAnswerAs16BitAndSurviveASave) {
  const Bytes odd = CurveSetHeader(6, 2)
                        .Append(CurveHeader({.ink = 1, .type = 1, .size = 3}))
                        .Append(CurveHeader({.ink = 2, .type = 1, .size = 2}))
                        .Text("SDEC")
                        .Fill(5, 3)
                        .Text("SDEC")
                        .Fill(6, 2);
  for (const Bytes& curves : {odd, DamagedCurves()}) {
    const TempFolder folder;
    CProfileAccess access;
    WriteBytes(folder.File("p.icc"), IccFile({{"desc", DescriptionTag("frame")},
                                              {"NVX1", EntryTag({{6, 6, curves}, Placeholder()})},
                                              {"NVX2", MediaTag({{9, u"Glossy"}})}}));
    CError loading;
    ASSERT_TRUE(access.Init(folder.WideFile("p.icc").c_str(), &loading));
    const auto expectAnswer = [&] {
      EXPECT_EQ(access.GetProfileData()->GetProfileDataEntryFromList(6)->GetSize(), curves.size());
      CError error;
      int bytes = 0;
      int type = 0;
      EXPECT_NE(access.GetLinearization(1, bytes, type, &error), nullptr);
      EXPECT_EQ(bytes, 3);
      EXPECT_EQ(type, 2);
    };
    expectAnswer();
    // Whoever looks at the set makes the queries parse it anew.
    access.GetProfileData()->GetProfileDataEntryFromList(6)->GetFormatData();
    expectAnswer();
    const std::u16string path = folder.WideFile("p.icc");
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), access.GetProfileData(), 4));
    CError error;
    ASSERT_TRUE(access.Init(path.c_str(), &error));
    expectAnswer();
  }
}

TEST(Serializers, NullDataGiveFalse) {
  CNvxMemFile stream;
  EXPECT_FALSE(CModelFile().SaveFile(stream, nullptr) || CModelFile().LoadFile(stream, nullptr));
  EXPECT_FALSE(CInfoFile().SaveFile(stream, nullptr) || CInfoFile().LoadFile(stream, nullptr));
  EXPECT_FALSE(CMediaPropertyFile().SaveFile(stream, nullptr) || CMediaPropertyFile().LoadFile(stream, nullptr));
  EXPECT_FALSE(CLutFile().SaveFile(stream, nullptr) || CLutFile().LoadFile(stream, nullptr));
  EXPECT_FALSE(CMaskParameterFile().SaveFile(stream, nullptr) || CMaskPatternFile().SaveFile(stream, nullptr));
  EXPECT_FALSE(CLargeParameterFile().SaveFile(stream, nullptr) || CLargeParameterFile().LoadFile(stream, nullptr));
  EXPECT_FALSE(CSpecialColorInfoFile().SaveFile(stream, nullptr) || CSpecialColorInfoFile().LoadFile(stream, nullptr));
  EXPECT_FALSE(CProfileFileQPFv3().SaveData(stream, nullptr, 0) ||
               CProfileFileQPFv3().LoadData(stream, nullptr, false));
  EXPECT_EQ(stream.Buffer, nullptr);
  std::int32_t count = 0;
  CError error;
  EXPECT_FALSE(CProfileAccess().GetPassDensity(count, nullptr, &error));
}

}  // namespace
}  // namespace nvx::test
