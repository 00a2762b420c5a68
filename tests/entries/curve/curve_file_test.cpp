#include "entries/curve/curve_form.h"
#include "support/curve_builder.h"

#include <nvxprofile/curve.h>
#include <nvxprofile/diagnosis.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace nvx::test {
namespace {

using testing::ElementsAre;

bool Load(Bytes bytes, CCurveData& set, Diagnosis* diagnosis = nullptr) {
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  stream.SetDiagnosis(diagnosis);
  return CCurveFile().LoadFile(stream, &set);
}

Bytes Save(CCurveData& set) {
  CNvxMemFile stream;
  EXPECT_TRUE(CCurveFile().SaveFile(stream, &set));
  Bytes bytes(stream.Buffer, stream.Buffer + stream.Position);
  std::free(stream.Buffer);
  return bytes;
}

TEST(CurveFile, SavesTheBytesOfTheForm) {
  CCurveData set;
  set.SetUsedType(6);
  auto cyan = MakeCurve(CCurveDataEntry::kSamples8, 0x101, {0, 0x80, 0xFF});
  cyan->SetSlotNo(3);
  cyan->SetDisplayRGB(0xFF00);
  cyan->SetMax(255);
  cyan->SetInkName("Cyan");
  auto black = MakeCurve(CCurveDataEntry::kSamples16, 2, {0x1234, 0xFEFF}, 7);
  black->SetMax(65535);
  black->SetMin(9);
  black->SetInkName("Black");
  set.AddTail(cyan.release());
  set.AddTail(black.release());
  EXPECT_EQ(Save(set), TwoCurves());
}

TEST(CurveFile, LoadsTheBytesOfTheForm) {
  const Bytes bytes = TwoCurves();
  CCurveData set;
  ASSERT_TRUE(Load(bytes, set));
  EXPECT_EQ(set.GetUsedType(), 6u);
  ASSERT_EQ(set.GetCount(), 2);
  CCurveDataEntry& cyan = *set.FindInkIDEntry(1);
  EXPECT_EQ(cyan.GetSlotNo(), 3u);
  EXPECT_EQ(cyan.GetDisplayRGB(), 0xFF00u);
  EXPECT_EQ(cyan.GetMax(), 255u);
  EXPECT_STREQ(cyan.GetInkName(), "Cyan");
  EXPECT_THAT(SamplesOf(cyan), ElementsAre(0, 0x80, 0xFF));
  CCurveDataEntry& black = *set.FindInkIDEntryonSize(2, 7);
  EXPECT_EQ(black.GetMin(), 9u);
  EXPECT_THAT(SamplesOf(black), ElementsAre(0x1234, 0xFEFF));
  EXPECT_EQ(Save(set), bytes);
}

TEST(CurveFile, KeepsEmptySetsAndEmptyCurves) {
  const Bytes empty = CurveSetHeader(17, 0);
  CCurveData set;
  ASSERT_TRUE(Load(empty, set));
  EXPECT_EQ(set.GetCount(), 0);
  EXPECT_EQ(Save(set), empty);
  const Bytes hollow = CurveSetHeader(17, 1).Append(CurveHeader({.ink = 4, .type = 2})).Text("SDEC");
  ASSERT_TRUE(Load(hollow, set));
  EXPECT_EQ(Save(set), hollow);
}

// Half a sample stays with the others: the curve holds the bytes.
TEST(CurveFile, KeepsAnOddNumberOfBytes) {
  const Bytes odd = CurveSetHeader(6, 1).Append(CurveHeader({.ink = 4, .type = 2, .size = 3})).Text("SDEC").Fill(7, 3);
  CCurveData set;
  ASSERT_TRUE(Load(odd, set));
  CCurveDataEntry& curve = *set.FindInkIDEntry(4);
  EXPECT_EQ(curve.GetDataType(), 2u);
  EXPECT_EQ(curve.GetSize(), 3u);
  EXPECT_EQ(Save(set), odd);
  curve.SetDataType(3);
  CNvxMemFile stream;
  EXPECT_FALSE(CCurveFile().SaveFile(stream, &set)) << "no reader knows the type";
  EXPECT_EQ(stream.Buffer, nullptr);
}

TEST(CurveFile, CutsNamesToTheirField) {
  CCurveData set;
  auto curve = MakeCurve(CCurveDataEntry::kSamples8, 1, {});
  curve->SetInkName(std::string(120, 'n').c_str());
  set.AddTail(curve.release());
  const std::string cut(91, 'n');
  EXPECT_EQ(Save(set), CurveSetHeader(0, 1).Append(CurveHeader({.ink = 1, .name = cut})).Text("SDEC").Take());

  const std::string unterminated(92, 'u');
  CCurveData loaded;
  ASSERT_TRUE(Load(CurveSetHeader(0, 1).Append(CurveHeader({.name = unterminated})).Text("SDEC"), loaded));
  EXPECT_EQ(std::string(loaded.FindInkIDEntry(0)->GetInkName()), unterminated.substr(1));
}

TEST(CurveFile, TellsItsSizeAndReadsItsHeaderOnly) {
  Bytes bytes = TwoCurves();
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  EXPECT_EQ(CCurveFile().GetCurveDataSize(), 0);
  const std::unique_ptr<CCurveFile> form(CCurveFile::CreateCurveFile(stream));
  ASSERT_TRUE(form);
  EXPECT_EQ(form->GetCurveDataSize(), 32);
  CCurveData set;
  ASSERT_TRUE(form->LoadFile(stream, &set));
  EXPECT_EQ(form->GetCurveDataSize(), 311);
  EXPECT_EQ(stream.Position, 311u);
  bytes[8] = 2;
  stream.Position = 0;
  EXPECT_EQ(CCurveFile::CreateCurveFile(stream), nullptr);
  EXPECT_FALSE(CCurveFile().LoadFile(stream, nullptr));
  EXPECT_FALSE(CCurveFile().SaveFile(stream, nullptr));
}

TEST(CurveFile, SavesToAPathBesideTheOldFile) {
  const TempFolder folder;
  const std::u16string path = folder.WideFile("set.crv");
  CCurveData set;
  EXPECT_FALSE(CCurveFile().LoadFile(path.c_str(), &set));
  ASSERT_TRUE(Load(TwoCurves(), set));
  ASSERT_TRUE(CCurveFile().SaveFile(path.c_str(), &set));
  EXPECT_EQ(ReadBytes(folder.File("set.crv")), TwoCurves());
  CCurveData loaded;
  ASSERT_TRUE(CCurveFile().LoadFile(path.c_str(), &loaded));
  EXPECT_EQ(Save(loaded), TwoCurves());
  EXPECT_FALSE(CCurveFile().SaveFile(path.c_str(), nullptr));
  EXPECT_FALSE(CCurveFile().SaveFile(folder.WideFile("none/set.crv").c_str(), &set));
  EXPECT_EQ(ReadBytes(folder.File("set.crv")), TwoCurves());
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

}  // namespace
}  // namespace nvx::test
