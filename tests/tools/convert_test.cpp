// Conversion through the tool, with the example of the repository.
#include "support/environment.h"
#include "support/files.h"
#include "tools/run_tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace nvx::test;

const std::string kExamples = NVXPROFILE_SOURCE_FOLDER "/examples/legacy";

class ToolConvert : public ::testing::Test {
 protected:
  std::string Old(const std::string& name) {
    std::filesystem::copy_file(kExamples + "/glossy.qpf", folder_.File(name));
    return folder_.File(name);
  }
  // Names in the folder, in order.
  std::vector<std::string> Names(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& item : std::filesystem::directory_iterator(folder)) names.push_back(item.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  TempFolder folder_;
  ScopedVariable table_{"NVXPROFILE_PROFILE_DIR", kExamples};
};

TEST_F(ToolConvert, OneFile) {
  const std::string made = folder_.File("new.icc");
  WriteBytes(made, {1, 2, 3});
  const auto run =
      RunTool({"convert", Old("a.qpf"), "-o", made, "--module-version", "2.1", "--database-keys", "1,2,3,4,-5,66"});
  ASSERT_EQ(run.status, 0) << run.err;
  const auto info = RunTool({"info", "--json", made});
  EXPECT_EQ(info.status, 0) << info.err;
  EXPECT_NE(info.out.find("ChromaDesk.exe v2.1"), std::string::npos);
  EXPECT_NE(info.out.find("-5"), std::string::npos);
  const Bytes bytes = ReadBytes(made);
  EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("new.icc"), std::string::npos) << "the description";
  EXPECT_EQ(Names(folder_.Path()), (std::vector<std::string>{"a.qpf", "new.icc"})) << "nothing else is left";
}

TEST_F(ToolConvert, ManyFilesOfWhichSomeFail) {
  std::vector<std::string> arguments{"convert"};
  for (int i = 0; i < 6; ++i) arguments.push_back(Old("old" + std::to_string(i) + ".qpf"));
  Bytes broken = ReadBytes(arguments.back());
  broken.resize(2000);
  WriteBytes(folder_.File("broken.qpf"), broken);
  std::string text(broken.begin(), broken.end());
  text.replace(text.find("InkSet_Label:SetA"), 17, "InkSet_Label:SetZ");
  WriteBytes(folder_.File("inks.qpf"), Bytes(text.begin(), text.end()));
  std::filesystem::create_directories(folder_.Path() / "out");
  WriteBytes(folder_.File("out/broken.icc"), {1, 2, 3});
  for (const char* const name : {"broken.qpf", "inks.qpf", "none.qpf"}) arguments.push_back(folder_.File(name));
  for (const std::string& argument : {std::string("-o"), folder_.File("out"), std::string("--module-version"),
                                      std::string("1"), std::string("--jobs"), std::string("3")}) {
    arguments.push_back(argument);
  }
  const auto run = RunTool(arguments);
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("6 of 9 profiles converted"), std::string::npos) << run.out;
  EXPECT_NE(run.err.find("inks.qpf: conversion table: no key Maker in [Inkset.SetZ]"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("broken.qpf: "), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("none.qpf: No such file or directory"), std::string::npos) << run.err;
  EXPECT_EQ(Names(folder_.Path() / "out"), (std::vector<std::string>{"broken.icc", "old0.icc", "old1.icc", "old2.icc",
                                                                     "old3.icc", "old4.icc", "old5.icc"}));
  EXPECT_EQ(ReadBytes(folder_.File("out/broken.icc")), (Bytes{1, 2, 3})) << "a failure leaves the old file";
}

TEST_F(ToolConvert, RefusesWhatWouldLoseAFile) {
  const std::string a = Old("a.qpf");
  std::filesystem::create_directories(folder_.Path() / "sub");
  const std::string twin = Old("sub/a.qpf");
  const auto twice = RunTool({"convert", a, twin, "-o", folder_.File("out"), "--module-version", "1"});
  EXPECT_EQ(twice.status, 2);
  EXPECT_NE(twice.err.find("is the target of " + a), std::string::npos) << twice.err;
  EXPECT_EQ(RunTool({"convert", a, "-o", folder_.File("sub/../a.qpf"), "--module-version", "1"}).status, 2);
  EXPECT_EQ(RunTool({"convert", a, "-o", folder_.File("b"), "--module-version", "1", "--database-keys", "1,2"}).status,
            2);
  EXPECT_EQ(ReadBytes(a), ReadBytes(kExamples + "/glossy.qpf"));

  const auto cut = RunTool({"convert", a, "-o", folder_.File("b"), "--module-version", "1234567890"});
  EXPECT_EQ(cut.status, 2);
  EXPECT_NE(cut.err.find("at most 9 characters"), std::string::npos) << cut.err;
  ASSERT_EQ(RunTool({"convert", a, "-o", folder_.File("new.icc"), "--module-version", "1"}).status, 0);
  const auto again = RunTool({"convert", folder_.File("new.icc"), "-o", folder_.File("x"), "--module-version", "1"});
  EXPECT_EQ(again.status, 1);
  EXPECT_NE(again.err.find("is no text-headed profile"), std::string::npos);
}

}  // namespace
