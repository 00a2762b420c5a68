// The tool on calibration histories and adjust files.
#include "support/files.h"
#include "tools/profile_maker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace nvx::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

json Calibration(int code, const std::string& name, int time) {
  const json curve = CurveDocument(3, "", {0, static_cast<std::uint32_t>(100 * code), 65535}, 12);
  return CalibrationDocument(code, -code, time, name, {EntryDocument("calibration-ink-limit", {curve})});
}

class CalibrationTool : public testing::Test {
 protected:
  // Builds a profile of the current generation; without calibrations it has no history.
  void Make(const std::string& name, const std::vector<json>& calibrations, int nextId = 0, int minor = 0) {
    json document = ProfileDocument({});
    if (!calibrations.empty()) document["entries"].push_back(HistoryDocument(calibrations, nextId));
    document["record"]["SaveVersion5"] = minor == 5;
    ASSERT_THAT(Build(document, folder_.File(name)), Succeeds());
  }

  json History(const std::string& name, const std::vector<std::string>& more = {}) {
    return ToolJson({"history", folder_.File(name), "--json"}, more);
  }

  json MinorVersion(const std::string& name) {
    return ToolJson({"info", "--json", folder_.File(name)})["info"]["ProfileMinorVersion"];
  }

  std::vector<std::string> Names(const std::string& name) {
    std::vector<std::string> names;
    const json history = History(name);
    for (const json& item : history["calibrations"]) {
      names.push_back(std::to_string(item["code"].get<int>()) + " " + item["name"].get<std::string>());
    }
    return names;
  }

  ToolResult Import(const std::string& from, const std::string& into, bool recode = false) {
    std::vector<std::string> words = {"import-history", folder_.File(from), folder_.File(into)};
    if (recode) words.push_back("--recode");
    return RunTool(words);
  }

  TempFolder folder_;
};

TEST_F(CalibrationTool, HistoryTellsCodesAndCurves) {
  Make("a.icc", {Calibration(0, "first", 5), Calibration(4, "second", 9)}, 5);
  const json history = History("a.icc", {"--curves", "4"});
  EXPECT_EQ(history["targetCreateTime"], 77);
  EXPECT_EQ(history["nextID"], 5);
  EXPECT_EQ(history["newest"], 4);
  EXPECT_EQ(history["calibrations"][1]["value"], -4);
  EXPECT_EQ(history["calibrations"][1]["inks"], json({3}));
  EXPECT_EQ(history["calibrations"][1]["curves"][0]["curves"][0]["samples"], json({0, 400, 65535}));
  EXPECT_FALSE(history["calibrations"][0].contains("curves"));
  const ToolResult shown = RunTool({"history", folder_.File("a.icc"), "--curves", "0"});
  EXPECT_THAT(shown.out, AllOf(HasSubstr("second"), HasSubstr("calibration-ink-limit (type 23)")));
  EXPECT_THAT(RunTool({"history", folder_.File("a.icc"), "--curves", "3"}), Fails());
}

TEST_F(CalibrationTool, ImportNeverLosesACalibration) {
  Make("from.icc", {Calibration(0, "x", 1), Calibration(2, "y", 2)}, 3);
  Make("into.icc", {Calibration(0, "a", 3), Calibration(1, "b", 4)}, 2, 5);
  const Bytes before = ReadBytes(folder_.File("into.icc"));

  // Equal counts would replace the history, equal codes would merge two calibrations.
  EXPECT_THAT(Import("from.icc", "into.icc"), Fails("1 of 2 calibrations have codes that are taken"));
  EXPECT_EQ(ReadBytes(folder_.File("into.icc")), before);

  EXPECT_THAT(Import("from.icc", "into.icc", true).out, HasSubstr("code 0 became 3"));
  EXPECT_THAT(Names("into.icc"), testing::ElementsAre("3 x", "2 y", "0 a", "1 b"));
  EXPECT_EQ(History("into.icc")["nextID"], 4);
  EXPECT_EQ(MinorVersion("into.icc"), 5);

  Make("empty.icc", {});
  EXPECT_THAT(RunTool({"history", folder_.File("empty.icc")}), Fails());
  EXPECT_THAT(Import("empty.icc", "into.icc"), Fails());
  EXPECT_THAT(Import("from.icc", "empty.icc"), Succeeds());
  EXPECT_THAT(Names("empty.icc"), testing::ElementsAre("0 x", "2 y"));
  EXPECT_THAT(RunTool({"import-history", folder_.File("from.icc"), kFrameProfile}), Fails());
}

TEST_F(CalibrationTool, TheTimelineTellsTheGreatestChangeOfEachInk) {
  // The history is not in the order of time.
  Make("a.icc", {Calibration(9, "new", 30), Calibration(0, "old", 10), Calibration(4, "middle", 20)}, 10);
  const json timeline = History("a.icc", {"--timeline"})["timeline"];
  ASSERT_EQ(timeline.size(), 3u);
  EXPECT_EQ(timeline[0]["name"], "old");
  EXPECT_EQ(timeline[0]["changes"], json::array());
  EXPECT_EQ(timeline[1]["name"], "middle");
  const json change = timeline[2]["changes"][0];
  EXPECT_EQ(change["curves"], "calibration-ink-limit");
  EXPECT_EQ(change["ink"], 3);
  EXPECT_NEAR(change["percent"].get<double>(), 100 * 500 / 65535.0, 1e-9);
  EXPECT_EQ(change["input"], 50);
  EXPECT_THAT(RunTool({"history", folder_.File("a.icc"), "--timeline"}).out, HasSubstr("+0.76 % at 50 %"));
}

TEST_F(CalibrationTool, RemoveAndRenameLeaveAllElseAlone) {
  json damaged = Calibration(1, "damaged", 1);
  damaged["payload"]["entries"][0] = {{"type", "calibration-ink-limit"}, {"bytes", "AAECAw=="}};
  Make("a.icc", {Calibration(0, "x", 5), damaged, Calibration(2, "y", 6)}, 3, 5);
  const auto entries = [&] { return ToolJson({"dump", folder_.File("a.icc")})["entries"][1]["payload"]["entries"]; };
  json wanted = entries();
  ASSERT_THAT(RunTool({"rename-calibration", folder_.File("a.icc"), "2", "\u6708\u66dc"}), Succeeds());
  wanted[3]["containerData"]["name"] = "\u6708\u66dc";
  EXPECT_EQ(entries(), wanted);
  ASSERT_THAT(RunTool({"remove-calibration", folder_.File("a.icc"), "0"}), Succeeds());
  wanted.erase(1);
  EXPECT_EQ(entries(), wanted);
  EXPECT_EQ(History("a.icc")["nextID"], 3);
  EXPECT_EQ(MinorVersion("a.icc"), 5);

  const Bytes before = ReadBytes(folder_.File("a.icc"));
  // One of the codes is not there: none is removed.
  EXPECT_THAT(RunTool({"remove-calibration", folder_.File("a.icc"), "2", "7"}), Fails("no calibration has the code 7"));
  EXPECT_THAT(RunTool({"rename-calibration", folder_.File("a.icc"), "2", std::string(21, 'x')}), Fails());
  EXPECT_THAT(RunTool({"rename-calibration", folder_.File("a.icc"), "2", ""}), Fails());
  EXPECT_THAT(RunTool({"remove-calibration", kFrameProfile, "2"}), Fails());
  EXPECT_EQ(ReadBytes(folder_.File("a.icc")), before);
}

TEST_F(CalibrationTool, CalibrateAppendsMeasuredCurves) {
  Make("a.icc", {Calibration(0, "x", 5)}, 0);
  const auto calibrate = [&](const std::string& csv, const std::vector<std::string>& more = {}) {
    WriteText(folder_.File("c.csv"), csv);
    return RunTool({"calibrate", folder_.File("a.icc"), "--csv", folder_.File("c.csv"), "--name", "Monday"}, more);
  };
  const std::string good =
      "entry,ink,extend,name,index,sample\r\nlinearization,3,0,\"Yellow, new\",0,5\r\n"
      "linearization,3,0,\"Yellow, new\",1,65535\r\nink-limit,3,12,,0,0\r\nink-limit,3,12,,1,60000\r\n";
  EXPECT_THAT(calibrate(good, {"--time", "99", "--value", "-3"}).out, HasSubstr("calibration 1 \"Monday\" appended"));
  const json history = History("a.icc", {"--curves", "1"});
  EXPECT_EQ(history["nextID"], 2);
  const json added = history["calibrations"][1];
  EXPECT_EQ(added["time"], 99);
  EXPECT_EQ(added["value"], -3);
  EXPECT_EQ(added["curves"][1]["curves"][0]["inkName"], "Yellow, new");
  EXPECT_EQ(added["curves"][1]["curves"][0]["samples"], json({5, 65535}));
  EXPECT_EQ(added["curves"][0]["curves"][0]["extendInfo"], 12);
  EXPECT_EQ(added["curves"][0]["curves"][0]["samples"], json({0, 60000}));

  const Bytes before = ReadBytes(folder_.File("a.icc"));
  const TextPairs mistakes{{"", "line 1: the text is empty"},
                           {"ink,index\n1,0\n", "line 1: the column \"sample\" is missing"},
                           {"ink,index,sample\n", "there are no curves"},
                           {"ink,index,sample\n1,0,0\n1,2,5\n", "line 3: the samples of a curve stand together"},
                           {"ink,index,sample\n1,0,0\n\n1,1,65536\n", "line 4: the sample is \"65536\""},
                           {"ink,index,sample\n300,0,0\n", "line 2: the ink is \"300\""},
                           {"ink,index,sample\n1,0\n", "line 2: 2 fields stand where 3 are named"},
                           {"ink,index,sample\n1,0,0\n2,0,0\n1,0,0\n", "line 4: the ink 1 has this curve already"},
                           {"ink,index,sample,entry\n1,0,0,ucr\n", "line 2: a calibration has linearization"},
                           {"ink,index,sample,entry,extend\n1,0,0,ink-limit,14\n",
                            "line 2: an ink limit of a calibration has the extend 12"},
                           {"ink,index,sample,name\n1,0,0,\"x\n", "line 2: a quote is not closed"}};
  for (const auto& [csv, message] : mistakes) {
    EXPECT_THAT(calibrate(csv), Fails(message));
  }
  EXPECT_EQ(ReadBytes(folder_.File("a.icc")), before);
}

// Of two calibrations with one code the payload has the second alone: built anew, the first would be gone.
TEST_F(CalibrationTool, ATwinIsNeverWrittenAway) {
  Make("twins.icc", {Calibration(1, "first", 1), Calibration(2, "second", 2)}, 3);
  Bytes bytes = ReadBytes(folder_.File("twins.icc"));
  const Bytes second{'H', 'E', 'A', 'C', 88, 0, 0, 0};
  std::size_t patched = 0;
  for (auto at = bytes.begin();; ++at) {
    at = std::search(at, bytes.end(), second.begin(), second.end());
    if (at == bytes.end()) break;
    if (at[12] != 20 || at[24] != 2) continue;
    at[24] = 1;
    ++patched;
  }
  ASSERT_EQ(patched, 1U);
  WriteBytes(folder_.File("twins.icc"), bytes);
  WriteText(folder_.File("c.csv"), "ink,index,sample\n1,0,0\n1,1,65535\n");
  const std::vector<std::vector<std::string>> changes{
      {"calibrate", folder_.File("twins.icc"), "--csv", folder_.File("c.csv"), "--name", "third"},
      {"remove-calibration", folder_.File("twins.icc"), "1"},
      {"rename-calibration", folder_.File("twins.icc"), "1", "other"}};
  for (const std::vector<std::string>& change : changes) {
    EXPECT_THAT(RunTool(change), Fails()) << change[0];
    EXPECT_EQ(ReadBytes(folder_.File("twins.icc")), bytes) << change[0];
  }
  Make("from.icc", {Calibration(5, "x", 1)}, 6);
  EXPECT_THAT(Import("from.icc", "twins.icc"), Fails());
  EXPECT_EQ(ReadBytes(folder_.File("twins.icc")), bytes);
}

TEST_F(CalibrationTool, ImportLeavesADamagedHistoryAlone) {
  json damaged = Calibration(1, "damaged", 1);
  damaged["payload"]["entries"][0] = {{"type", "calibration-ink-limit"}, {"bytes", "AAECAw=="}};
  Make("from.icc", {Calibration(0, "x", 1)}, 1);
  Make("into.icc", {damaged}, 2);
  const Bytes before = ReadBytes(folder_.File("into.icc"));
  EXPECT_THAT(Import("from.icc", "into.icc"), Fails("calibration 1, calibration-ink-limit 0"));
  EXPECT_EQ(ReadBytes(folder_.File("into.icc")), before);
}

TEST_F(CalibrationTool, AdjustFiles) {
  const auto adjust = [&](const std::string& text, const std::vector<std::string>& more = {}) {
    WriteText(folder_.File("a.txt"), text);
    return RunTool({"adjust", folder_.File("a.txt")}, more);
  };
  const std::string special =
      "SpecialInkset=2\nSpecialInkCount=1\nSpecialInk=12\ng_SpecialDensity_0012=80\nVDApplyWay_0012=1\n"
      "VD02Curve_0012=5,6\nLimitCurve_0012=7\nlast=1";
  const json document = json::parse(adjust(special, {"--json"}).out);
  EXPECT_EQ(document["kind"], "special");
  EXPECT_EQ(document["values"]["inks"][0]["density"], 80);
  EXPECT_EQ(document["curves"]["VD02Curve_0012"][1], 6);
  EXPECT_EQ(document["curves"]["LimitCurve_0012"][0], 7);
  EXPECT_EQ(document["remarks"].size(), 3u);
  EXPECT_THAT(adjust(special).out, HasSubstr("the last line has no line end and is dropped"));

  EXPECT_THAT(adjust("Heater1[Value]=1\n"), Fails("Adjust file:Parameter none (key = FeedAdjust[WhichUse])"));
  EXPECT_THAT(adjust(special, {"--kind", "device"}).out, HasSubstr("nothing reads this key"));
  EXPECT_THAT(adjust("x=1\n"), Fails());
  EXPECT_THAT(adjust("x=1\n", {"--kind", "paper"}), IsWrongUsage());
}

}  // namespace
}  // namespace nvx::test
