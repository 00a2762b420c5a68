// The entries of a calibration history and the form that nests them.
#include "core/payload.h"
#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>
#include <nvxprofile/diagnosis.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace nvx::test {
namespace {

using testing::ElementsAre;

// A form whose entries all have the used type and format type, told apart by option info.
Bytes Form(std::uint32_t usedType, std::uint32_t formatType,
           const std::vector<std::pair<std::uint32_t, Bytes>>& entries, std::uint32_t option = 0) {
  ByteBuilder form = CalibrationFileHeader(static_cast<std::uint32_t>(entries.size()), option);
  for (const auto& [info, bytes] : entries) {
    AddHeader(form, {static_cast<std::uint32_t>(bytes.size()), usedType, formatType, 0, info, 0, 0, {}});
  }
  for (const auto& [info, bytes] : entries) form.Text("DEAC").Append(bytes);
  return form;
}

std::unique_ptr<CCalibrationInklimitEntry> OneCurve(std::uint32_t ink, std::uint32_t sample) {
  auto entry = std::make_unique<CCalibrationInklimitEntry>();
  auto* const curve = new CCurveDataEntry16;
  curve->SetInkID(ink);
  curve->Add(sample);
  entry->GetCurveData()->AddTail(curve);
  return entry;
}

// A history with a target made at `createTime` and calibrations of the given codes, each named after its code.
void Fill(CCalibrationHistoryEntry& history, std::int64_t createTime, const std::vector<std::uint32_t>& codes) {
  auto* const target = new CCalibrationTargetEntry;
  Parse(*target, ByteBuilder().U64(static_cast<std::uint64_t>(createTime)));
  history.SetProfileDataEntry(target);
  for (const std::uint32_t code : codes) {
    NewCalibration calibration;
    const std::u16string name = u"c" + std::u16string(1, static_cast<char16_t>(u'0' + code));
    calibration.name = name;
    calibration.inkLimit = OneCurve(3, 100 + code);
    AddCalibration(history, std::move(calibration))->SetOptionInfo(code);
  }
}

std::vector<std::uint32_t> CodesOf(CCalibrationHistoryEntry& history) {
  std::vector<std::uint32_t> codes;
  for (int i = 1; i < history.GetEntryCount(); ++i) codes.push_back(history.GetProfileDataEntry(i)->GetOptionInfo());
  return codes;
}

std::int64_t TargetTime(CCalibrationHistoryEntry& history) {
  return dynamic_cast<CCalibrationTargetEntry&>(*history.GetProfileDataEntry(21, 0)).GetCreateTime();
}

std::uint32_t FirstSample(CCalibrationHistoryEntry& history, std::uint32_t code) {
  auto& calibration = dynamic_cast<CContainerEntry&>(*history.GetProfileDataEntry(20, code));
  auto& curves = dynamic_cast<CProfileCurveEntry&>(*calibration.GetProfileDataEntry(23, 0));
  std::uint32_t sample = 0;
  curves.GetCurveData()->FindInkIDEntry(3)->GetAt(0, sample);
  return sample;
}

TEST(CalibrationForm, HasThreeLevels) {
  CCalibrationHistoryEntry history;
  ASSERT_TRUE(Parse(history, HistoryForm()));
  ASSERT_EQ(history.GetEntryCount(), 2);
  EXPECT_EQ(TargetTime(history), 99);
  EXPECT_TRUE(history.GetProfileDataEntry(0)->IsComplete());
  auto& calibration = dynamic_cast<CCalibrationContainerEntry&>(*history.GetProfileDataEntry(20, 7));
  EXPECT_FALSE(calibration.IsComplete());
  EXPECT_EQ(calibration.GetContainerData()->Value, -5);
  EXPECT_EQ(calibration.GetContainerData()->Time, 0x123456789A);
  EXPECT_EQ(std::u16string(calibration.GetContainerData()->Name), u"first");
  EXPECT_EQ(FirstSample(history, 7), 1u);
  EXPECT_EQ(history.GetNextID(), 8u);
}

TEST(CalibrationForm, DescriptionsTravelInTheHeaderAboveCutTo20Characters) {
  for (const std::size_t length : {19u, 20u, 21u, 23u, 24u, 25u}) {
    tag_ContainerData description;
    const std::u16string name(length, u'n');
    std::copy_n(name.begin(), std::min<std::size_t>(length, 24), description.Name);
    CCalibrationHistoryEntry history;
    auto* const calibration = new CCalibrationContainerEntry;
    calibration->SetContainerData(&description);
    calibration->SetContainerData(nullptr);
    calibration->SetLabelString("gone after a reload");
    history.SetProfileDataEntry(calibration);
    ASSERT_TRUE(history.DataToBuffer());
    ASSERT_TRUE(history.BufferToData());
    auto& loaded = dynamic_cast<CContainerEntry&>(*history.GetProfileDataEntry(0));
    EXPECT_EQ(std::u16string(loaded.GetContainerData()->Name), name.substr(0, 20));
    EXPECT_STREQ(loaded.GetLabelString(), "");
  }
}

TEST(CalibrationForm, LoadsFromAnOffsetAndFillsFixedChildrenAgain) {
  Bytes bytes(100, 0xEE);
  const Bytes form = Form(21, 9, {{0, ByteBuilder().U64(5)}, {1, {}}}, 7);
  bytes.insert(bytes.end(), form.begin(), form.end());
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  CContainerData data;
  auto* const fixed = new CCalibrationTargetEntry;
  data.SetProfileDataEntry(fixed);

  CProfileFileCalibration file;
  file.SetOffsetLoadPoint(100);
  ASSERT_TRUE(file.LoadData(stream, &data, true));
  EXPECT_EQ(fixed->GetSize(), 0u);
  ASSERT_TRUE(file.LoadData(stream, &data, false));
  EXPECT_EQ(file.GetOptionValue(), 7u);
  ASSERT_EQ(data.Children().Count(), 2u);
  EXPECT_EQ(data.Children().At(0), fixed);
  EXPECT_EQ(fixed->GetCreateTime(), 5);
  EXPECT_EQ(data.Children().At(1)->GetSize(), 0u);
  EXPECT_FALSE(file.LoadData(stream, nullptr, false));

  // Saving starts where the stream stands.
  const TempFolder folder;
  ASSERT_TRUE(file.SaveData(folder.WideFile("history.cal").c_str(), &data));
  EXPECT_EQ(ReadBytes(folder.File("history.cal")), form);
  CContainerData again;
  EXPECT_TRUE(CProfileFileCalibration().LoadData(folder.WideFile("history.cal").c_str(), &again, false));
  EXPECT_EQ(again.Children().Count(), 2u);
}

TEST(CalibrationForm, EqualKeysBecomeOneChild) {
  CCalibrationHistoryEntry history;
  ASSERT_TRUE(Parse(history, Form(21, 9, {{0, ByteBuilder().U64(1)}, {4, {}}, {0, ByteBuilder().U64(2)}, {0, {}}})));
  ASSERT_EQ(history.GetEntryCount(), 2);
  EXPECT_EQ(TargetTime(history), 2);
}

TEST(CalibrationForm, EmptyBuffersStayEmpty) {
  for (const auto& [type, format] : {std::pair(21u, 9u), {22u, 11u}, {23u, 6u}, {20u, 10u}}) {
    const Bytes form = Form(type, format, {{0, {}}});
    CCalibrationHistoryEntry history;
    ASSERT_TRUE(Parse(history, form));
    EXPECT_EQ(history.GetProfileDataEntry(0)->GetSize(), 0u);
    EXPECT_TRUE(history.DataToBuffer());
    EXPECT_EQ(BytesOf(history), form);
  }
}

TEST(CalibrationForm, RefusesDamageAndKeepsWhatCameBefore) {
  for (const auto& [offset, next] : {std::pair(0u, 3u), {8, 3}, {12, 8}}) {
    CCalibrationHistoryEntry history;
    history.SetNextID(3);
    EXPECT_FALSE(Parse(history, With(HistoryForm(), offset, 0x20000)));
    EXPECT_EQ(history.PeekNextID(), next) << offset;
  }

  // A second header of the same child with another format type.
  Bytes twice = Form(21, 9, {{0, ByteBuilder().U64(1)}, {0, ByteBuilder().U64(2)}});
  StoreLittle(twice.data() + 20 + 88 + 16, 6u);
  CCalibrationHistoryEntry history;
  EXPECT_FALSE(Parse(history, twice));
  ASSERT_EQ(history.GetEntryCount(), 1);
  EXPECT_EQ(TargetTime(history), 1);
}

TEST(CalibrationForm, DiagnosisNamesThePlaceInTheTree) {
  Bytes form = HistoryForm();
  const std::size_t calibration = form.size() - 172 - 112;
  StoreLittle(form.data() + calibration + 20 + 12, 15u);
  CCalibrationHistoryEntry history;
  Diagnosis diagnosis;
  history.SetDiagnosis(&diagnosis);
  EXPECT_TRUE(Parse(history, form));
  ASSERT_EQ(diagnosis.Findings().size(), 1u);
  EXPECT_EQ(diagnosis.Findings()[0].place, "entry 20.7");
  EXPECT_EQ(diagnosis.Findings()[0].rule, "calibration entry header: unknown used type");
  EXPECT_EQ(diagnosis.Findings()[0].offset, calibration + 112);
}

Bytes Nested(int levels) {
  Bytes form = Form(21, 9, {{0, ByteBuilder().U64(1)}});
  for (int level = 1; level < levels; ++level) form = Form(20, 10, {{0, form}});
  return form;
}

int DepthOf(CContainerEntry& entry) {
  auto* const child = dynamic_cast<CContainerEntry*>(entry.GetProfileDataEntry(0));
  return (entry.GetEntryCount() != 0 ? 1 : 0) + (child != nullptr ? DepthOf(*child) : 0);
}

TEST(CalibrationForm, NestingEndsAtTheEighthLevelWithoutLoss) {
  for (const int levels : {3, 8, 9, 12, 1000}) {
    const Bytes form = Nested(levels);
    CCalibrationHistoryEntry history;
    ASSERT_TRUE(Parse(history, form));
    EXPECT_EQ(DepthOf(history), std::min(levels, 8));
    ASSERT_TRUE(history.DataToBuffer());
    EXPECT_EQ(BytesOf(history), form);

    CCalibrationHistoryEntry other;
    Fill(other, 0, {5, 6});
    ASSERT_TRUE(other.DoImport(&history));
    ASSERT_TRUE(other.DataToBuffer());
    EXPECT_EQ(BytesOf(*other.GetProfileDataEntry(20, 0)), BytesOf(*history.GetProfileDataEntry(0)));
  }
}

TEST(ContainerEntry, ChildrenAreFiledFoundInsertedAndRemoved) {
  CCalibrationHistoryEntry history;
  auto* const first = new CCalibrationContainerEntry;
  auto* const second = new CCalibrationContainerEntry;
  second->SetOptionInfo(1);
  CCalibrationContainerEntry equal;
  EXPECT_FALSE(history.SetProfileDataEntry(nullptr));
  EXPECT_TRUE(history.SetProfileDataEntry(first));
  EXPECT_TRUE(history.SetProfileDataEntry(first));
  EXPECT_TRUE(history.SetProfileDataEntry(&equal));
  EXPECT_EQ(history.GetEntryCount(), 1);
  history.InsertProfileDataEntry(0, second);
  history.InsertProfileDataEntry(0, second);
  history.InsertProfileDataEntry(0, nullptr);
  EXPECT_EQ(history.GetEntryCount(), 2);
  EXPECT_EQ(history.GetProfileDataEntry(0), second);
  EXPECT_EQ(history.GetProfileDataEntry(2), nullptr);
  EXPECT_EQ(history.GetProfileDataEntry(-1), nullptr);
  EXPECT_EQ(history.GetProfileDataEntry(20, 0), first);
  EXPECT_EQ(history.GetProfileDataEntry(20, 2), nullptr);

  EXPECT_EQ(history.RemoveProfileDataEntry(5), nullptr);
  EXPECT_EQ(history.RemoveProfileDataEntry(20, 9), nullptr);
  std::unique_ptr<CProfileDataEntry> removed(history.RemoveProfileDataEntry(20, 0));
  EXPECT_EQ(removed.get(), first);
  EXPECT_EQ(history.GetEntryCount(), 1);
  auto* const target = new CCalibrationTargetEntry;
  second->SetProfileDataEntry(target);
  EXPECT_EQ(second->RemoveProfileDataEntry(0), nullptr);
  EXPECT_EQ(second->RemoveProfileDataEntry(21, 0), nullptr);
  EXPECT_EQ(second->GetEntryCount(), 1);

  // An empty buffer leaves the children.
  history.DeleteBuffer();
  EXPECT_FALSE(history.BufferToData());
  EXPECT_EQ(history.GetEntryCount(), 1);
}

TEST(CalibrationEntries, RecordsOfTargetAndInfo) {
  CCalibrationTargetEntry target;
  EXPECT_TRUE(Parse(target, ByteBuilder().U64(0x8000000000000001).U8(9)));
  EXPECT_FALSE(Parse(target, Bytes(7)));
  target.DeleteBuffer();
  EXPECT_FALSE(target.BufferToData());
  EXPECT_EQ(target.GetCreateTime(), INT64_MIN + 1);
  EXPECT_FALSE(target.DataToBuffer());

  CCalibrationInfoEntry info;
  EXPECT_EQ(BytesOf(info), Bytes(1024));
  tag_CalibrationInfo record;
  record.Data[511] = 7;
  info.SetCalibrationInfoEx(&record);
  info.SetCalibrationInfoEx(nullptr);
  EXPECT_FALSE(Parse(info, Bytes(511, 1)));
  EXPECT_TRUE(Parse(info, Bytes(1023, 1)));
  EXPECT_EQ(info.GetCalibrationInfo()->Data[0], 1);
  EXPECT_EQ(info.GetCalibrationInfoEx()->Data[511], 7);
  EXPECT_TRUE(info.DataToBuffer());
  EXPECT_EQ(BytesOf(info), Bytes(ByteBuilder().Fill(1, 512).Zero(511).U8(7)));
  EXPECT_TRUE(Parse(info, Bytes(ByteBuilder().Fill(3, 512).Fill(2, 512))));
  EXPECT_EQ(std::as_const(info).GetCalibrationInfo()->Data[511], 3);
  EXPECT_EQ(std::as_const(info).GetCalibrationInfoEx()->Data[511], 2);
}

TEST(CalibrationHistory, ImportReplacesAHistoryOfEqualCount) {
  CCalibrationHistoryEntry own;
  CCalibrationHistoryEntry source;
  Fill(own, 1, {0});
  Fill(source, 2, {4});
  source.SetNextID(5);
  ASSERT_TRUE(own.DoImport(&source));
  EXPECT_THAT(CodesOf(own), ElementsAre(4));
  EXPECT_EQ(TargetTime(own), 2);
  EXPECT_EQ(own.GetNextID(), 5u);
  EXPECT_EQ(FirstSample(own, 4), 104u);
  EXPECT_TRUE(own.DoImport(&own));
  CCalibrationContainerEntry other;
  EXPECT_FALSE(own.DoImport(&other));
  EXPECT_FALSE(own.DoImport(nullptr));
}

TEST(CalibrationHistory, ImportPutsTheSourceBehindTheTarget) {
  auto source = std::make_unique<CCalibrationHistoryEntry>();
  Fill(*source, 9, {2, 3});
  source->GetProfileDataEntry(20, 2)->SetLabelString("label");
  CCalibrationHistoryEntry empty;
  ASSERT_TRUE(empty.DoImport(source.get()));
  EXPECT_EQ(empty.GetProfileDataEntry(0)->GetUsedType(), 21u);
  EXPECT_THAT(CodesOf(empty), ElementsAre(2, 3));
  EXPECT_EQ(empty.GetNextID(), 2u);

  CCalibrationHistoryEntry own;
  Fill(own, 1, {0});
  ASSERT_TRUE(own.DoImport(source.get()));
  EXPECT_THAT(CodesOf(own), ElementsAre(2, 3, 0));
  EXPECT_EQ(TargetTime(own), 9);
  EXPECT_EQ(own.GetNextID(), 3u);

  // Each owns what it holds: the source may be saved or go, and what came from it is whole.
  EXPECT_TRUE(source->DataToBuffer());
  source.reset();
  auto& taken = dynamic_cast<CContainerEntry&>(*own.GetProfileDataEntry(20, 2));
  EXPECT_STREQ(taken.GetLabelString(), "label");
  EXPECT_TRUE(taken.IsComplete());
  EXPECT_EQ(std::u16string(taken.GetContainerData()->Name), u"c2");
  EXPECT_EQ(FirstSample(own, 2), 102u);
  EXPECT_NE(taken.GetSize(), 0u);
  ASSERT_TRUE(own.DataToBuffer() && own.BufferToData());
  EXPECT_EQ(FirstSample(own, 3), 103u);
}

TEST(CalibrationHistory, ImportWithoutTargets) {
  CCalibrationHistoryEntry source;
  Fill(source, 9, {2, 3});
  delete source.RemoveProfileDataEntry(0);
  CCalibrationHistoryEntry own;
  Fill(own, 1, {0, 1});
  ASSERT_TRUE(own.DoImport(&source));
  EXPECT_EQ(own.GetProfileDataEntry(0)->GetOptionInfo(), 2u);
  EXPECT_EQ(own.GetProfileDataEntry(2)->GetUsedType(), 21u);
  EXPECT_EQ(TargetTime(own), 1);
  EXPECT_EQ(own.GetNextID(), 4u);

  // A child that cannot be copied stops the import before anything changes.
  source.InsertProfileDataEntry(9, new CContainerEntry);
  EXPECT_FALSE(own.DoImport(&source));
  EXPECT_FALSE(ImportCalibrations(own, source));
  EXPECT_EQ(own.GetEntryCount(), 5);
}

TEST(CalibrationHistory, CloneLeavesSourceAndCarriesUnsavedChanges) {
  CCalibrationHistoryEntry history;
  Fill(history, 1, {0});
  auto& calibration = dynamic_cast<CContainerEntry&>(*history.GetProfileDataEntry(1));
  auto& curves = dynamic_cast<CProfileCurveEntry&>(*calibration.GetProfileDataEntry(0));
  curves.GetCurveData()->FindInkIDEntry(3)->SetAt(0, 77);
  auto* const info = new CCalibrationInfoEntry;
  info->GetCalibrationInfo()->Data[0] = 5;
  info->GetBuffer(3);
  calibration.SetProfileDataEntry(info);
  const Bytes before = BytesOf(curves);
  const std::unique_ptr<CProfileDataEntry> copy = CloneEntry(history);
  auto& other = dynamic_cast<CCalibrationHistoryEntry&>(*copy);
  EXPECT_EQ(BytesOf(curves), before);
  EXPECT_EQ(info->GetSize(), 3u);
  EXPECT_EQ(FirstSample(other, 0), 77u);
  EXPECT_EQ(other.GetNextID(), 1u);
  auto& otherCalibration = dynamic_cast<CContainerEntry&>(*other.GetProfileDataEntry(1));
  auto& otherInfo = dynamic_cast<CCalibrationInfoEntry&>(*otherCalibration.GetProfileDataEntry(22, 0));
  EXPECT_EQ(BytesOf(*otherCalibration.GetProfileDataEntry(0)), before);
  EXPECT_EQ(otherInfo.GetSize(), 3u);
  EXPECT_EQ(otherInfo.GetCalibrationInfo()->Data[0], 5);
}

TEST(CalibrationHistory, AddCalibrationTakesAFreeCodeAndStartsTheHistory) {
  CCalibrationHistoryEntry history;
  NewCalibration calibration;
  calibration.name = u"a name of thirty-two characters!";
  calibration.value = 3;
  calibration.time = 1000;
  calibration.inkLimit = OneCurve(3, 1);
  CCalibrationContainerEntry* const added = AddCalibration(history, std::move(calibration));
  EXPECT_EQ(TargetTime(history), 1000);
  EXPECT_EQ(history.GetProfileDataEntry(1), added);
  EXPECT_EQ(added->GetOptionInfo(), 0u);
  EXPECT_EQ(std::u16string(added->GetContainerData()->Name), u"a name of thirty-two");
  added->SetOptionInfo(1);
  EXPECT_EQ(AddCalibration(history, {})->GetOptionInfo(), 2u);
  ASSERT_TRUE(history.DataToBuffer() && history.BufferToData());
  EXPECT_THAT(CodesOf(history), ElementsAre(1, 2));
  EXPECT_EQ(history.GetNextID(), 3u);
  delete history.RemoveProfileDataEntry(0);
  AddCalibration(history, {});
  EXPECT_EQ(history.GetProfileDataEntry(0)->GetUsedType(), 21u) << "the target stands in front";
}

TEST(CalibrationHistory, ImportWithFreshCodesLosesNothing) {
  CCalibrationHistoryEntry own;
  CCalibrationHistoryEntry source;
  Fill(own, 1, {0, 1});
  Fill(source, 2, {0, 2});  // as many, so that a plain import would replace everything
  source.InsertProfileDataEntry(3, CloneEntry(*source.GetProfileDataEntry(2)).release());
  EXPECT_THAT(CollidingCodes(own, source), ElementsAre(0, 2));

  const auto imported = ImportCalibrations(own, source);
  ASSERT_TRUE(imported);
  ASSERT_EQ(imported->size(), 3u);
  EXPECT_EQ((*imported)[0].code, 3u) << "2 is wanted by the source";
  EXPECT_EQ((*imported)[1].code, 2u);
  EXPECT_EQ((*imported)[2].sourceCode, 2u);
  EXPECT_EQ((*imported)[2].code, 4u);
  EXPECT_EQ(TargetTime(own), 2);
  ASSERT_TRUE(own.DataToBuffer() && own.BufferToData());
  EXPECT_THAT(CodesOf(own), ElementsAre(3, 2, 4, 0, 1));
  EXPECT_EQ(FirstSample(own, 3), 100u);
  EXPECT_EQ(FirstSample(own, 0), 100u);
  EXPECT_EQ(TargetTime(own), 2);
  EXPECT_EQ(own.GetNextID(), 5u);
  EXPECT_FALSE(ImportCalibrations(own, own));

  CCalibrationHistoryEntry fresh;
  ASSERT_TRUE(ImportCalibrations(fresh, own));
  EXPECT_EQ(fresh.GetProfileDataEntry(0)->GetUsedType(), 21u);
  EXPECT_THAT(CodesOf(fresh), ElementsAre(3, 2, 4, 0, 1));
  EXPECT_EQ(fresh.GetNextID(), 5u);
}

}  // namespace
}  // namespace nvx::test
