// Real ICC profiles as frames of profiles of the current generation, with Little CMS as the judge of what came of them.
#include "support/entries.h"
#include "support/environment.h"
#include "support/icc_judge.h"
#include "support/qpf_builder.h"
#include "support/qpf_reader.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace nvx::test;

std::string ColorSpace(const Bytes& profile) { return std::string(profile.begin() + 16, profile.begin() + 20); }

bool IsFrame(const Bytes& profile) { return ColorSpace(profile) == "CMYK" || ColorSpace(profile) == "RGB "; }

void Wrap(CProfileData& data, const Bytes& frame) {
  AddEntry(data, 10, frame, 4).SetComplete(true);
  AddEntry(data, 6, CurveSet(2, Bytes(512, 3)), 4);
  AddEntry(data, 27, MaskStream(6), 8);
  AddEntry(data, 18, frame, 256);
  data.GetProfileInfo()->HasMaskDownload = data.GetProfileInfo()->HasOutputBlock = true;
  data.GetProfileInfo()->ScanResolution = 720;
  std::u16string(u"0000").copy(data.GetProfileInfo()->Binary.StoredRevisionCode, 4);
}

bool Save(const TempFolder& folder, const char* name, CProfileData& data, const char* time) {
  const ScopedVariable clock("SOURCE_DATE_EPOCH", time);
  return CProfileFileQPFv3().SaveData(folder.WideFile(name).c_str(), &data, nvx::kSaveReplaceProfile);
}

// The bytes without the two things in which two saves of one profile may differ.
Bytes WithoutTime(Bytes file) {
  const std::size_t updateTime = QpfReader(file).OffsetOf("NVX1") + 92;
  std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(updateTime), 8, std::uint8_t{0});
  std::fill_n(file.begin() + 84, 16, std::uint8_t{0});  // Profile ID
  return file;
}

TEST(QpfFrames, ServeEveryIccEngineAsBefore) {
  const auto paths = RealProfiles();
  if (paths.empty()) GTEST_SKIP() << "no ICC profiles on this machine";
  int withColours = 0;
  for (const std::string& path : paths) {
    SCOPED_TRACE(path);
    const TempFolder folder;
    const Bytes frame = ReadBytes(path);
    if (!IsFrame(frame)) continue;
    CProfileData data;
    Wrap(data, frame);
    ASSERT_TRUE(Save(folder, "a.icc", data, "1700000000"));
    const Bytes first = ReadBytes(folder.File("a.icc"));

    const QpfReader reader(first);
    const QpfReader original(frame, QpfReader::Frame::kForeign);
    for (const auto& [tag, bytes] : original.Tags()) {
      const bool renamed = tag == "desc" && std::memcmp(bytes.data(), "desc", 4) == 0;
      EXPECT_EQ(reader.Tag(tag) == bytes, !renamed) << tag;
    }
    EXPECT_EQ(reader.Tags().size(), original.Tags().size() + 4) << "NVX1, NVX2, NVX3 and NVX5";
    EXPECT_EQ(reader.Entries().at(0).bytes, CurveSet(2, Bytes(512, 3)));
    EXPECT_EQ(reader.Body("NVX3"), Padded(frame));

    const auto colours = IccJudge(frame).ColorsInSrgb();
    EXPECT_TRUE(IccJudge(first).ColorsInSrgb() == colours);
    withColours += colours ? 1 : 0;

    CProfileAccess access;
    CError error;
    ASSERT_TRUE(access.Init(folder.WideFile("a.icc").c_str(), &error));
    CProfileDataEntry* const icc = access.GetProfileData()->GetProfileDataEntry(4, 10);
    EXPECT_TRUE(IccJudge(BytesOf(*icc)).ColorsInSrgb() == colours);
    ASSERT_TRUE(Save(folder, "a.icc", *access.GetProfileData(), "1800000000"));
    const Bytes second = ReadBytes(folder.File("a.icc"));
    EXPECT_NE(second, first);
    EXPECT_TRUE(WithoutTime(second) == WithoutTime(first));
  }
  EXPECT_GT(withColours, 0);
}

}  // namespace
