// Lists of profiles: what is shown, chosen and sorted, and what becomes of files that cannot be read.
#include "support/environment.h"
#include "support/files.h"
#include "support/qpf_builder.h"
#include "tools/profile_maker.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
using namespace nvx::test;

constexpr const char* kExamples = NVXPROFILE_SOURCE_FOLDER "/examples/legacy";
constexpr int kDay = 86400;

class ToolList : public ::testing::Test {
 protected:
  ToolList() {
    std::filesystem::create_directories(folder_.Path() / "deep/er");
    Make("a.icc", "Matte paper", 720, 1750000000);
    Make("deep/b.icc", "Glossy film", 360, 1760000000, {{3, 1755000000}, {1, 1758000000}, {2, 0}});
    Make("deep/er/c.icc", "Glossy paper", 1440, 1770000000);
    WriteText(folder_.File("notes.txt"), "no profile");
  }

  struct Calibration {
    int code;
    std::int64_t time;
  };

  void Make(const std::string& name, const std::string& media, int scan, std::int64_t time,
            const std::vector<Calibration>& calibrations = {}) {
    json children = {{{"type", "calibration-target"}, {"payload", {{"createTime", time}}}}};
    for (const Calibration& calibration : calibrations) {
      children.push_back(
          {{"type", "calibration"},
           {"optionInfo", calibration.code},
           {"containerData",
            {{"value", 7}, {"time", calibration.time}, {"name", "cal " + std::to_string(calibration.code)}}},
           {"payload", {{"entries", json::array()}}}});
    }
    json document = {
        {"nvxprofile", 1},
        {"format", "printer-profile"},
        {"record",
         {{"ScanResolution", scan},
          {"FeedResolution", 1080},
          {"InkMakerCode", 3},
          {"UpdateTimeValue", time},
          {"Binary",
           {{"ModelNumber", 1234},
            {"DefaultMediaName", "?"},
            {"MediaInfo", {{{"Language", 9}, {"Name", media}}, {{"Language", 7}, {"Name", "auf Deutsch"}}}}}}}},
        {"entries", {{{"type", "icc"}, {"file", kFrameProfile}}}}};
    if (!calibrations.empty()) {
      document["entries"].push_back({{"type", "calibration-history"}, {"payload", {{"entries", children}}}});
    }
    WriteText(folder_.File("document.json"), document.dump());
    const ToolResult built = RunTool({"build", folder_.File("document.json"), "-o", folder_.File(name)});
    ASSERT_EQ(built.status, 0) << built.err;
    std::filesystem::remove(folder_.File("document.json"));
  }

  // The file names of a list, in its order.
  std::vector<std::string> Listed(std::vector<std::string> arguments, int status = 0) {
    arguments.insert(arguments.begin(), {"list", "-r", folder_.Path().string(), "--json"});
    const ToolResult result = RunTool(arguments);
    EXPECT_EQ(result.status, status) << result.err;
    std::vector<std::string> names;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
      const std::string path = json::parse(line)["file"];
      names.push_back(path.substr(path.find_last_of("/\\") + 1));
    }
    return names;
  }

  const ScopedLanguage language_{"en_US.UTF-8"};
  const ScopedVariable epoch_{"SOURCE_DATE_EPOCH", nullptr};
  const ScopedVariable zone_{"TZ", "UTC"};
  nvx::test::TempFolder folder_;
};

using Names = std::vector<std::string>;

TEST_F(ToolList, TellsWhatALoadWouldTell) {
  const ToolResult result = RunTool({"list", folder_.File("deep/b.icc"), "--json"});
  ASSERT_EQ(result.status, 0) << result.err;
  const json line = json::parse(result.out);
  const json info = json::parse(RunTool({"info", "--json", folder_.File("deep/b.icc")}).out)["info"];
  EXPECT_EQ(line["media"], info["MediaName"]);
  EXPECT_EQ(line["updateTime"], info["UpdateTimeValue"]);
  EXPECT_EQ(line["model"], "1234/00/00");
  EXPECT_EQ(line["inkSet"], "3/0/0/0");
  EXPECT_EQ(line["resolution"], "360x1080");
  EXPECT_EQ(line["calibrations"], 3);
  EXPECT_EQ(line["newestCalibration"], (json{{"code", 1}, {"name", "cal 1"}, {"value", 7}, {"time", 1758000000}}));
  const ScopedLanguage german("de_DE.UTF-8");
  EXPECT_EQ(json::parse(RunTool({"list", folder_.File("a.icc"), "--json"}).out)["media"], "auf Deutsch");
}

TEST_F(ToolList, ChoosesAndSorts) {
  EXPECT_EQ(Listed({}), (Names{"a.icc", "b.icc", "c.icc"}));
  EXPECT_EQ(Listed({"--media", "gloss?*"}), (Names{"b.icc", "c.icc"}));
  EXPECT_EQ(Listed({"--media", "*paper", "--resolution", "1440x1080"}), (Names{"c.icc"}));
  EXPECT_EQ(Listed({"--calibration", "cal 1"}), (Names{"b.icc"}));
  EXPECT_EQ(Listed({"--older-than", "2025-10-01"}), (Names{"a.icc"}));
  EXPECT_EQ(Listed({"--sort", "resolution"}), (Names{"b.icc", "a.icc", "c.icc"})) << "numbers count as numbers";
  EXPECT_EQ(Listed({"--sort", "model,-updated"}), (Names{"c.icc", "b.icc", "a.icc"}));
  const ScopedVariable now("SOURCE_DATE_EPOCH", std::to_string(1760000000 + 5 * kDay));
  EXPECT_EQ(Listed({"--newer-than", "5d"}), (Names{"b.icc", "c.icc"}));
  EXPECT_EQ(Listed({"--older-than", "5d"}), (Names{"a.icc"}));
}

TEST_F(ToolList, WritesTablesAndCommaSeparatedValues) {
  Make("comma.icc", "Film, \"fine\"", 720, 1750000000);
  const ToolResult csv = RunTool({"list", folder_.Path().string(), "--csv", "--columns", "media,updated"});
  EXPECT_EQ(csv.out, "media,updated\nMatte paper,2025-06-15\n\"Film, \"\"fine\"\"\",2025-06-15\n");
  const ToolResult table = RunTool({"list", folder_.File("deep"), "--columns", "calibration,version"});
  EXPECT_EQ(table.out, "calibration  version\ncal 1        3.0\n");
}

TEST_F(ToolList, ReadsEveryFormat) {
  const ScopedVariable conversion("NVXPROFILE_PROFILE_DIR", kExamples);
  const std::string container = NVXPROFILE_SOURCE_FOLDER "/fuzz/corpus/container/curves";
  const ToolResult result = RunTool({"list", std::string(kExamples) + "/glossy.qpf", container, kFrameProfile, "--csv",
                                     "--columns", "format,ink-set,resolution,version"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out,
            "format,ink-set,resolution,version\n"
            "\"text-headed profile, version 2\",SetA,720x1080,2.0\n"
            "entry-table container,,,\n"
            "plain ICC profile,,,\n");
}

TEST_F(ToolList, NamesWhatItCannotReadAndGoesOn) {
  WriteText(folder_.File("broken.ICC"), "no profile");
  nvx::test::Bytes cut = nvx::test::ReadBytes(folder_.File("a.icc"));
  cut.resize(cut.size() / 2);
  nvx::test::WriteBytes(folder_.File("cut.icc"), cut);
  ASSERT_EQ(::mkfifo(folder_.File("pipe.icc").c_str(), 0600), 0);
  EXPECT_EQ(Listed({}, 1), (Names{"a.icc", "b.icc", "c.icc"}));
  const ToolResult result = RunTool({"list", folder_.Path().string(), "/no/such", folder_.File("pipe.icc")});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("/no/such: No such file or directory"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("pipe.icc: is a pipe"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("cut.icc: ICC header: size beyond the end"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("broken.ICC: ICC profile: ends inside"), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find("notes.txt"), std::string::npos) << "a file that nobody takes for a profile";

  std::filesystem::create_directories(folder_.Path() / "empty");
  const ToolResult empty = RunTool({"list", folder_.File("empty")});
  EXPECT_EQ(empty.status, 1);
  EXPECT_NE(empty.err.find("empty: has no profiles"), std::string::npos) << empty.err;
}

TEST_F(ToolList, RefusesWhatItDoesNotUnderstand) {
  EXPECT_EQ(RunTool({"list", folder_.Path().string(), "--columns", "model,weight"}).status, 2);
  EXPECT_EQ(RunTool({"list", folder_.Path().string(), "--sort", "-weight"}).status, 2);
  for (const char* const age : {"", "d", "90", "90m", "x90d", "2024-13-01x"}) {
    if (*age == 0) continue;
    EXPECT_EQ(RunTool({"list", folder_.Path().string(), "--older-than", age}).status, 2) << age;
  }
}

}  // namespace
