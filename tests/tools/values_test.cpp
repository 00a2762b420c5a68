// Single values of profiles: named, read and changed, with every other byte left alone.
#include "support/environment.h"
#include "support/files.h"
#include "support/qpf_builder.h"
#include "support/qpf_reader.h"
#include "support/random_model.h"
#include "tools/profile_maker.h"

#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
using namespace nvx::test;

constexpr const char* kExample = NVXPROFILE_SOURCE_FOLDER "/examples/printer_profile.json";

class ToolValues : public ::testing::Test {
 protected:
  ToolValues() {
    const ToolResult built = RunTool({"build", kExample, "-o", file_});
    EXPECT_EQ(built.status, 0) << built.err;
  }

  std::string Get(const std::string& path) {
    const ToolResult result = RunTool({"get", file_, path});
    return result.status == 0 ? result.out.substr(0, result.out.size() - 1) : result.err;
  }
  ToolResult Set(std::vector<std::string> assignments) {
    assignments.insert(assignments.begin(), {"set", file_});
    return RunTool(assignments);
  }

  const ScopedLanguage language_{"en_US.UTF-8"};
  nvx::test::TempFolder folder_;
  const std::string file_ = folder_.File("p.icc");
};

// The places at which two files of one size differ.
std::vector<std::size_t> Differences(const Bytes& a, const Bytes& b) {
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    if (a[i] != b[i]) places.push_back(i);
  }
  return places;
}

TEST_F(ToolValues, AreNamedByPointerAndByShortName) {
  const json document = json::parse(RunTool({"dump", file_}).out);
  const json flat = document.flatten();
  std::vector<std::string> arguments{"get", "--json", file_};
  std::vector<json> wanted;
  for (const auto& [pointer, value] : flat.items()) {
    if (pointer.find("/samples/") != pointer.npos) continue;
    arguments.push_back(pointer);
    wanted.push_back(value);
  }
  const ToolResult all = RunTool(arguments);
  ASSERT_EQ(all.status, 0) << all.err;
  std::istringstream lines(all.out);
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count)
    EXPECT_EQ(json::parse(line), wanted[count]) << arguments[count + 3];
  EXPECT_EQ(count, wanted.size());

  EXPECT_EQ(Get("record/MediaName"), "Glossy film");
  EXPECT_EQ(Get("record/ModelNumber"), Get("/record/Binary/ModelNumber"));
  EXPECT_EQ(Get("media/heater/0"), "45");
  EXPECT_EQ(Get("linearization/ink/1/samples/0"), "0");
  EXPECT_EQ(Get("6/optionInfo"), "0");
  EXPECT_NE(Get("linearization/ink/77/samples").find("there is no curve of ink 77"), std::string::npos);
  EXPECT_NE(Get("media/heater/16").find("/parameters: there is no item \"16\" here, but 0 to"), std::string::npos);
  EXPECT_NE(Get("heater/0").find("\"heater\" is nothing that the profile has"), std::string::npos);
  EXPECT_NE(Get("/entries/99").find("/entries: the position of an entry is expected"), std::string::npos);
  EXPECT_NE(Get("").find("nothing that the profile has"), std::string::npos);
}

TEST_F(ToolValues, ChangeNoOtherByte) {
  const Bytes before = ReadBytes(file_);
  ASSERT_EQ(Set({"media/heater/0=46"}).status, 0);
  Bytes after = ReadBytes(file_);
  ASSERT_EQ(after.size(), before.size());
  std::vector<std::size_t> places = Differences(before, after);
  ASSERT_EQ(places.size(), 1u) << "45 and 46 differ in one byte";
  EXPECT_EQ(after[places[0]], 46);
  EXPECT_EQ(Get("media/heater/0"), "46");

  ASSERT_EQ(Set({"media/heater/0=45", "record/MediaName=glossy film", "linearization/optionInfo=7"}).status, 0);
  places = Differences(before, ReadBytes(file_));
  EXPECT_EQ(places.size(), 2u) << "one letter and one number";
  ASSERT_EQ(Set({"record/MediaName=Glossy film", "linearization/optionInfo=0"}).status, 0);
  EXPECT_EQ(ReadBytes(file_), before);
}

TEST_F(ToolValues, OfAnotherLengthLeaveAllOtherTagsAndEntries) {
  const json before = json::parse(RunTool({"dump", file_}).out);
  const nvx::test::Bytes frame = ReadBytes(file_);
  const std::string out = folder_.File("out.icc");
  const ToolResult set = RunTool({"set", file_, "multi-ink-limit/ink/1/samples=[1,2,3]", "-o", out});
  ASSERT_EQ(set.status, 0) << set.err;
  EXPECT_EQ(ReadBytes(file_), frame) << "the source stays as it is";
  json after = json::parse(RunTool({"dump", out}).out);
  const std::string place = before["entries"][2]["type"] == "multi-ink-limit" ? "/entries/2" : "";
  ASSERT_FALSE(place.empty());
  const json::json_pointer samples(place + "/payload/curves/0/samples");
  EXPECT_EQ(after[samples], json({1, 2, 3}));
  after[samples] = before[samples];
  after["record"]["FileName"] = before["record"]["FileName"];
  // The frame comes as base64; what it holds is compared tag by tag.
  json frames[2] = {json::parse(RunTool({"info", "--json", file_}).out),
                    json::parse(RunTool({"info", "--json", out}).out)};
  EXPECT_EQ(after, before);
  EXPECT_NE(frames[0]["privateTags"]["NVX1"], frames[1]["privateTags"]["NVX1"]);
  EXPECT_EQ(frames[0]["privateTags"]["NVX2"], frames[1]["privateTags"]["NVX2"]);
}

TEST_F(ToolValues, KeepForeignBytesOfFilesThatOthersWrote) {
  // Curves of 8 bits, which a load widens; letters behind the end of a text; a block that does not parse; and tags of
  // which one has no padding.
  using namespace nvx::test;
  const std::vector<StoredEntry> entries{
      {6, 6, CurveSet(1, {1, 2, 3, 4}), 1, 5, "lin"}, {7, 6, {9, 9, 9}, 0, 0, "broken"}, Placeholder()};
  Bytes media = MediaTag({{9, u"Glossy"}});
  media[12 + 4 + 2 + 20] = 'X';
  WriteBytes(file_, IccFile({{"desc", DescriptionTag("frame")},
                             {"NVX1", EntryTag(entries)},
                             {"NVX2", media},
                             {"NVX5", Padded(ByteBuilder(Opening()).Append(MaskStream(6)))}}));
  const Bytes before = ReadBytes(file_);
  EXPECT_EQ(Get("linearization/ink/1/samples"), "[1,2,3,4]");
  ASSERT_EQ(Set({"linearization/ink/1/samples/2=200"}).status, 0);
  ASSERT_EQ(Set({"record/HalftoneCode=9"}).status, 0);
  ASSERT_EQ(Set({"mask-download/weftHeader/reserved/0=1"}).status, 0);
  EXPECT_EQ(Differences(before, ReadBytes(file_)).size(), 3u);
  // The name whose field holds letters behind its end is written anew, and nothing else.
  ASSERT_EQ(Set({"record/MediaName=Matte"}).status, 0);
  EXPECT_EQ(Get("record/MediaName"), "Matte");
  EXPECT_EQ(Get("record/HalftoneCode"), "9");
  EXPECT_NE(Set({"gray-balance/usedType=6"}).status, 0);
  EXPECT_NE(Get("gray-balance/curves").find("there is no \"payload\""), std::string::npos);
}

TEST_F(ToolValues, OfRandomProfilesAreSetOneByOne) {
  std::mt19937 random(17);
  for (int round = 0; round < 6; ++round) {
    SCOPED_TRACE(round);
    CProfileData data;
    nvx::test::FillRandomProfile(data, random);
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(folder_.WideFile("p.icc").c_str(), &data, nvx::kRouteCalibration));
    const json before = json::parse(RunTool({"dump", file_}).out);
    std::vector<std::string> numbers;
    for (std::size_t i = 0; i < before["entries"].size(); ++i) {
      const json& entry = before["entries"][i];
      if (entry.contains("bytes") || !entry.contains("payload")) continue;
      const json flat = entry["payload"].flatten();
      for (const auto& [pointer, value] : flat.items()) {
        // One number of each entry that stands for nothing else.
        if (!value.is_number_integer() || pointer.find("samples") == pointer.npos) continue;
        numbers.push_back("/entries/" + std::to_string(i) + "/payload" + pointer);
        break;
      }
    }
    for (const std::string& pointer : numbers) {
      const int value = before[json::json_pointer(pointer)] == 1 ? 2 : 1;
      const ToolResult set = Set({pointer + "=" + std::to_string(value)});
      ASSERT_EQ(set.status, 0) << set.err;
      json after = json::parse(RunTool({"dump", file_}).out);
      EXPECT_EQ(after[json::json_pointer(pointer)], value);
      after[json::json_pointer(pointer)] = before[json::json_pointer(pointer)];
      EXPECT_EQ(after, before);
      ASSERT_EQ(Set({pointer + "=" + before[json::json_pointer(pointer)].dump()}).status, 0);
    }
  }
}

TEST_F(ToolValues, AreRefusedWithTheirPlace) {
  const Bytes before = ReadBytes(file_);
  struct Mistake {
    const char* assignment;
    const char* message;
  };
  for (const auto& [assignment, message] : std::vector<Mistake>{
           {"media/heater/0=warm", "/parameters/0: a whole number is expected, and not \"warm\""},
           {"media/heater/0=4294967296", "/parameters/0: the number must lie between"},
           {"media/heater/9=1", "there is no item \"9\""},
           {"linearization/ink/1/samples/1=65536", "/samples/1: the number must lie between 0 and 65535"},
           {"linearization/complete=yes", "true or false is expected"},
           {"linearization/ink/1/samples=1", "a list is expected as JSON"},
           {"record/MediaName=xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", "longer than 64"},
           {"record/ModelCode=9999", "it follows from record/Binary/ModelNumber"},
           {"record/Expand=2", "/record/Expand: the file does not keep it"},
           {"/format=icc", "/format: cannot be set"},
           {"media/heater/0", "PATH=VALUE is expected"},
           {"=1", "PATH=VALUE is expected"}}) {
    const ToolResult result = Set({"record/ScanResolution=360", assignment});
    EXPECT_EQ(result.status, 1) << assignment;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
  }
  EXPECT_EQ(ReadBytes(file_), before);
  const ToolResult dry = Set({"media/heater/0=50", "--dry-run"});
  EXPECT_EQ(dry.status, 0);
  EXPECT_NE(dry.out.find("45"), std::string::npos) << dry.out;
  EXPECT_NE(dry.out.find("50"), std::string::npos) << dry.out;
  EXPECT_EQ(ReadBytes(file_), before);
  EXPECT_EQ(RunTool({"set", file_, "media/heater/0=50", "-o", "/no/such/folder/x.icc"}).status, 1);
}

TEST_F(ToolValues, OfOlderFormsAreSetInPlace) {
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", NVXPROFILE_SOURCE_FOLDER "/examples/legacy");
  const std::string old = folder_.File("old.qpf");
  std::filesystem::copy_file(NVXPROFILE_SOURCE_FOLDER "/examples/legacy/glossy.qpf", old);
  const json document = json::parse(RunTool({"dump", old}).out);
  std::string path;
  for (const json& entry : document["entries"]) {
    if (path.empty() && entry.contains("payload") && entry["payload"].contains("curves")) {
      path = entry["type"].get<std::string>() + "/curves/0/samples/1";
    }
  }
  ASSERT_FALSE(path.empty());
  const Bytes before = ReadBytes(old);
  ASSERT_EQ(RunTool({"set", old, path + "=77"}).status, 0);
  EXPECT_EQ(RunTool({"get", old, path}).out, "77\n");
  EXPECT_EQ(ReadBytes(old).size(), before.size());
  EXPECT_LE(Differences(before, ReadBytes(old)).size(), 2u);
  const ToolResult longer = RunTool({"set", old, path.substr(0, path.size() - 2) + "=[1,2]"});
  EXPECT_NE(longer.err.find("cannot change its size"), std::string::npos) << longer.err;
  EXPECT_NE(RunTool({"set", old, "record/ScanResolution=1"}).err.find("follows from its text"), std::string::npos);
}

TEST_F(ToolValues, ACopyIsForAnotherMedium) {
  const std::string copy = folder_.File("satin.icc");
  const ToolResult made = RunTool({"copy", file_, copy, "--media", "Satin", "--name", "ja=\u30b5\u30c6\u30f3", "--name",
                                   "7=Satinpapier", "--number", "77", "media/heater/0=50"});
  ASSERT_EQ(made.status, 0) << made.err;
  const json before = json::parse(RunTool({"dump", file_}).out);
  json after = json::parse(RunTool({"dump", copy}).out);
  EXPECT_EQ(after["record"]["MediaName"], "Satin");
  EXPECT_EQ(after["record"]["MediaCode"], "000000077");
  EXPECT_EQ(after["record"]["Binary"]["MediaInfo"], (json{{{"Language", 9}, {"Name", "Satin"}},
                                                          {{"Language", 17}, {"Name", "\u30b5\u30c6\u30f3"}},
                                                          {{"Language", 7}, {"Name", "Satinpapier"}}}));
  const Bytes bytes = ReadBytes(copy);
  EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("satin.icc"), std::string::npos) << "the description";
  for (const char* const field : {"FileName", "MediaName", "MediaCode"})
    after["record"][field] = before["record"][field];
  for (const char* const field : {"DefaultMediaName", "MediaNumber", "MediaInfo"}) {
    after["record"]["Binary"][field] = before["record"]["Binary"][field];
  }
  EXPECT_EQ(after["record"], before["record"]);
  EXPECT_EQ(after["entries"][0], before["entries"][0]);
  EXPECT_EQ(RunTool({"copy", nvx::test::kFrameProfile, copy, "--media", "x"}).status, 1);
  EXPECT_EQ(ReadBytes(copy), bytes);
}

}  // namespace
