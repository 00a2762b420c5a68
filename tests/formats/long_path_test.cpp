// Every open and every save takes a path that is longer than the field in which a stream keeps it.
#include "core/replacing_file.h"
#include "support/icc_builder.h"
#include "support/legacy_profile.h"

#include <nvxprofile/nvxprofile.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace nvx::test {
namespace {

class LongPath : public testing::Test {
 protected:
  LongPath() {
    std::filesystem::create_directories(std::filesystem::path(File("x")).parent_path());
    EXPECT_GT(Wide("x").size(), 300u);
    FillLegacyProfile(data_, {6, 10}, {6});
  }

  std::string File(const std::string& name) const {
    return folder_.File(std::string(90, 'a') + "/" + std::string(120, 'b') + "/" + std::string(100, 'c') + "/" + name);
  }
  std::u16string Wide(const std::string& name) const { return platform::Utf8ToWide(File(name)); }

  // Saves, and loads what was saved by path and through the front door.
  void SaveAndLoad(CProfileFile& format, const std::string& name, std::uint32_t selection) {
    ASSERT_TRUE(format.SaveData(Wide(name).c_str(), &data_, selection)) << name;
    CProfileData again;
    EXPECT_TRUE(format.LoadData(Wide(name).c_str(), &again, false)) << name;
    CProfileAccess access;
    EXPECT_TRUE(access.Init(Wide(name).c_str(), &error_)) << WideToUtf8(error_.GetErrorCommentW());
    Diagnosis diagnosis;
    EXPECT_TRUE(DiagnoseProfile(Wide(name).c_str(), diagnosis));
  }

  LegacyFolder folder_;
  CProfileData data_;
  CError error_;
};

TEST_F(LongPath, AStreamKeepsItWhole) {
  const std::u16string path = Wide("name.bin");
  ASSERT_TRUE(SaveByReplacing(path.c_str(), [](CNvxFile& file) { return file.Write("abc", 3) == 3; }));
  CNvxFile file;
  ASSERT_TRUE(file.Open(path.c_str(), kGenericRead, kShareRead, kOpenExisting));
  EXPECT_EQ(file.GetPath(), path);
  char16_t text[CNvxFile::kPathLength];
  file.GetFileName(text);
  EXPECT_EQ(std::u16string(text), u"name.bin");
  file.GetPathName(text);
  EXPECT_EQ(std::u16string(text), u"") << "the start of a path leads elsewhere";
  EXPECT_TRUE(file.Open(std::u16string(file.GetPath()).c_str(), kGenericRead, 1, kOpenExisting));
  EXPECT_EQ(file.GetLength(), 3u);
  file.Close();
  EXPECT_EQ(file.GetPath(), u"");
  EXPECT_TRUE(file.Open(path.c_str(), kGenericRead | kGenericWrite, 0, kCreateAlways));
  EXPECT_EQ(file.GetLength(), 0u);
}

TEST_F(LongPath, ProfilesOfEveryGeneration) {
  CProfileFileQCT container;
  SaveAndLoad(container, "container.qct", 1);
  CProfileFileQPFv1 one;
  SaveAndLoad(one, "one.qpf", 1);
  CProfileFileQPFv2 two;
  SaveAndLoad(two, "two.qpf", 0);
  CProfileFileICC plain;
  SaveAndLoad(plain, "plain.icc", 0);

  CConvertV2ToV3Profile converter;
  ASSERT_TRUE(converter.ProfileLoad(Wide("two.qpf").c_str()));
  converter.SetupModuleVersion(u"1.0.0.0");
  const _tagDBDeviceProfileInfo printer{};
  converter.ConvertV2ToV3Profile(&printer);
  converter.SaveV3Profile(Wide("new.icc").c_str());
  CProfileAccess access;
  EXPECT_TRUE(access.Init(Wide("new.icc").c_str(), &error_));
  EXPECT_EQ(access.GetProfileLoadFormat(), 4);
}

TEST_F(LongPath, IccProfiles) {
  const Bytes bytes = SmallIccProfile();
  WriteBytes(File("a.icc"), bytes);
  CICCProfile profile;
  EXPECT_TRUE(profile.OpenPath(Wide("a.icc").c_str(), true));
  ASSERT_TRUE(profile.OpenPath(Wide("a.icc").c_str(), false));
  EXPECT_TRUE(profile.WriteToPath(Wide("b.icc").c_str()));
  EXPECT_EQ(ReadBytes(File("b.icc")), bytes);
  CInputProfileAccess access;
  ASSERT_TRUE(access.Init(Wide("a.icc").c_str(), nullptr));
  EXPECT_EQ(std::u16string(access.GetInputProfileInfo()->FileName), u"a.icc");
  EXPECT_NE(access.GetInputProfileInfo()->FileTime.wYear, 0);

  CICMEntry entry;
  std::uint32_t error = 0;
  ASSERT_TRUE(entry.Load(Wide("a.icc").c_str(), error, CICMEntry::ICMOptionInfo{}));
  EXPECT_TRUE(entry.Save(Wide("c.icc").c_str(), error));
  EXPECT_EQ(ReadBytes(File("c.icc")), bytes);
}

TEST_F(LongPath, CurvesAndHistories) {
  CCurveData curves;
  EXPECT_TRUE(CCurveFile().SaveFile(Wide("a.crv").c_str(), &curves));
  EXPECT_TRUE(CCurveFile().LoadFile(Wide("a.crv").c_str(), &curves));
  CContainerData history;
  EXPECT_TRUE(CProfileFileCalibration().SaveData(Wide("a.cal").c_str(), &history));
  EXPECT_TRUE(CProfileFileCalibration().LoadData(Wide("a.cal").c_str(), &history, false));
}

TEST_F(LongPath, AdjustFiles) {
  WriteBytes(File("a.txt"), {'k', '=', '7', '\n'});
  CAdjustFileAnalyzer analyzer;
  EXPECT_TRUE(analyzer.LoadFile(Wide("a.txt").c_str(), error_));
  EXPECT_TRUE(CColorAdjustFile().Initialize(Wide("a.txt").c_str(), error_));
  EXPECT_TRUE(CColorAdjustFileV3().Initialize(Wide("a.txt").c_str(), error_));
  EXPECT_TRUE(CDeviceAdjustFile().Initialize(Wide("a.txt").c_str(), error_));
  EXPECT_TRUE(CSpecialColorAdjustFile().Initialize(Wide("a.txt").c_str(), error_));
}

TEST_F(LongPath, TheConversionTable) {
  WriteBytes(File("QPFConvert.qpd"), ReadBytes(folder_.File("QPFConvert.qpd")));
  const ScopedVariable elsewhere("NVXPROFILE_PROFILE_DIR", std::filesystem::path(File("x")).parent_path().string());
  CQPFConvertTable table;
  std::int32_t maker = 0;
  EXPECT_TRUE(table.GetInkMaker("SetA", maker)) << table.GetFailure();
  EXPECT_EQ(maker, 3);
}

}  // namespace
}  // namespace nvx::test
