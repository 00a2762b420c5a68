// Independent objects on different threads: nothing is shared, so nothing needs a lock.
#include "support/files.h"
#include "support/legacy_profile.h"
#include "support/random_model.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using nvx::test::TempFolder;

// Loads, asks and saves one profile; the number of steps that failed.
int WorkOn(const std::u16string& path, const std::u16string& copy) {
  int failures = 0;
  CProfileAccess access;
  CError error;
  if (!access.Init(path.c_str(), &error)) return 1;
  int size = 0;
  int type = 0;
  std::int32_t value = 0;
  std::uint32_t grid = 0;
  access.GetLinearization(1, size, type, &error);
  access.GetChromaData(nullptr, grid, &error);
  access.GetWaveParam(value, &error);
  access.GetCalibrationCount(value, &error);
  access.GetMaskParameterAndPatternBuffer(nullptr, 1, 1, 1, 0, nullptr, &error);
  failures += access.GetIccProfile(size, &error) == nullptr ? 1 : 0;
  CProfileFileQPFv3 format;
  if (access.GetProfileLoadFormat() == 4) {
    failures += format.SaveData(copy.c_str(), access.GetProfileData(), nvx::kRouteCalibration) ? 0 : 1;
    failures += access.Init(copy.c_str(), &error) ? 0 : 1;
  }
  return failures;
}

// Calls `work` with a number for each thread.
template <class Work>
void RunOnThreads(int count, Work work) {
  std::vector<std::thread> threads;
  for (int number = 0; number < count; ++number) threads.emplace_back(work, number);
  for (std::thread& thread : threads) thread.join();
}

TEST(Threads, LoadQueryAndSaveIndependentProfiles) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 40;
  const nvx::test::LegacyFolder folder;
  std::mt19937 random(5);
  std::vector<std::u16string> paths;
  for (int i = 0; i < kThreads; ++i) {
    paths.push_back(folder.WideFile("p" + std::to_string(i) + ".icc"));
    CProfileData data;
    nvx::test::FillRandomProfile(data, random);
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(paths.back().c_str(), &data, nvx::kRouteCalibration));
  }
  ASSERT_TRUE(nvx::test::WriteLegacyProfile(folder.File("old.qpf"), {2, 6, 10}, {7}));
  paths.push_back(folder.WideFile("old.qpf"));

  std::atomic<int> failures{0};
  RunOnThreads(kThreads, [&](int thread) {
    const std::u16string copy = folder.WideFile("copy" + std::to_string(thread) + ".icc");
    for (int round = 0; round < kRounds; ++round) {
      failures += WorkOn(paths[static_cast<std::size_t>(thread + round) % paths.size()], copy);
    }
  });
  EXPECT_EQ(failures, 0);
}

// One table, one source, and a target for each conversion.
TEST(Threads, ConvertSideBySide) {
  constexpr int kThreads = 4;
  constexpr int kFiles = 24;
  const nvx::test::LegacyFolder folder;
  ASSERT_TRUE(nvx::test::WriteLegacyProfile(folder.File("old.qpf"), {1, 2, 4, 6, 10, 14}, {7, 5}));
  const auto name = [&](int file) { return folder.WideFile("new" + std::to_string(file) + ".icc"); };
  RunOnThreads(kThreads, [&](int thread) {
    for (int file = thread; file < kFiles; file += kThreads) {
      const _tagDBDeviceProfileInfo database{{11, 12, 13, 14, 15}, 77};
      CConvertV2ToV3Profile converter;
      if (!converter.ProfileLoad(folder.WideFile("old.qpf").c_str())) continue;
      converter.SetupModuleVersion(u"1");
      converter.ConvertV2ToV3Profile(&database);
      converter.SaveV3Profile(name(file).c_str());
    }
  });
  CProfileAccess access;
  CError error;
  for (int file = 0; file < kFiles; ++file) {
    ASSERT_TRUE(access.Init(name(file).c_str(), &error)) << file;
    CProfileRoute* const route = access.GetProfileData()->GetProfileRoute(4);
    std::vector<std::uint32_t> types;
    for (bool more = route != nullptr && route->GetHeadPos(); more;)
      types.push_back(route->GetNext(more)->GetUsedType());
    EXPECT_EQ(types, (std::vector<std::uint32_t>{1, 17, 4, 6, 14, 7, 5, 10})) << file;
  }
}

}  // namespace
