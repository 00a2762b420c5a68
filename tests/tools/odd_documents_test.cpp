// Documents that no profile can be made of, or that are made of profiles with nothing in them.
#include "support/files.h"
#include "tools/profile_maker.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace nvx::test;

class OddDocuments : public ::testing::Test {
 protected:
  std::string File(const std::string& name) const { return folder_.File(name); }
  // A container of one entry.
  ToolResult BuildEntry(const std::string& entry, const std::string& output = "out.qct") const {
    return Build(R"({"nvxprofile": 1, "format": "container", "entries": [)" + entry + "]}", output);
  }
  ToolResult Build(const std::string& document, const std::string& output) const {
    WriteText(File("document.json"), document);
    return RunTool({"build", File("document.json"), "-o", File(output)});
  }
  // The profile out of its own dump.
  Bytes Again(const std::string& name) const {
    fs::create_directory(File("again"));
    EXPECT_EQ(RunTool({"dump", File(name), "-o", File("again.json")}).status, 0);
    EXPECT_EQ(RunTool({"build", File("again.json"), "-o", File("again/" + name)}).status, 0);
    return ReadBytes(File("again/" + name));
  }

  TempFolder folder_;
};

std::string Repeated(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

// A history with containers in each other.
std::string Nested(int containers) {
  return R"({"usedType": 19, "payload": {"nextID": 1, "entries": [)" +
         Repeated(R"({"usedType": 20, "optionInfo": 1, "payload": {"entries": [)", containers) +
         Repeated("]}}", containers + 1);
}

TEST_F(OddDocuments, ContainersNestAsDeepAsALoadGoes) {
  EXPECT_EQ(BuildEntry(Nested(7)).status, 0);
  EXPECT_EQ(RunTool({"validate", File("out.qct")}).status, 0);
  for (const int containers : {8, 100000}) {
    const ToolResult result = BuildEntry(Nested(containers));
    EXPECT_EQ(result.status, 1) << containers;
    EXPECT_NE(result.err.find("/entries/0" + Repeated("/payload/entries/0", 8) +
                              "/payload: containers nest 8 levels deep at most"),
              std::string::npos)
        << result.err.substr(0, 400);
  }
}

TEST_F(OddDocuments, AFileBeyond32BitsIsRefusedUnread) {
  WriteText(File("large"), "");
  fs::resize_file(File("large"), 0x100000010);
  const ToolResult result = BuildEntry(R"({"type": "icc", "file": "large"})");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("/entries/0/file: "), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("is longer than any profile"), std::string::npos) << result.err;
  EXPECT_NE(RunTool({"info", File("large")}).err.find("is longer than any profile"), std::string::npos);
}

TEST_F(OddDocuments, WhatHoldsNothingBuildsAgainOrDumpSaysWhyNot) {
  ASSERT_EQ(BuildEntry(R"({"type": "icc", "bytes": ""})").status, 0);
  EXPECT_EQ(Again("out.qct"), ReadBytes(File("out.qct")));
  EXPECT_EQ(RunTool({"dump", File("out.qct"), "--files", folder_.Path().string()}).status, 0);
  EXPECT_EQ(BuildEntry(R"({"type": "icc"})").status, 1);

  Bytes empty = ReadBytes(File("out.qct"));
  empty.resize(32);
  empty[24] = 0;
  nvx::test::WriteBytes(File("empty.qct"), empty);
  const ToolResult dump = RunTool({"dump", File("empty.qct")});
  EXPECT_EQ(dump.status, 0) << dump.err;
  EXPECT_NE(dump.err.find("build cannot make it again: a container without entries"), std::string::npos) << dump.err;
}

TEST_F(OddDocuments, TimesComeBackAsTheyAre) {
  const std::string start = R"({"nvxprofile": 1, "format": "printer-profile", "record": {)";
  const std::string end =
      std::string(R"("ScanResolution": 720}, "entries": [{"type": "icc", "file": ")") + kFrameProfile + R"("}]})";
  for (const std::string created : {"0", "1600000000"}) {
    const ToolResult built =
        Build(start + R"("CreateTimeValue": )" + created + R"(, "UpdateTimeValue": 1700000000, )" + end, "p.icc");
    ASSERT_EQ(built.status, 0) << built.err;
    Again("p.icc");
    for (const char* const name : {"p.icc", "again/p.icc"}) {
      EXPECT_EQ(RunTool({"get", File(name), "record/CreateTimeValue", "record/UpdateTimeValue"}).out,
                created + "\n1700000000\n");
    }
  }
  ASSERT_EQ(Build(start + end, "p.icc").status, 0);
  EXPECT_NE(RunTool({"get", File("p.icc"), "record/CreateTimeValue"}).out, "0\n") << "made now";
}

TEST_F(OddDocuments, FilesAreNamedAsSeenFromTheDocument) {
  ASSERT_EQ(RunTool({"build", NVXPROFILE_SOURCE_FOLDER "/examples/printer_profile.json", "-o", File("p.icc")}).status,
            0);
  for (const char* const name : {"documents", "parts", "made"}) fs::create_directory(File(name));
  const std::string tool = nvx::test::ShellWord(nvx::test::ToolPath());
  const std::string commands = "cd " + folder_.Path().string() + " && " + tool +
                               " dump p.icc --files parts -o documents/p.json && cd made && " + tool +
                               " build ../documents/p.json -o p.icc && grep '\"file\"' ../documents/p.json";
  const ToolResult result = nvx::test::RunProgram({"bash", "-c", commands});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("\"../parts/icc.icc\""), std::string::npos) << result.out;
  EXPECT_EQ(ReadBytes(File("made/p.icc")), ReadBytes(File("p.icc")));
}

// What a file holds fits on a screen; the bytes are in a dump.
TEST_F(OddDocuments, InfoTellsSizesInPlaceOfTablesAndMasks) {
  ASSERT_EQ(RunTool({"build", NVXPROFILE_SOURCE_FOLDER "/examples/uv_film.json", "-o", File("p.icc")}).status, 0);
  const nlohmann::json info = nlohmann::json::parse(RunTool({"info", "--json", File("p.icc"), File("none")}).out);
  ASSERT_EQ(info.size(), 1u) << "an array, whatever loads";
  std::map<int, nlohmann::json> payloads;
  for (const nlohmann::json& route : info[0]["routes"]) {
    for (const nlohmann::json& entry : route["entries"]) payloads[entry["usedType"]] = entry["payload"];
  }
  EXPECT_EQ(payloads[8]["samples"]["bytes"], 39366);
  EXPECT_GT(payloads[29]["maskPatterns"][0]["maskPattern"]["bytes"], 0);
  EXPECT_EQ(RunTool({"info", "--json", File("none"), File("none")}).out, "[]\n");
}

}  // namespace
