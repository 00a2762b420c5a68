// A process that is killed at a random moment of a save: the file is the old one or the new one, complete.
#include "support/environment.h"
#include "support/files.h"
#include "support/random_model.h"

#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

namespace nvx::test {
namespace {

TEST(KilledSave, LeavesTheOldFileOrTheNewOne) {
  const ScopedVariable clock("SOURCE_DATE_EPOCH", "1700000000");
  const TempFolder folder;
  const std::u16string path = folder.WideFile("p.icc");
  std::mt19937 random(4);
  CProfileData models[2];
  Bytes files[2];
  for (int i = 0; i < 2; ++i) {
    FillRandomProfile(models[i], random);
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &models[i], 0));
    files[i] = ReadBytes(folder.File("p.icc"));
  }
  ASSERT_NE(files[0], files[1]);

  constexpr int kKills = 60;
  for (int kill = 0; kill < kKills; ++kill) {
    const ::pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int i = 0; i < 1000; ++i) CProfileFileQPFv3().SaveData(path.c_str(), &models[i % 2], 0);
      ::_exit(0);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 20'000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const Bytes bytes = ReadBytes(folder.File("p.icc"));
    ASSERT_TRUE(bytes == files[0] || bytes == files[1]) << bytes.size() << " bytes after kill " << kill;
  }
  // What the last kill may have left between naming and renaming is taken away by the next save.
  ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &models[0], 0));
  EXPECT_EQ(folder.FileCount(), 1u);
}

}  // namespace
}  // namespace nvx::test
