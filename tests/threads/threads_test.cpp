// Independent objects on different threads, which share nothing, and one profile that many threads ask: nothing needs a
// lock.
#include "support/files.h"
#include "support/legacy_profile.h"
#include "support/random_model.h"
#include "support/recorded_fields.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/profile.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

using nvx::test::TempFolder;

// Calls `work` with a number for each thread.
template <class Work>
void RunOnThreads(int count, Work work) {
  std::vector<std::thread> threads;
  for (int number = 0; number < count; ++number) threads.emplace_back(work, number);
  for (std::thread& thread : threads) thread.join();
}

// What every query of a profile answers, as text. Failures answer too.
std::string AskEverything(CProfileAccess& access) {
  CError error;
  std::string answers;
  int size = 0;
  int type = 0;
  const auto tell = [&](const void* samples) {
    answers += std::to_string(size) + '/' + std::to_string(type) + ' ';
    if (samples != nullptr) answers.append(static_cast<const char*>(samples), static_cast<std::size_t>(size));
  };
  const auto count = [&](bool result, auto... values) {
    answers += result ? 't' : 'f';
    ((answers += std::to_string(values) + ' '), ...);
  };
  for (std::uint32_t ink = 0; ink < 256; ink += 5) {
    tell(access.GetInkLimit(ink, size, type, &error));
    tell(access.GetLinearization(ink, size, type, &error));
    tell(access.GetGrayBalance(ink, size, type, &error));
    tell(access.GetLightInk(ink, size, type, &error));
    tell(access.GetMultiInkLimit(ink, 0, size, type, &error));
    tell(access.GetVariable(ink, 3, size, type, &error));
    tell(access.GetVariableInkLimit(ink, 0, size, type, &error));
    count(access.GetMergeGrayBalance(ink, nullptr, size, type, &error), size, type);
    for (const int code : {0, 1}) {
      tell(access.GetCalibrationInkLimit(ink, code, size, type, &error));
      tell(access.GetCalibrationLinearization(ink, code, size, type, &error));
      tell(access.GetCalibrationGrayBalance(ink, code, size, type, &error));
    }
  }
  tell(access.GetUCR(size, type, &error));
  tell(access.GetBG(size, type, &error));
  std::uint32_t grid = 0;
  std::vector<std::uint8_t> table(static_cast<std::size_t>(std::max(access.GetChromaData(nullptr, grid, &error), 0)));
  count(true, access.GetChromaData(table.data(), grid, &error), grid, access.GetChromaInputChannel(nullptr, &error),
        access.GetChromaOutputChannel(nullptr, &error));
  answers.append(table.begin(), table.end());
  count(access.GetIccProfile(size, &error) != nullptr, size);
  count(access.GetReplaceProfile(size, &error) != nullptr, size);

  std::int32_t a = 0;
  std::int32_t b = 0;
  std::int32_t c = 0;
  std::int32_t d = 0;
  count(access.GetMediaCorrect(a, &error), a);
  count(access.GetWaveParam(a, &error), a);
  count(access.GetMediaFeedSpeed(a, &error), a);
  count(access.GetHeaterTemperature(a, b, c, d, &error), a, b, c, d);
  std::int32_t values[16] = {};
  std::int32_t* target = values;
  count(access.GetPassDensity(a, &target, &error), a, values[0]);
  count(access.GetDotSize_SD(values, a, &error), a, values[0]);
  std::uint32_t valueCount = 0;
  std::uint32_t byteCount = 0;
  count(access.GetMaskParamCount(valueCount, byteCount, &error), valueCount, byteCount);
  count(access.IsSupportWeftVersion(&error));
  count(true, access.GetMaskParameterAndPatternBuffer(nullptr, 1, 1, 1, 0, nullptr, &error));
  count(access.GetSpecialColorRecommendDensity(a, 1, 1, 3, &error), a);
  count(access.GetSpecialColorRecommendLevel(a, 1, 1, 1, &b, &error), a);
  count(access.GetSpecialColorVDCurve(a, b, 0, 1, 1, 3, &error) != nullptr, a, b);
  count(access.GetUVLamp500ParamCount(valueCount, 1, 2, 3, 4, &error), valueCount);
  count(access.GetUVLamp500SplitCount(a, 1, 2, 3, 4, &error), a);
  count(access.GetCalibrationCount(a, &error), a);
  count(access.GetNewestCalibrationCode(a, &error), a);
  std::int32_t codes[16] = {};
  count(access.GetMultiCalibrationCode(codes, &error), codes[0], codes[1]);
  int code = 0;
  int value = 0;
  std::int64_t time = 0;
  char16_t name[21] = {};
  count(access.GetCalibrationInfo(0, code, value, time, name, &error), code, value, time);
  for (const nvx::EntryType& row : nvx::EntryTypes()) {
    const CProfileDataEntry* const entry = access.GetProfileData()->GetProfileDataEntryFromList(row.usedType);
    nvx::test::Recorder recorder;
    if (entry != nullptr && nvx::TellFields(*entry, recorder)) count(true, recorder.told.places.size());
  }
  return answers;
}

// Loads, asks and saves one profile; the number of steps that failed.
int WorkOn(const std::u16string& path, const std::u16string& copy) {
  CProfileAccess access;
  CError error;
  int size = 0;
  if (!access.Init(path.c_str(), &error)) return 1;
  AskEverything(access);
  int failures = access.GetIccProfile(size, &error) == nullptr ? 1 : 0;
  if (access.GetProfileLoadFormat() == 4) {
    failures += CProfileFileQPFv3().SaveData(copy.c_str(), access.GetProfileData(), nvx::kRouteCalibration) ? 0 : 1;
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
  RunOnThreads(kThreads, [&](int thread) {
    const std::u16string copy = folder.WideFile("copy" + std::to_string(thread) + ".icc");
    for (int round = 0; round < kRounds; ++round) {
      failures += WorkOn(paths[static_cast<std::size_t>(thread + round) % paths.size()], copy);
    }
  });
  EXPECT_EQ(failures, 0);
}

// Queries write to nothing, so that one profile answers to many threads.
TEST(Threads, AskOneProfileEverything) {
  constexpr int kThreads = 8;
  const TempFolder folder;
  const std::u16string path = folder.WideFile("p.icc");
  for (unsigned seed = 1; seed < 7; ++seed) {
    std::mt19937 random(seed);
    CProfileData data;
    nvx::test::FillRandomProfile(data, random);
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &data, nvx::kRouteCalibration));
    CProfileAccess access;
    CProfileAccess alone;
    CError error;
    ASSERT_TRUE(access.Init(path.c_str(), &error) && alone.Init(path.c_str(), &error));
    const std::string expected = AskEverything(alone);
    std::atomic<int> wrong{0};
    RunOnThreads(kThreads, [&](int) {
      for (int round = 0; round < 3; ++round) wrong += AskEverything(access) == expected ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0) << seed;
  }
}

// Changes leave nothing behind that a query would have to bring up to date.
TEST(Threads, AskAnEditedProfile) {
  std::mt19937 random(11);
  CProfileData data;
  nvx::test::FillRandomProfile(data, random);
  CNvxMemFile file;
  ASSERT_TRUE(CProfileFileQPFv3().SaveData(file, &data, nvx::kRouteCalibration));
  auto profile = nvx::Profile::FromBytes({file.Buffer, file.Position}, "p.icc");
  std::free(file.Buffer);
  const std::vector<std::uint16_t> samples(256, 7);
  nvx::Curve curve;
  curve.ink = 1;
  curve.samples = nvx::Samples16(samples);
  profile.SetCurve(nvx::CurveKind::kLinearization, curve);
  profile.SetMedia(nvx::MediaSetting::kWave, std::array{3});
  profile.AddCalibration({"new", 1, std::chrono::sys_seconds(std::chrono::seconds(5)), {}, {curve}, {}});
  profile.ToBytes();
  const std::string expected = AskEverything(profile.Access());
  std::atomic<int> wrong{0};
  RunOnThreads(8, [&](int) {
    wrong += AskEverything(profile.Access()) == expected ? 0 : 1;
    wrong += profile.Linearization(1) && profile.NewestCalibration() && profile.Media(nvx::MediaSetting::kWave) ? 0 : 1;
    wrong += profile.Entries().empty() || profile.Info().fileName != "p.icc" ? 1 : 0;
  });
  EXPECT_EQ(wrong, 0);
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
