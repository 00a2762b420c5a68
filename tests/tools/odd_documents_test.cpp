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
using nlohmann::json;
using namespace nvx::test;
using testing::HasSubstr;

class OddDocuments : public ::testing::Test {
 protected:
  std::string File(const std::string& name) const { return folder_.File(name); }
  // A container of one entry.
  ToolResult BuildEntry(const std::string& entry) const {
    return BuildText(R"({"nvxprofile": 1, "format": "container", "entries": [)" + entry + "]}", File("out.qct"));
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
  EXPECT_THAT(BuildEntry(Nested(7)), Succeeds());
  EXPECT_THAT(RunTool({"validate", File("out.qct")}), Succeeds());
  for (const int containers : {8, 100000}) {
    EXPECT_THAT(BuildEntry(Nested(containers)), Fails("/entries/0" + Repeated("/payload/entries/0", 8) +
                                                      "/payload: containers nest 8 levels deep at most"));
  }
}

TEST_F(OddDocuments, AFileBeyond32BitsIsRefusedUnread) {
  WriteText(File("large"), "");
  fs::resize_file(File("large"), 0x100000010);
  const ToolResult result = BuildEntry(R"({"type": "icc", "file": "large"})");
  EXPECT_THAT(result, Fails("/entries/0/file: "));
  EXPECT_THAT(result, Fails("is longer than any profile"));
  EXPECT_THAT(RunTool({"info", File("large")}), Fails("is longer than any profile"));
}

TEST_F(OddDocuments, WhatHoldsNothingBuildsAgainOrDumpSaysWhyNot) {
  ASSERT_THAT(BuildEntry(R"({"type": "icc", "bytes": ""})"), Succeeds());
  EXPECT_EQ(BuiltAgain(File("out.qct")), ReadBytes(File("out.qct")));
  EXPECT_THAT(RunTool({"dump", File("out.qct"), "--files", folder_.Path().string()}), Succeeds());
  Bytes empty = First(ReadBytes(File("out.qct")), 32);
  EXPECT_THAT(BuildEntry(R"({"type": "icc"})"), Fails());

  empty[24] = 0;
  WriteBytes(File("empty.qct"), empty);
  const ToolResult dump = RunTool({"dump", File("empty.qct")});
  EXPECT_THAT(dump, Succeeds());
  EXPECT_THAT(dump.err, HasSubstr("build cannot make it again: a container without entries"));
}

TEST_F(OddDocuments, TimesComeBackAsTheyAre) {
  json document = ProfileDocument({});
  document["record"]["ScanResolution"] = 720;
  ASSERT_THAT(Build(document, File("p.icc")), Succeeds());
  EXPECT_NE(RunTool({"get", File("p.icc"), "record/CreateTimeValue"}).out, "0\n") << "made now";
  document["record"]["UpdateTimeValue"] = 1700000000;
  for (const int created : {0, 1600000000}) {
    document["record"]["CreateTimeValue"] = created;
    ASSERT_THAT(Build(document, File("p.icc")), Succeeds());
    WriteBytes(File("again.icc"), BuiltAgain(File("p.icc")));
    for (const char* const name : {"p.icc", "again.icc"}) {
      EXPECT_EQ(RunTool({"get", File(name), "record/CreateTimeValue", "record/UpdateTimeValue"}).out,
                std::to_string(created) + "\n1700000000\n");
    }
  }
}

TEST_F(OddDocuments, FilesAreNamedAsSeenFromTheDocument) {
  ASSERT_THAT(BuildExample("printer_profile.json", File("p.icc")), Succeeds());
  for (const char* const name : {"documents", "parts", "made"}) fs::create_directory(File(name));
  EXPECT_THAT(Shell("cd " + folder_.Path().string() + " && " + kTool +
                    " dump p.icc --files parts -o documents/p.json && cd made && " + kTool +
                    " build ../documents/p.json -o p.icc && grep '\"file\"' ../documents/p.json")
                  .out,
              HasSubstr("\"../parts/icc.icc\""));
  EXPECT_EQ(ReadBytes(File("made/p.icc")), ReadBytes(File("p.icc")));
}

// What a file holds fits on a screen; the bytes are in a dump.
TEST_F(OddDocuments, InfoTellsSizesInPlaceOfTablesAndMasks) {
  ASSERT_THAT(BuildExample("uv_film.json", File("p.icc")), Succeeds());
  const json info = ToolJson({"info", "--json", File("p.icc"), File("none")});
  ASSERT_EQ(info.size(), 1u) << "an array, whatever loads";
  std::map<int, json> payloads;
  for (const json& route : info[0]["routes"]) {
    for (const json& entry : route["entries"]) payloads[entry["usedType"]] = entry["payload"];
  }
  EXPECT_EQ(payloads[8]["samples"]["bytes"], 39366);
  EXPECT_GT(payloads[29]["maskPatterns"][0]["maskPattern"]["bytes"], 0);
  EXPECT_EQ(RunTool({"info", "--json", File("none"), File("none")}).out, "[]\n");
}

}  // namespace
