#include "entries/curve/curve_form.h"
#include "support/curve_builder.h"
#include "support/forms_in_memory.h"

#include <nvxprofile/curve.h>

#include <gtest/gtest.h>

#include <string>

namespace nvx::test {
namespace {

bool Load(const Bytes& bytes, CCurveData& set) { return LoadBytes<CCurveFile>(bytes, set); }

std::optional<Bytes> Save(CCurveData& set) { return SaveBytes<CCurveFile>(set); }

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
  EXPECT_FALSE(Save(set)) << "no reader knows the type";
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
  EXPECT_EQ(folder.FileCount(), 1u);
}

}  // namespace
}  // namespace nvx::test
