// Random profiles of every format, saved and loaded; the models are compared.
#include "support/forms_in_memory.h"
#include "support/legacy_profile.h"
#include "support/random_model.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace nvx::test {
namespace {

constexpr int kRounds = 60;

// Entries of the optional tags have no label, are complete, and may have zeros behind their form.
EntryImage AsRouteTag(EntryImage image) {
  image.label.clear();
  image.complete = true;
  image.optionInfo = 0;
  while (image.bytes.size() % 4 != 0) image.bytes.push_back(0);
  return image;
}

TEST(RandomProfiles, ContainersComeBackAsTheyWere) {
  std::mt19937 random(1);
  for (int round = 0; round < kRounds; ++round) {
    CProfileData data;
    FillRandomRoute(data, 4, random);
    CProfileData loaded;
    EXPECT_TRUE(LoadBytes<CProfileFileQCT>(SaveBytes<CProfileFileQCT>(data, 4).value(), loaded));
    EXPECT_EQ(ImagesOf(*loaded.GetProfileRoute(4)), ImagesOf(*data.GetProfileRoute(4)));
  }
}

TEST(RandomProfiles, TheCurrentGenerationComesBackAsItWas) {
  const TempFolder folder;
  const std::u16string path = folder.WideFile("random.icc");
  std::mt19937 random(2);
  for (int round = 0; round < kRounds; ++round) {
    CProfileData data;
    FillRandomProfile(data, random);
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &data, kRouteCalibration));
    CProfileAccess access;
    CError error;
    ASSERT_TRUE(access.Init(path.c_str(), &error));
    CProfileData& loaded = *access.GetProfileData();
    const _tagDeviceProfileInfo& info = *loaded.GetProfileInfo();
    EXPECT_EQ(info.ScanResolution, data.GetProfileInfo()->ScanResolution);
    EXPECT_EQ(info.CreateTimeValue, data.GetProfileInfo()->CreateTimeValue);
    EXPECT_EQ(info.Binary.MediaNumber, data.GetProfileInfo()->Binary.MediaNumber);
    EXPECT_EQ(info.ProfileMinorVersion, data.GetProfileInfo()->ProfileMinorVersion);
    bool more = data.GetRouteStartPos();
    while (more) {
      CProfileRoute* const route = data.GetNextRoute(more);
      ASSERT_TRUE(loaded.IsSpecifiedRoute(route->GetRouteType())) << route->GetRouteType();
      auto expected = ImagesOf(*route);
      auto actual = ImagesOf(*loaded.GetProfileRoute(route->GetRouteType()));
      if (route->GetRouteType() == kRouteMain) {
        // The ICC entry came out of the frame.
        ASSERT_EQ(actual.back().usedType, 10u);
        actual.back().bytes = expected.back().bytes;
      } else {
        for (EntryImage& image : expected) image = AsRouteTag(image);
      }
      EXPECT_EQ(actual, expected) << "route " << route->GetRouteType();
    }
  }
}

TEST(RandomProfiles, TextHeadedProfilesComeBackAsTheyWere) {
  const LegacyFolder folder;
  const std::u16string path = folder.WideFile("random.qpf");
  std::mt19937 random(3);
  for (int round = 0; round < kRounds / 2; ++round) {
    CProfileData data;
    FillLegacyProfile(data, {}, {});
    FillRandomRoute(data, 1, random);
    // Entries of types that route 1 has already are those of route 1.
    FillRandomRoute(data, 2, random);
    ASSERT_TRUE(CProfileFileQPFv2().SaveData(path.c_str(), &data, 0));
    CProfileAccess access;
    CError error;
    ASSERT_TRUE(access.Init(path.c_str(), &error));
    EXPECT_EQ(access.GetProfileLoadFormat(), 3);
    for (const std::uint32_t route : {1u, 2u}) {
      EXPECT_EQ(ImagesOf(*access.GetProfileData()->GetProfileRoute(route)), ImagesOf(*data.GetProfileRoute(route)));
    }
    EXPECT_EQ(std::strcmp(access.GetProfileInfo()->Text.Media_Eng, data.GetProfileInfo()->Text.Media_Eng), 0);
  }
}

}  // namespace
}  // namespace nvx::test
