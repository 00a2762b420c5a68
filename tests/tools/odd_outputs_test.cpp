// Outputs that are no plain files, that have no room, and runs that are stopped.
#include "support/environment.h"
#include "support/files.h"
#include "tools/profile_maker.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace nvx::test;

class OddOutputs : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_THAT(Make("p.icc"), Succeeds()); }

  std::string File(const std::string& name) const { return folder_.File(name); }
  ToolResult Make(const std::string& name) const { return BuildExample("printer_profile.json", File(name)); }

  TempFolder folder_;
};

TEST_F(OddOutputs, LinksAreFollowedOrRefused) {
  WriteText(File("old"), "old");
  fs::create_symlink("old", File("link"));
  fs::create_symlink("nowhere", File("dangling"));
  fs::create_symlink("circle", File("circle"));
  EXPECT_THAT(Make("link"), Succeeds());
  EXPECT_TRUE(fs::is_symlink(File("link")));
  EXPECT_GT(fs::file_size(File("old")), 3u);
  for (const auto& [name, cause] :
       {std::pair("dangling", "is a link to what is not there"), std::pair("circle", "Too many levels")}) {
    EXPECT_THAT(Make(name), Fails(cause));
    EXPECT_TRUE(fs::is_symlink(File(name)));
  }
  EXPECT_FALSE(fs::exists(File("nowhere")));
}

TEST_F(OddOutputs, PipesAreWrittenToWhereTheyAreNamedAndNotWhereTheyAreFound) {
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  fs::create_directory(File("parts"));
  for (const char* const name : {"pipe", "parts/icc.icc", "parts/glossy.icc"}) {
    ASSERT_EQ(::mkfifo(File(name).c_str(), 0600), 0);
  }
  const std::string size = std::to_string(fs::file_size(File("p.icc"))) + "\n";
  EXPECT_EQ(Shell("wc -c < " + File("pipe") + " & " + kTool + " set " + File("p.icc") + " media/heater/0=40 -o " +
                  File("pipe") + "; wait")
                .out,
            size);
  EXPECT_EQ(Shell(kTool + " set " + File("p.icc") + " media/heater/0=40 -o >(wc -c) | cat").out, size);
  for (const std::string& command : std::vector<std::string>{
           "dump " + File("p.icc") + " --files " + File("parts"),
           "convert " + ShellWord(kExamples + "/legacy/glossy.qpf") + " --module-version 1 -o " + File("parts")}) {
    EXPECT_THAT(Shell(kTool + " " + command), Fails(".icc: is a pipe")) << command;
  }
  EXPECT_TRUE(fs::is_fifo(File("parts/glossy.icc")));
}

TEST_F(OddOutputs, AFullDiskLeavesOldFilesAlone) {
  fs::create_directory(File("parts"));
  for (const char* const name : {"parts/icc.icc", "out"}) WriteText(File(name), "old");
  const std::string noRoom = "trap '' XFSZ; ulimit -f 4; " + kTool + " ";
  for (const std::string& command : std::vector<std::string>{
           "dump " + File("p.icc") + " --files " + File("parts"), "extract " + File("p.icc") + " --icc " + File("out"),
           "report " + File("p.icc") + " -o " + File("out"), "dump " + File("p.icc") + " -o " + File("out")}) {
    const ToolResult result = Shell(noRoom + command);
    EXPECT_EQ(result.status, 1) << command;
    EXPECT_FALSE(result.err.empty());
  }
  for (const char* const name : {"parts/icc.icc", "out"}) EXPECT_EQ(fs::file_size(File(name)), 3u) << name;
  EXPECT_EQ(std::distance(fs::directory_iterator(File("parts")), {}), 1);
}

TEST_F(OddOutputs, ARunThatIsStoppedLeavesNothingBehind) {
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  for (const char* const name : {"old", "new", "temporary"}) fs::create_directory(File(name));
  for (int i = 0; i < 1000; ++i) {
    fs::create_symlink(kExamples + "/legacy/glossy.qpf", File("old/p" + std::to_string(i) + ".qpf"));
  }
  for (const char* const signal : {"TERM", "HUP"}) {
    const ToolResult result =
        Shell("cd " + folder_.Path().string() + "; TMPDIR=$PWD/temporary " + kTool +
              " convert old/*.qpf -o new --module-version 1 & while [ ! -e new/p0.icc ]; do sleep 0.01; done; kill -" +
              signal + " $!; wait $!; echo $((128 - $?)); rm new/*");
    EXPECT_EQ(result.out, signal == std::string("TERM") ? "-15\n" : "-1\n") << result.err;
    EXPECT_TRUE(fs::is_empty(File("temporary")));
    EXPECT_TRUE(fs::is_empty(File("new"))) << "hidden files";
  }
}

}  // namespace
