// A save that cannot write all of its bytes says so, wherever it is cut off, and a file that it was to replace stays.
#include "support/entry_bytes.h"
#include "support/entry_forms.h"
#include "support/environment.h"
#include "support/legacy_profile.h"
#include "support/random_model.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_icc.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/special_color.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>

#include <unistd.h>

namespace nvx::test {
namespace {

// Takes a number of bytes and no more.
class FullStream : public CNvxMemFile {
 public:
  explicit FullStream(std::uint32_t room) : room_(room) {}
  ~FullStream() override { std::free(Buffer); }

  std::uint32_t Write(const void* bytes, std::uint32_t count) override {
    return CNvxMemFile::Write(bytes, std::min(count, room_ - Position));
  }

 private:
  std::uint32_t room_;
};

struct Saver {
  const char* name;
  std::unique_ptr<CProfileFile> (*format)();
  void (*fill)(CProfileData&, std::mt19937&);
  std::uint32_t selection;  // what SaveData is told besides: a route, or flags
};

template <class Format>
std::unique_ptr<CProfileFile> New() {
  return std::make_unique<Format>();
}

void FillContainer(CProfileData& data, std::mt19937& random) { FillRandomRoute(data, 1, random); }

void FillTextHeaded(CProfileData& data, std::mt19937& random) {
  FillLegacyProfile(data, {}, {});
  FillRandomRoute(data, 1, random);
  FillRandomRoute(data, 2, random);
}

void FillPlainIcc(CProfileData& data, std::mt19937&) { FillLegacyProfile(data, {10}, {}); }

class FailingWrite : public testing::TestWithParam<Saver> {
 protected:
  FailingWrite() {
    std::mt19937 random(6);
    GetParam().fill(data_, random);
  }
  bool Save(CNvxFile& file) { return GetParam().format()->SaveData(file, &data_, GetParam().selection); }
  bool Save(const std::u16string& path) {
    return GetParam().format()->SaveData(path.c_str(), &data_, GetParam().selection);
  }

  CProfileData data_;
  ScopedVariable epoch_{"SOURCE_DATE_EPOCH", "1700000000"};
};

TEST_P(FailingWrite, FailsTheSaveAtEveryByte) {
  FullStream whole(0xFFFFFFFF);
  ASSERT_TRUE(Save(whole));
  const std::uint32_t size = whole.Position;
  ASSERT_GT(size, 132u);
  // All bytes of the front, where most fields are, and of the end; in between each seventh.
  for (std::uint32_t room = 0; room < size; room += room < 1000 || room > size - 200 ? 1 : 7) {
    FullStream full(room);
    ASSERT_FALSE(Save(full)) << room << " of " << size;
  }
  FullStream exact(size);
  ASSERT_TRUE(Save(exact));
  EXPECT_TRUE(std::equal(exact.Buffer, exact.Buffer + size, whole.Buffer)) << "a failed save changes nothing";
}

TEST_P(FailingWrite, LeavesTheFileThatWasToBeReplaced) {
  const TempFolder folder;
  const Bytes old{1, 2, 3};
  const std::string path = folder.File("p");
  ASSERT_TRUE(Save(folder.WideFile("p")));
  const Bytes saved = ReadBytes(path);
  WriteBytes(path, old);
  for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, saved.size() / 2, saved.size() - 1}) {
    {
      const ScopedFileSizeLimit full(limit);
      EXPECT_FALSE(Save(folder.WideFile("p"))) << limit;
    }
    EXPECT_EQ(ReadBytes(path), old) << limit;
    EXPECT_EQ(folder.FileCount(), 1u) << limit;
  }
  const ScopedFileSizeLimit exact(saved.size());
  EXPECT_TRUE(Save(folder.WideFile("p")));
  EXPECT_EQ(ReadBytes(path), saved);
}

// Each form by itself, and a stream that holds all but its last bytes.
template <class File, class Data>
void ExpectSavedWholeOrNotAtAll(Data* data) {
  CNvxMemFile whole;
  ASSERT_TRUE(File().SaveFile(whole, data));
  const std::uint32_t size = whole.Position;
  std::free(whole.Buffer);
  for (std::uint32_t room = 0; room < size; ++room) {
    FullStream full(room);
    ASSERT_FALSE(File().SaveFile(full, data)) << room << " of " << size;
  }
}

TEST(FailingForm, IsSavedWholeOrNotAtAll) {
  CLinearizationEntry curves;
  CMediaPropertyEntry media;
  CSpecialColorInfoEntry colors;
  CLargeParameterEntry parameters;
  CSeparateChromaEntry chroma;
  CMaskDownloadIncludePatternEntry masks;
  ASSERT_TRUE(Parse(curves, TwoCurves()) && Parse(media, MediaForm({{1, 1, {3}}, {7, 16, {4}}})));
  ASSERT_TRUE(Parse(colors, SpecialColorForm()) && Parse(parameters, LargeParameterForm()));
  ASSERT_TRUE(Parse(chroma, LutForm()) && Parse(masks, MaskPatternsForm()));
  ExpectSavedWholeOrNotAtAll<CCurveFile>(curves.GetCurveData());
  ExpectSavedWholeOrNotAtAll<CMediaPropertyFile>(media.GetMediaPropertyData());
  ExpectSavedWholeOrNotAtAll<CSpecialColorInfoFile>(colors.GetSpecialColorInfoData());
  ExpectSavedWholeOrNotAtAll<CLargeParameterFile>(parameters.GetLargeParameterData());
  ExpectSavedWholeOrNotAtAll<CLutFile>(chroma.GetLutData());
  ExpectSavedWholeOrNotAtAll<CMaskParameterFile>(masks.GetMaskParameterData());
  ExpectSavedWholeOrNotAtAll<CMaskPatternFile>(masks.GetMaskPatternData());
}

TEST(ProtectedFile, IsOpenedForReadingAlone) {
  const TempFolder folder;
  CProfileData data;
  FillLegacyProfile(data, {6}, {});
  ASSERT_TRUE(CProfileFileQCT().SaveData(folder.WideFile("p").c_str(), &data, 1));
  std::filesystem::permissions(folder.File("p"), static_cast<std::filesystem::perms>(0444));
  const bool isRoot = ::geteuid() == 0;  // who may write to it all the same
  if (isRoot && ::seteuid(65534) != 0) GTEST_SKIP() << "there is no other user to be";
  const auto opens = [&](bool readOnly) {
    return std::unique_ptr<CProfileFile>(CProfileFile::CreateProfileFile(folder.WideFile("p").c_str(), readOnly)) !=
           nullptr;
  };
  const bool reading = opens(true), writing = opens(false);
  ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
  EXPECT_TRUE(reading);
  EXPECT_FALSE(writing);
}

INSTANTIATE_TEST_SUITE_P(Formats, FailingWrite,
                         testing::Values(Saver{"Container", New<CProfileFileQCT>, FillContainer, 1},
                                         Saver{"OneTextHeaded", New<CProfileFileQPFv1>, FillTextHeaded, 1},
                                         Saver{"TwoTextHeaded", New<CProfileFileQPFv2>, FillTextHeaded, 0},
                                         Saver{"CurrentGeneration", New<CProfileFileQPFv4>, FillRandomProfile,
                                               kSaveReplaceProfile | kSaveCalibration},
                                         Saver{"PlainIcc", New<CProfileFileICC>, FillPlainIcc, 0}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace nvx::test
