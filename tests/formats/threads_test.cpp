// Independent objects on different threads: nothing is shared, so nothing needs a lock.
#include "support/legacy_profile.h"
#include "support/random_model.h"
#include "support/temp_folder.h"

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
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      const std::u16string copy = folder.WideFile("copy" + std::to_string(thread) + ".icc");
      for (int round = 0; round < kRounds; ++round) {
        failures += WorkOn(paths[static_cast<std::size_t>(thread + round) % paths.size()], copy);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
}

}  // namespace
