// Calibration files, judged by the programs that they are exchanged with.
#include "support/files.h"
#include "tools/profile_maker.h"
#include "tools/run_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace nvx::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

const std::vector<std::string> kInks{"Cyan", "Magenta", "Yellow", "Black"};

std::vector<json> PowerCurves(std::size_t count, double power) {
  std::vector<json> curves;
  for (std::size_t i = 0; i < kInks.size(); ++i) {
    const double exponent = power + 0.1 * static_cast<double>(i);
    curves.push_back(CurveDocument(static_cast<int>(i) + 1, kInks[i],
                                   Sampled(count, [=](double x) { return std::pow(x, exponent); })));
  }
  return curves;
}

// Everything in the file but the curves of one entry.
json AllBut(const std::string& path, const std::string& className) {
  json document = ToolJson({"dump", path});
  for (json& entry : document["entries"]) {
    if (entry["class"] == className) entry["payload"] = nullptr;
  }
  return document;
}

class Cal : public testing::Test {
 protected:
  void SetUp() override {
    history_ = HistoryDocument(
        {CalibrationDocument(4, 0, 9, "kept", {{{"type", "calibration-linearization"}, {"bytes", "AAECAwQFBgc="}}})},
        5);
    Make("p.icc", 256, 1);
  }

  void Make(const std::string& name, std::size_t count, double power) {
    const json document = ProfileDocument({EntryDocument("linearization", PowerCurves(count, power)),
                                           EntryDocument("ink-limit", PowerCurves(16, 1)),
                                           {{"type", "replacement-icc"}, {"file", kFrameProfile}},
                                           history_});
    ASSERT_THAT(Build(document, folder_.File(name)), Succeeds());
  }

  ToolResult Apply(const std::string& cal, const std::vector<std::string>& more) {
    return RunTool({"apply-cal", folder_.File("p.icc"), folder_.File(cal)}, more);
  }

  ToolResult WriteCal(const std::string& profile, const std::string& cal) {
    return RunTool({"curves", folder_.File(profile), "--entry", "linearization", "--cal", folder_.File(cal)});
  }

  TempFolder folder_;
  json history_;
};

TEST_F(Cal, CurvesGoOutAndComeBack) {
  for (const std::size_t count : {2u, 33u, 256u, 1024u}) {
    SCOPED_TRACE(count);
    Make("from.icc", count, 1.3);
    Make("p.icc", count, 1);
    const json before = AllBut(folder_.File("p.icc"), "CLinearizationEntry");
    const Bytes bytesBefore = ReadBytes(folder_.File("p.icc"));
    ASSERT_THAT(WriteCal("from.icc", "l.cal"), Succeeds());
    ASSERT_THAT(Apply("l.cal", {"--entry", "linearization"}), Succeeds());
    const auto wanted = SamplesIn(folder_.File("from.icc"), "linearization");
    const auto got = SamplesIn(folder_.File("p.icc"), "linearization");
    ASSERT_EQ(got.size(), 4u);
    for (const auto& [ink, samples] : wanted) {
      ASSERT_EQ(got.at(ink).size(), count);
      for (std::size_t i = 0; i < count; ++i) ASSERT_NEAR(got.at(ink)[i], samples[i], 1) << ink << " " << i;
    }
    EXPECT_EQ(AllBut(folder_.File("p.icc"), "CLinearizationEntry"), before);
    // Bytes differ within the samples of the four curves alone.
    const Bytes bytes = ReadBytes(folder_.File("p.icc"));
    ASSERT_EQ(bytes.size(), bytesBefore.size());
    const auto first = std::mismatch(bytes.begin(), bytes.end(), bytesBefore.begin()).first;
    const auto last = std::mismatch(bytes.rbegin(), bytes.rend(), bytesBefore.rbegin()).first.base();
    EXPECT_LE(last - first, static_cast<std::ptrdiff_t>(4 * (2 * count + 4)));
  }
}

TEST_F(Cal, ArgyllTakesWhatIsWritten) {
  Make("from.icc", 33, 1.3);
  ASSERT_THAT(WriteCal("from.icc", "l.cal"), Succeeds());
  const auto samples = SamplesIn(folder_.File("from.icc"), "linearization");
  const std::string command = "printf '0.25 0.5 0.75 1\\n' | xicclu -v 0 -ir " + folder_.File("l.cal");
  const ToolResult looked = RunProgram({"sh", "-c", command});
  std::istringstream values(looked.out);
  for (int ink = 1; ink <= 4; ++ink) {
    double value = -1;
    ASSERT_TRUE(values >> value) << looked.out << looked.err;
    EXPECT_NEAR(value, samples.at(ink)[static_cast<std::size_t>(8 * ink)] / 65535.0, 2e-6);
  }
  EXPECT_THAT(RunProgram({"applycal", folder_.File("l.cal"), kFrameProfile, folder_.File("calibrated.icc")}),
              Succeeds());
}

TEST_F(Cal, FilesOfSynthcalComeIn) {
  ASSERT_THAT(RunProgram({"synthcal", "-t", "o", "-d", "4", "-r", "65", "-p", "1.5,1.2,1,0.8", folder_.File("s")}),
              Succeeds());
  ASSERT_THAT(Apply("s.cal", {"--entry", "linearization"}), Succeeds());
  const auto got = SamplesIn(folder_.File("p.icc"), "linearization");
  const std::vector<double> powers{1.5, 1.2, 1, 0.8};
  for (int ink = 1; ink <= 4; ++ink) {
    const Samples& samples = got.at(ink);
    EXPECT_TRUE(std::is_sorted(samples.begin(), samples.end()));
    for (std::size_t i = 0; i < samples.size(); ++i) {
      // A curve through 65 points is near to the power that they lie on, and worst where that is steepest.
      ASSERT_NEAR(samples[i] / 65535.0,
                  std::pow(static_cast<double>(i) / 255, powers[static_cast<std::size_t>(ink - 1)]), 0.003);
    }
  }
}

constexpr const char* kHead =
    "CAL\n\nDEVICE_CLASS \"OUTPUT\"\nCOLOR_REP \"CMYK\"\n\nNUMBER_OF_FIELDS 5\nBEGIN_DATA_FORMAT\n"
    "CMYK_I CMYK_C CMYK_M CMYK_Y CMYK_K\nEND_DATA_FORMAT\n\nNUMBER_OF_SETS 3\nBEGIN_DATA\n";
constexpr const char* kRows = "0 0 0 0 0\n0.5 0.4 0.5 0.5 0.5\n1 1 1 1 0.7\nEND_DATA\n";
constexpr const char* kTargets =
    "CAL\n\nNUMBER_OF_FIELDS 6\nBEGIN_DATA_FORMAT\nPARAMTYPE CMYK_I CMYK_C CMYK_M CMYK_Y CMYK_K\n"
    "END_DATA_FORMAT\n\nNUMBER_OF_SETS 2\nBEGIN_DATA\nDEVMAX_USED 0 0.9 1 1 0.7\nDELMAX_AIM 0 60 80 82 46\nEND_DATA\n";

TEST_F(Cal, InkLimitsAreTakenAsStated) {
  WriteText(folder_.File("a.cal"), std::string(kHead) + kRows + kTargets);
  ASSERT_EQ(Apply("a.cal", {"--entry", "linearization"}).status, 0);
  // An entry has no other place for a limit than its curves.
  EXPECT_EQ(SamplesIn(folder_.File("p.icc"), "linearization").at(1).back(), 58982u);
  EXPECT_EQ(SamplesIn(folder_.File("p.icc"), "linearization").at(2).back(), 65535u);

  const json before = ToolJson({"dump", folder_.File("p.icc")})["entries"];
  EXPECT_THAT(Apply("a.cal", {"--new-calibration", "Monday"}).out,
              HasSubstr("calibration 5 \"Monday\" appended, with 4 curves and ink limits"));
  const json after = ToolJson({"dump", folder_.File("p.icc")})["entries"];
  // The calibration whose bytes do not parse is as it was, and so are all other entries.
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i]["class"] == "CCalibrationHistoryEntry") {
      EXPECT_THAT(after[i]["payload"]["entries"], testing::Contains(before[i]["payload"]["entries"][1]));
    } else {
      EXPECT_EQ(after[i], before[i]) << i;
    }
  }

  const auto curvesOf = [&](const std::string& code) {
    std::map<std::string, std::map<int, Samples>> curves;
    const json history = ToolJson({"history", folder_.File("p.icc"), "--curves", code, "--json"})["calibrations"];
    for (const json& entry : history.back()["curves"]) {
      for (const json& curve : entry["curves"]) curves[entry["name"]][curve["inkID"]] = curve["samples"].get<Samples>();
    }
    return curves;
  };
  const Samples limit = curvesOf("5")["calibration-ink-limit"][1];
  ASSERT_EQ(limit.size(), 256u);
  EXPECT_EQ(limit[128], 128u * 257);
  EXPECT_EQ(limit[255], 58982u);
  EXPECT_EQ(curvesOf("5")["calibration-linearization"][1].back(), 65535u);

  // The calibration goes out again with its limits.
  ASSERT_THAT(RunTool({"history", folder_.File("p.icc"), "--curves", "5", "--cal", folder_.File("b.cal")}), Succeeds());
  ASSERT_THAT(Apply("b.cal", {"--new-calibration", "Tuesday"}), Succeeds());
  EXPECT_NEAR(curvesOf("6")["calibration-ink-limit"][4].back(), 45875, 1);
}

TEST_F(Cal, WhatDoesNotFitIsRefusedWithTheLine) {
  const std::string good = std::string(kHead) + kRows;
  struct Mistake {
    std::string from;
    std::string to;
    std::string message;
  };
  const std::vector<Mistake> mistakes{
      {"CAL\n", "CTI3\n", "line 1: a table of the kind CAL is expected, and this is \"CTI3\""},
      {"OUTPUT", "DISPLAY", "DEVICE_CLASS must be OUTPUT, and is DISPLAY"},
      {"COLOR_REP \"CMYK\"", "COLOR_REP \"iRGB\"", "COLOR_REP \"iRGB\" names no inks"},
      {"COLOR_REP \"CMYK\"", "COLOR_REP \"CMYKC\"", "COLOR_REP \"CMYKC\" names an ink twice"},
      {"COLOR_REP", "INK_LIMITS \"1 1 1\"\nCOLOR_REP", "there are 3 ink limits and 4 inks"},
      {"COLOR_REP", "INK_LIMITS \"1 1 0 1\"\nCOLOR_REP", "the ink limit of Y is 0"},
      {"COLOR_REP", "INK_LIMITS \"1 1 x 1\"\nCOLOR_REP", "INK_LIMITS holds more than numbers"},
      {"COLOR_REP \"CMYK\"", "COLOR_REP \"CMYK", "line 4: a quote is not closed"},
      {"CMYK_C", "CMYK_O", "line 8: the field CMYK_C is missing"},
      {"NUMBER_OF_SETS 3", "NUMBER_OF_SETS 4", "NUMBER_OF_SETS says 4, and 3 are there"},
      {"NUMBER_OF_FIELDS 5", "NUMBER_OF_FIELDS x", "line 6: a number is expected behind NUMBER_OF_FIELDS"},
      {"0.5 0.4", "0.5 1.4", "line 14: CMYK_C is 1.4, and 0 to 1 is possible"},
      {"0.5 0.4", "0.5 nan", "line 14: CMYK_C is nan"},
      {"0.5 0.4", "0.5 0.4x", "line 14: CMYK_C is \"0.4x\", which is no number"},
      {"0.5 0.4", "0.4", "line 14: 4 values stand where 5 fields are"},
      {"0.5 0.4", "0 0.4", "line 14: the inputs do not ascend"},
      {"1 1 1 1 0.7", "0.9 1 1 1 0.7", "line 15: the last input is not 1"},
      {"END_DATA\n", "", "the text ends before END_DATA"},
      {good, "", "there is no table"}};
  const Bytes before = ReadBytes(folder_.File("p.icc"));
  for (const Mistake& mistake : mistakes) {
    std::string text = good;
    text.replace(text.rfind(mistake.from), mistake.from.size(), mistake.to);
    WriteText(folder_.File("bad.cal"), text);
    EXPECT_THAT(Apply("bad.cal", {"--entry", "linearization"}), Fails(mistake.message));
    EXPECT_EQ(ReadBytes(folder_.File("p.icc")), before);
  }
  EXPECT_THAT(Apply("none.cal", {"--entry", "linearization"}), Fails());
  EXPECT_THAT(Apply("p.icc", {"--entry", "linearization"}), Fails());
  WriteText(folder_.File("good.cal"), good);
  EXPECT_THAT(Apply("good.cal", {}), IsWrongUsage());
  EXPECT_THAT(Apply("good.cal", {"--entry", "gray-balance"}), Fails());
  EXPECT_THAT(Apply("good.cal", {"--new-calibration", std::string(21, 'x')}), Fails());
  EXPECT_THAT(Apply("good.cal", {"--entry", "linearization", "-o", folder_.File("none/p.icc")}), Fails());
  EXPECT_THAT(RunTool({"apply-cal", kFrameProfile, folder_.File("good.cal"), "--new-calibration", "x", "-o",
                       folder_.File("o.icc")}),
              Fails());
  EXPECT_EQ(ReadBytes(folder_.File("p.icc")), before);
}

TEST_F(Cal, InksAreKnownByTheirNamesOrByWhatTheUserSays) {
  const Samples straight = Sampled(5, [](double x) { return x; });
  const auto curves = [&](const std::string& third) {
    const std::vector<json> inks{CurveDocument(7, "Light Cyan", straight), CurveDocument(4, "", straight),
                                 CurveDocument(9, third, straight)};
    ASSERT_THAT(Build(ProfileDocument({EntryDocument("linearization", inks)}), folder_.File("p.icc")), Succeeds());
  };
  const auto write = [&](const std::vector<std::string>& more = {}) {
    return RunTool({"curves", folder_.File("p.icc"), "--cal", "-"}, more);
  };
  curves("orange");
  EXPECT_THAT(write().out, HasSubstr("COLOR_REP \"KOc\""));
  curves("Lt. Grey");
  EXPECT_THAT(write().out, HasSubstr("COLOR_REP \"Kc1k\""));
  curves("Varnish");
  EXPECT_THAT(write().err, HasSubstr("the ink 9 \"Varnish\" stands for no colorant by its name"));
  EXPECT_EQ(write().out, "");
  EXPECT_THAT(write({"--inks", "9=W,7=2m"}).out, HasSubstr("COLOR_REP \"KW2m\""));
  EXPECT_THAT(write({"--inks", "9=K"}).err, HasSubstr("both stand for K"));
  EXPECT_THAT(write({"--inks", "9=Q"}).err, HasSubstr("there is no colorant \"Q\""));

  WriteText(folder_.File("a.cal"), std::string(kHead) + kRows);
  EXPECT_THAT(Apply("a.cal", {"--entry", "linearization", "--inks", "9=W"}).err,
              HasSubstr("the file has no curve of c (ink 7), W (ink 9)"));
  EXPECT_EQ(Apply("a.cal", {"--entry", "linearization", "--inks", "9=W", "--partial"}).status, 0);
  EXPECT_EQ(SamplesIn(folder_.File("p.icc"), "linearization").at(4).back(), 45875u);
  EXPECT_EQ(SamplesIn(folder_.File("p.icc"), "linearization").at(7), straight);
}

}  // namespace
}  // namespace nvx::test
