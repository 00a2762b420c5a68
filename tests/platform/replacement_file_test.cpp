// Saves where the system does not give what they usually stand on. Each runs in a process of its own, which gives up
// rights that the test keeps.
#include "core/replacing_file.h"
#include "support/environment.h"
#include "support/files.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <optional>

namespace nvx::test {
namespace {

namespace fs = std::filesystem;

constexpr int kSkipped = 77;

// The exit status of a child that runs `body`.
int InChild(const std::function<int()>& body) {
  const ::pid_t child = ::fork();
  if (child == 0) ::_exit(body());
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Without the rights of the superuser, which writes where it likes.
bool BecomeNobody() {
  constexpr ::uid_t kNobody = 65534;
  return ::geteuid() != 0 || (::setgid(kNobody) == 0 && ::setuid(kNobody) == 0);
}

// The folder becomes the root of all paths, so that there is no /proc.
bool LeaveProc(const TempFolder& folder) {
  const bool may = ::geteuid() == 0 || ::unshare(CLONE_NEWUSER) == 0;
  return may && ::chroot(folder.Path().c_str()) == 0 && ::chdir("/") == 0;
}

bool Save(const std::u16string& path, const Bytes& bytes, bool good = true) {
  return SaveByReplacing(path.c_str(), [&](CNvxFile& file) {
    return file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size())) == bytes.size() && good;
  });
}

std::ptrdiff_t FilesIn(const TempFolder& folder) { return std::distance(fs::directory_iterator(folder.Path()), {}); }

TEST(ReplacementFile, WorksWithoutProc) {
  const TempFolder folder;
  const Bytes old(10, 1);
  const Bytes renewed(100'000, 2);
  WriteBytes(folder.File("p.icc"), old);
  const auto run = [&](bool good) {
    return InChild([&] {
      if (!LeaveProc(folder)) return kSkipped;
      return Save(u"/p.icc", renewed, good) ? 1 : 0;
    });
  };
  const int failed = run(false);
  if (failed == kSkipped) GTEST_SKIP() << "no right to leave /proc behind";
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(ReadBytes(folder.File("p.icc")), old);
  EXPECT_EQ(FilesIn(folder), 1);
  EXPECT_EQ(run(true), 1);
  EXPECT_EQ(ReadBytes(folder.File("p.icc")), renewed);
  EXPECT_EQ(FilesIn(folder), 1);
}

// A file that may be written in a folder that may not.
class SealedFolder : public testing::Test {
 protected:
  SealedFolder() {
    WriteBytes(folder_.File("p.icc"), old_);
    fs::permissions(folder_.File("p.icc"), fs::perms::all);
    fs::permissions(folder_.Path(),
                    fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(temporary_.Path(), fs::perms::all);
  }
  ~SealedFolder() override { fs::permissions(folder_.Path(), fs::perms::owner_all); }

  int SaveAsNobody(const std::function<bool(CNvxFile&)>& write) {
    return InChild([&] {
      if (!BecomeNobody()) return kSkipped;
      return SaveByReplacing(folder_.WideFile("p.icc").c_str(), write) ? 1 : 0;
    });
  }
  void ExpectContent(const Bytes& bytes) {
    EXPECT_EQ(ReadBytes(folder_.File("p.icc")), bytes);
    EXPECT_EQ(FilesIn(folder_), 1);
    EXPECT_EQ(FilesIn(temporary_), 0);
  }

  TempFolder folder_;
  TempFolder temporary_;
  ScopedVariable variable_{"TMPDIR", temporary_.Path().string()};
  Bytes old_ = Bytes(50'000, 1);
};

TEST_F(SealedFolder, TakesTheNewContentIntoTheOldFile) {
  for (const std::size_t size : {std::size_t{200'000}, std::size_t{7}, std::size_t{0}}) {
    const Bytes renewed(size, 2);
    const int status = SaveAsNobody(
        [&](CNvxFile& file) { return file.Write(renewed.data(), static_cast<std::uint32_t>(size)) == size; });
    if (status == kSkipped) GTEST_SKIP() << "no right to give up rights";
    EXPECT_EQ(status, 1);
    ExpectContent(renewed);
  }
}

TEST_F(SealedFolder, KeepsTheOldContentWhereASaveFails) {
  const Bytes renewed(100'000, 2);
  const auto write = [&](CNvxFile& file) { return file.Write(renewed.data(), 100'000) == 100'000; };
  const int failed = SaveAsNobody([&](CNvxFile& file) { return write(file) && false; });
  if (failed == kSkipped) GTEST_SKIP() << "no right to give up rights";
  EXPECT_EQ(failed, 0);
  ExpectContent(old_);

  // The new content has come whole into the temporary folder, and the target does not take it.
  const int full = InChild([&] {
    if (!BecomeNobody()) return kSkipped;
    std::optional<ScopedFileSizeLimit> limit;
    return SaveByReplacing(folder_.WideFile("p.icc").c_str(),
                           [&](CNvxFile& file) {
                             const bool whole = write(file) && file.Flush();
                             limit.emplace(60'000);
                             return whole;
                           })
               ? 1
               : 0;
  });
  EXPECT_EQ(full, 0);
  ExpectContent(old_);

  // Nowhere to put the new content first.
  fs::permissions(temporary_.Path(), fs::perms::owner_all);
  if (::geteuid() == 0) {
    EXPECT_EQ(SaveAsNobody(write), 0);
  }
  ExpectContent(old_);
}

}  // namespace
}  // namespace nvx::test
