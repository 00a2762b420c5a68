// Lists of profiles: what is shown, chosen and sorted, and what becomes of files that cannot be read.
#include "support/environment.h"
#include "support/files.h"
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
using testing::HasSubstr;
using testing::Not;

constexpr int kDay = 86400;

class ToolList : public ::testing::Test {
 protected:
  ToolList() {
    std::filesystem::create_directories(folder_.Path() / "deep/er");
    Make("a.icc", "Matte paper", 720, 1750000000);
    Make("deep/b.icc", "Glossy film", 360, 1760000000,
         {CalibrationDocument(3, 7, 1755000000, "cal 3"), CalibrationDocument(1, 7, 1758000000, "cal 1"),
          CalibrationDocument(2, 7, 0, "cal 2")});
    Make("deep/er/c.icc", "Glossy paper", 1440, 1770000000);
    WriteText(folder_.File("notes.txt"), "no profile");
  }

  void Make(const std::string& name, const std::string& media, int scan, std::int64_t time,
            const std::vector<json>& calibrations = {}) {
    json document = ProfileDocument({});
    if (!calibrations.empty()) document["entries"].push_back(HistoryDocument(calibrations));
    const json names = {{{"Language", 9}, {"Name", media}}, {{"Language", 7}, {"Name", "auf Deutsch"}}};
    document["record"] = {{"ScanResolution", scan},
                          {"FeedResolution", 1080},
                          {"InkMakerCode", 3},
                          {"UpdateTimeValue", time},
                          {"Binary", {{"ModelNumber", 1234}, {"DefaultMediaName", "?"}, {"MediaInfo", names}}}};
    ASSERT_THAT(Build(document, folder_.File(name)), Succeeds());
  }

  // The file names of a list, in its order.
  std::vector<std::string> Listed(const std::vector<std::string>& arguments, int status = 0) {
    const ToolResult result = RunTool({"list", "-r", folder_.Path().string(), "--json"}, arguments);
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
  const json line = ToolJson({"list", folder_.File("deep/b.icc"), "--json"});
  const json info = ToolJson({"info", "--json", folder_.File("deep/b.icc")})["info"];
  EXPECT_EQ(line["media"], info["MediaName"]);
  EXPECT_EQ(line["updateTime"], info["UpdateTimeValue"]);
  EXPECT_EQ(line["model"], "1234/00/00");
  EXPECT_EQ(line["inkSet"], "3/0/0/0");
  EXPECT_EQ(line["resolution"], "360x1080");
  EXPECT_EQ(line["calibrations"], 3);
  EXPECT_EQ(line["newestCalibration"], (json{{"code", 1}, {"name", "cal 1"}, {"value", 7}, {"time", 1758000000}}));
  const ScopedLanguage german("de_DE.UTF-8");
  EXPECT_EQ(ToolJson({"list", folder_.File("a.icc"), "--json"})["media"], "auf Deutsch");
}

TEST_F(ToolList, ChoosesAndSorts) {
  const ScopedVariable now("SOURCE_DATE_EPOCH", std::to_string(1760000000 + 5 * kDay));
  for (const auto& [arguments, names] : std::vector<std::pair<std::vector<std::string>, Names>>{
           {{}, {"a.icc", "b.icc", "c.icc"}},
           {{"--media", "gloss?*"}, {"b.icc", "c.icc"}},
           {{"--media", "*paper", "--resolution", "1440x1080"}, {"c.icc"}},
           {{"--calibration", "cal 1"}, {"b.icc"}},
           {{"--older-than", "2025-10-01"}, {"a.icc"}},
           {{"--newer-than", "5d"}, {"b.icc", "c.icc"}},
           {{"--older-than", "5d"}, {"a.icc"}},
           {{"--sort", "resolution"}, {"b.icc", "a.icc", "c.icc"}},  // numbers count as numbers
           {{"--sort", "model,-updated"}, {"c.icc", "b.icc", "a.icc"}}}) {
    EXPECT_EQ(Listed(arguments), names) << testing::PrintToString(arguments);
  }
}

TEST_F(ToolList, WritesTablesAndCommaSeparatedValues) {
  Make("comma.icc", "Film, \"fine\"", 720, 1750000000);
  const ToolResult csv = RunTool({"list", folder_.Path().string(), "--csv", "--columns", "media,updated"});
  EXPECT_EQ(csv.out, "media,updated\nMatte paper,2025-06-15\n\"Film, \"\"fine\"\"\",2025-06-15\n");
  const ToolResult table = RunTool({"list", folder_.File("deep"), "--columns", "calibration,version"});
  EXPECT_EQ(table.out, "calibration  version\ncal 1        3.0\n");
}

TEST_F(ToolList, ReadsEveryFormat) {
  const ScopedVariable conversion("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  const std::string container = NVXPROFILE_SOURCE_FOLDER "/fuzz/corpus/container/curves";
  const ToolResult result = RunTool({"list", kExamples + "/legacy/glossy.qpf", container, kFrameProfile, "--csv",
                                     "--columns", "format,ink-set,resolution,version"});
  EXPECT_EQ(result.out,
            "format,ink-set,resolution,version\n"
            "\"text-headed profile, version 2\",SetA,720x1080,2.0\n"
            "entry-table container,,,\n"
            "plain ICC profile,,,\n");
}

TEST_F(ToolList, NamesWhatItCannotReadAndGoesOn) {
  WriteText(folder_.File("broken.ICC"), "no profile");
  const Bytes whole = ReadBytes(folder_.File("a.icc"));
  WriteBytes(folder_.File("cut.icc"), First(whole, whole.size() / 2));
  ASSERT_EQ(::mkfifo(folder_.File("pipe.icc").c_str(), 0600), 0);
  EXPECT_EQ(Listed({}, 1), (Names{"a.icc", "b.icc", "c.icc"}));
  const ToolResult result = RunTool({"list", folder_.Path().string(), "/no/such", folder_.File("pipe.icc")});
  for (const char* const message :
       {"/no/such: No such file or directory", "pipe.icc: is a pipe", "cut.icc: ICC header: size beyond the end",
        "broken.ICC: ICC profile: ends inside"}) {
    EXPECT_THAT(result, Fails(message));
  }
  EXPECT_THAT(result.err, Not(HasSubstr("notes.txt"))) << "a file that nobody takes for a profile";

  std::filesystem::create_directories(folder_.Path() / "empty");
  EXPECT_THAT(RunTool({"list", folder_.File("empty")}), Fails("empty: has no profiles"));
}

TEST_F(ToolList, RefusesWhatItDoesNotUnderstand) {
  for (const auto& [option, value] : TextPairs{{"--columns", "model,weight"},
                                               {"--sort", "-weight"},
                                               {"--older-than", "d"},
                                               {"--older-than", "90"},
                                               {"--older-than", "90m"},
                                               {"--older-than", "x90d"},
                                               {"--older-than", "2024-13-01x"}}) {
    EXPECT_THAT(RunTool({"list", folder_.Path().string(), option, value}), IsWrongUsage()) << option << value;
  }
}

}  // namespace
