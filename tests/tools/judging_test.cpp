// What the tool says of profiles for those who print with them: differences, separation tables, and what prints wrong.
#include "support/environment.h"
#include "support/files.h"
#include "tools/profile_maker.h"
#include "tools/run_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace nvx::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

const Samples kStraight{0, 16384, 32768, 49151, 65535};

json Channel(int code, const std::string& name = "") {
  return {{"channelCode", code}, {"channelAttribute", 0}, {"channelName", name}};
}

// Three inputs at 0 and 100 %, two inks: ink 1 is 255 less what the first input says, ink 2 the number of the node.
json TableDocument() {
  return {{"type", "chroma"},
          {"payload",
           {{"gridCount", 2},
            {"inputChannels", {Channel(0), Channel(0), Channel(0)}},
            {"outputChannels", {Channel(1, "Cyan"), Channel(2)}},
            // ff 00, ff 01, ff 02, ff 03, 00 04, 00 05, 00 06, 00 07
            {"samples", "/wD/Af8C/wMABAAFAAYABw=="}}}};
}

class Judging : public testing::Test {
 protected:
  // A profile in which nothing is wrong but what is put in the place of its parts.
  void Make(const std::string& name, const std::vector<json>& replacements = {}) {
    std::vector<json> entries{
        EntryDocument("linearization", {CurveDocument(1, "Cyan", kStraight), CurveDocument(2, "Magenta", kStraight)}),
        EntryDocument("gray-balance",
                      {CurveDocument(1, "Cyan", {0, 1, 2, 3, 4}), CurveDocument(2, "Magenta", {0, 0, 1, 3, 3})}),
        EntryDocument("multi-ink-limit",
                      {CurveDocument(1, "Cyan", kStraight, 12), CurveDocument(2, "Magenta", kStraight, 12)}),
        TableDocument()};
    for (json& entry : entries) {
      for (const json& replacement : replacements) {
        if (entry["type"] == replacement["type"]) entry = replacement;
      }
    }
    ASSERT_THAT(Build(ProfileDocument(entries), folder_.File(name)), Succeeds());
  }

  ToolResult Diff(const std::string& a, const std::string& b) {
    return RunTool({"diff", "--json", folder_.File(a), folder_.File(b)});
  }

  TempFolder folder_;
};

TEST_F(Judging, DifferencesAreToldInPercentOfTheRangeWithTheirPlace) {
  Make("a.icc");
  Samples changed = kStraight;
  changed[3] += 656;
  json table = TableDocument();
  table["payload"]["samples"] = "/wD/Af8C/wMABAAFMwYABw==";  // node 6: 33 06
  Make("b.icc", {EntryDocument("linearization",
                               {CurveDocument(1, "Cyan", changed), CurveDocument(2, "Magenta", {0, 32768, 65535})}),
                 table});
  const ToolResult different = Diff("a.icc", "b.icc");
  EXPECT_EQ(different.status, 3);
  const json differences = json::parse(different.out)["differences"];
  const auto find = [&](const std::string& place) {
    for (const json& item : differences) {
      if (item["place"].get<std::string>().starts_with(place)) return item;
    }
    return json();
  };
  const json curve = find("entry 6 linearization/ink 1 extend 0/samples");
  EXPECT_EQ(curve["greatest"], 656);
  EXPECT_NEAR(curve["percent"].get<double>(), 1.001, 0.001);
  EXPECT_EQ(curve["at"], "75 %");
  // Fewer samples of the same line: the counts differ, and the line by no more than its rounding.
  EXPECT_EQ(find("entry 6 linearization/ink 2 extend 0/count")["b"], 3);
  const json resampled = find("entry 6 linearization/ink 2 extend 0/samples");
  EXPECT_TRUE(resampled.is_null() || resampled["percent"].get<double>() < 0.001) << resampled;
  const json node = find("entry 8");
  EXPECT_EQ(node["greatest"], 0x33) << differences;
  EXPECT_NEAR(node["percent"].get<double>(), 20, 1e-9);
  EXPECT_EQ(node["at"], "100/100/0 %, output 0");
  EXPECT_THAT(RunTool({"diff", folder_.File("a.icc"), folder_.File("b.icc")}).out, HasSubstr("+1.00 %"));
  EXPECT_THAT(Diff("a.icc", "a.icc"), Succeeds());
  EXPECT_THAT(Diff("a.icc", "none.icc"), Fails());
}

TEST_F(Judging, FoldersAreComparedFileByFile) {
  for (const char* const name : {"a/deep", "b/deep"}) std::filesystem::create_directories(folder_.Path() / name);
  Make("a/same.icc");
  std::filesystem::copy(folder_.File("a/same.icc"), folder_.File("b/same.icc"));
  WriteText(folder_.File("a/readme"), "no profile");
  WriteText(folder_.File("b/readme"), "no profile");
  EXPECT_THAT(Diff("a", "b"), Succeeds());
  Make("a/deep/p.icc");
  Make("b/deep/p.icc", {EntryDocument("gray-balance", {CurveDocument(1, "Cyan", {0, 1, 2, 3, 3})})});
  Make("b/new.icc");
  const ToolResult different = Diff("a", "b");
  EXPECT_EQ(different.status, 3);
  const json files = json::parse(different.out)["files"];
  ASSERT_EQ(files.size(), 2u) << files;
  EXPECT_EQ(files[0]["file"], "deep/p.icc");
  EXPECT_FALSE(files[0]["differences"].empty());
  EXPECT_EQ(files[1], json({{"file", "new.icc"}, {"what", "only in B"}}));
  WriteText(folder_.File("b/readme"), "no profile either");
  EXPECT_THAT(Diff("a", "b"), Fails());
  EXPECT_THAT(Diff("a", "b/new.icc"), Fails());
}

TEST_F(Judging, TablesShowSlicesNeutralsAndTotalInk) {
  Make("p.icc");
  const auto lut = [&](const std::vector<std::string>& more) { return RunTool({"lut", folder_.File("p.icc")}, more); };
  const json total = json::parse(lut({"--json"}).out)["totalInk"];
  EXPECT_NEAR(total["greatest"].get<double>(), 100 * 258 / 255.0, 1e-9);
  EXPECT_EQ(total["at"], json({0, 1, 1}));
  EXPECT_NEAR(total["mean"].get<double>(), 100 * (4 * 255 + 28) / 255.0 / 8, 1e-9);
  EXPECT_EQ(lut({"--neutral", "--csv"}).out,
            "input 0,input 1,input 2,Cyan,ink 2,total percent\n0,0,0,255,0,100.00\n1,1,1,0,7,2.75\n");
  const json slice = json::parse(lut({"--slice", "0=1,2=0", "--json"}).out)["nodes"];
  ASSERT_EQ(slice.size(), 2u);
  EXPECT_EQ(slice[0]["inputs"], json({1, 0, 0}));
  EXPECT_EQ(slice[1]["samples"], json({0, 6}));
  EXPECT_THAT(lut({"--slice", "0=1"}).out, HasSubstr("100/100/0 %"));
  for (const char* const wrong : {"3=0", "0=2", "0", "=1", "0=", "0=1x", "-1=0"}) {
    EXPECT_THAT(lut({std::string("--slice=") + wrong}), Fails()) << wrong;
  }
}

TEST_F(Judging, WhatPrintsWrongIsFound) {
  const auto findings = [&](const std::vector<json>& replacement) {
    Make("p.icc", replacement);
    const ToolResult result = RunTool({"validate", "--semantic", "--json", folder_.File("p.icc")});
    const json report = json::parse(result.out);
    EXPECT_EQ(result.status, report["sound"] ? 0 : 4);
    // It loads all the same.
    EXPECT_THAT(RunTool({"validate", folder_.File("p.icc")}), Succeeds());
    std::string text;
    for (const json& finding : report["findings"]) {
      text += finding["severity"].get<std::string>() + " " + finding["place"].get<std::string>() + ": " +
              finding["rule"].get<std::string>() + "\n";
    }
    return text;
  };
  const auto curves = [&](const std::string& type, const Samples& cyan, const Samples& magenta, int extendInfo = 0) {
    std::vector<json> inks{CurveDocument(1, "Cyan", cyan, extendInfo)};
    if (!magenta.empty()) inks.push_back(CurveDocument(2, "Magenta", magenta, extendInfo));
    return findings({EntryDocument(type, inks)});
  };
  EXPECT_EQ(findings({}), "");
  ASSERT_THAT(BuildExample("printer_profile.json", folder_.File("e.icc")), Succeeds());
  EXPECT_THAT(RunTool({"validate", "--semantic", folder_.File("e.icc")}), Succeeds());
  EXPECT_THAT(curves("gray-balance", {0, 4, 5, 9, 65535}, {0, 1, 2, 3, 4}),
              testing::AllOf(testing::StartsWith("error entry 7 gray-balance/ink 1: 3 of 5 samples, the first at 50 %"),
                             testing::Not(HasSubstr("ink 2"))));
  EXPECT_THAT(curves("linearization", {0, 9, 8, 9, 65535}, kStraight),
              testing::StartsWith("error entry 6 linearization/ink 1: the curve falls from 9 to 8 behind 25 %"));
  EXPECT_EQ(curves("linearization", kStraight, {}), "error entry 6 linearization: the ink 2 has no linearization\n");
  EXPECT_EQ(curves("gray-balance", {0, 1, 2, 3, 4}, {}),
            "warning entry 7 gray-balance: the ink 2 has no gray balance curve\n");
  EXPECT_EQ(curves("multi-ink-limit", {0, 16384, 32768}, kStraight, 12),
            "error entry 8 chroma/ink 1: 4 of 8 nodes go beyond the ink limit of 50.0 %, at 0/0/0 % to 100.0 %\n");
}

// An entry on both routes stands in both tables of the file, which takes nothing from anybody.
TEST_F(Judging, AnEntryOnTwoRoutesIsSound) {
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/text_headed");
  ASSERT_THAT(BuildExample("text_headed/glossy.json", folder_.File("e.qpf")), Succeeds());
  EXPECT_THAT(RunTool({"validate", folder_.File("e.qpf")}).out, testing::EndsWith("sound\n"));
  Bytes bytes = ReadBytes(folder_.File("e.qpf"));
  bytes.back() ^= 1;
  WriteBytes(folder_.File("e.qpf"), bytes);
  EXPECT_THAT(RunTool({"validate", folder_.File("e.qpf")}).out, HasSubstr("another entry of this used type already"));
}

TEST_F(Judging, PlotsShowWhereTheyCanBeSeen) {
  Make("p.icc");
  const std::vector<std::string> words{"curves", folder_.File("p.icc"), "--entry", "linearization", "--ink", "1"};
  const auto curves = [&](const std::string& option) {
    std::vector<std::string> more = words;
    if (!option.empty()) more.push_back(option);
    return RunTool(more).out;
  };
  const auto onTerminal = [&](const std::string& locale, const std::string& option) {
    std::string command = "LC_ALL=" + locale + " " + kTool;
    for (const std::string& word : words) command += " " + word;
    return RunProgram({"script", "-qec", command + " " + option, "/dev/null"}).out;
  };
  const std::string braille = "\u2800";
  EXPECT_THAT(curves(""), testing::Not(HasSubstr(braille)));
  EXPECT_THAT(curves(""), HasSubstr("Cyan"));
  EXPECT_THAT(curves("--plot=braille"), HasSubstr(braille));
  EXPECT_THAT(curves("--plot=ascii"), HasSubstr("*\n"));
  EXPECT_THAT(curves("--plot=ascii"), testing::Not(HasSubstr(braille)));
  EXPECT_THAT(onTerminal("C.UTF-8", ""), HasSubstr(braille));
  EXPECT_THAT(onTerminal("C.UTF-8", "--no-plot"), testing::Not(HasSubstr(braille)));
  EXPECT_THAT(onTerminal("C", ""), testing::Not(testing::AnyOf(HasSubstr(braille), HasSubstr("*\r\n"))));
  EXPECT_THAT(RunTool({"curves", folder_.File("p.icc"), "--plot", "crayon"}), IsWrongUsage());
}

}  // namespace
}  // namespace nvx::test
