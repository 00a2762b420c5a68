// Conversion through the tool, with the example of the repository.
#include "support/environment.h"
#include "support/files.h"
#include "tools/profile_maker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace nvx::test;

using testing::HasSubstr;
using Names = std::vector<std::string>;

const std::string kOld = kExamples + "/legacy/glossy.qpf";

class ToolConvert : public ::testing::Test {
 protected:
  std::string Old(const std::string& name) {
    std::filesystem::copy_file(kOld, folder_.File(name));
    return folder_.File(name);
  }
  // Names in the folder, in order.
  static Names In(const std::filesystem::path& folder) {
    Names names;
    for (const auto& item : std::filesystem::directory_iterator(folder)) names.push_back(item.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  TempFolder folder_;
  ScopedVariable table_{"NVXPROFILE_PROFILE_DIR", kExamples + "/legacy"};
};

TEST_F(ToolConvert, OneFile) {
  const std::string made = folder_.File("new.icc");
  WriteBytes(made, {1, 2, 3});
  ASSERT_THAT(
      RunTool({"convert", Old("a.qpf"), "-o", made, "--module-version", "2.1", "--database-keys", "1,2,3,4,-5,66"}),
      Succeeds());
  EXPECT_THAT(RunTool({"info", "--json", made}).out, AllOf(HasSubstr("ChromaDesk.exe v2.1"), HasSubstr("-5")));
  const Bytes bytes = ReadBytes(made);
  EXPECT_THAT(std::string(bytes.begin(), bytes.end()), HasSubstr("new.icc")) << "the description";
  EXPECT_EQ(In(folder_.Path()), (Names{"a.qpf", "new.icc"})) << "nothing else is left";
}

TEST_F(ToolConvert, ManyFilesOfWhichSomeFail) {
  std::vector<std::string> arguments{"convert", "-o", folder_.File("out"), "--module-version", "1", "--jobs", "3"};
  for (int i = 0; i < 6; ++i) arguments.push_back(Old("old" + std::to_string(i) + ".qpf"));
  const Bytes broken = First(ReadBytes(kOld), 2000);
  WriteBytes(folder_.File("broken.qpf"), broken);
  std::string text(broken.begin(), broken.end());
  text.replace(text.find("InkSet_Label:SetA"), 17, "InkSet_Label:SetZ");
  WriteText(folder_.File("inks.qpf"), text);
  std::filesystem::create_directories(folder_.Path() / "out");
  WriteBytes(folder_.File("out/broken.icc"), {1, 2, 3});
  for (const char* const name : {"broken.qpf", "inks.qpf", "none.qpf"}) arguments.push_back(folder_.File(name));
  const ToolResult run = RunTool(arguments);
  EXPECT_THAT(run.out, HasSubstr("6 of 9 profiles converted"));
  for (const char* const message : {"inks.qpf: conversion table: no key Maker in [Inkset.SetZ]",
                                    "broken.qpf: ", "none.qpf: No such file or directory"}) {
    EXPECT_THAT(run, Fails(message));
  }
  EXPECT_EQ(In(folder_.Path() / "out"),
            (Names{"broken.icc", "old0.icc", "old1.icc", "old2.icc", "old3.icc", "old4.icc", "old5.icc"}));
  EXPECT_EQ(ReadBytes(folder_.File("out/broken.icc")), (Bytes{1, 2, 3})) << "a failure leaves the old file";
}

TEST_F(ToolConvert, RefusesWhatWouldLoseAFile) {
  const std::string a = Old("a.qpf");
  std::filesystem::create_directories(folder_.Path() / "sub");
  const std::string twin = Old("sub/a.qpf");
  const auto convert = [&](const std::vector<std::string>& more) {
    return RunTool({"convert", "--module-version", "1"}, more);
  };
  const ToolResult twice = convert({a, twin, "-o", folder_.File("out")});
  EXPECT_THAT(twice, IsWrongUsage());
  EXPECT_THAT(twice.err, HasSubstr("is the target of " + a));
  EXPECT_THAT(convert({a, "-o", folder_.File("sub/../a.qpf")}), IsWrongUsage());
  EXPECT_THAT(convert({a, "-o", folder_.File("b"), "--database-keys", "1,2"}), IsWrongUsage());
  EXPECT_EQ(ReadBytes(a), ReadBytes(kOld));

  const ToolResult cut = RunTool({"convert", a, "-o", folder_.File("b"), "--module-version", "1234567890"});
  EXPECT_THAT(cut, IsWrongUsage());
  EXPECT_THAT(cut.err, HasSubstr("at most 9 characters"));
  ASSERT_THAT(convert({a, "-o", folder_.File("new.icc")}), Succeeds());
  EXPECT_THAT(convert({folder_.File("new.icc"), "-o", folder_.File("x")}), Fails("is no text-headed profile"));
}

}  // namespace
