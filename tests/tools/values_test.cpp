// Single values of profiles: named, read and changed, with every other byte left alone.
#include "support/environment.h"
#include "support/files.h"
#include "support/qpf_builder.h"
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

class ToolValues : public ::testing::Test {
 protected:
  ToolValues() { EXPECT_THAT(BuildExample("printer_profile.json", file_), Succeeds()); }

  std::string Get(const std::string& path) {
    const ToolResult result = RunTool({"get", file_, path});
    return result.status == 0 ? result.out.substr(0, result.out.size() - 1) : result.err;
  }
  json Dump() { return ToolJson({"dump", file_}); }
  ToolResult Set(const std::vector<std::string>& assignments) { return RunTool({"set", file_}, assignments); }

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
  const json flat = Dump().flatten();
  std::vector<std::string> arguments{"get", "--json", file_};
  std::vector<json> wanted;
  for (const auto& [pointer, value] : flat.items()) {
    if (pointer.find("/samples/") != pointer.npos) continue;
    arguments.push_back(pointer);
    wanted.push_back(value);
  }
  std::istringstream lines(RunTool(arguments).out);
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count)
    EXPECT_EQ(json::parse(line), wanted[count]) << arguments[count + 3];
  EXPECT_EQ(count, wanted.size());

  EXPECT_EQ(Get("record/MediaName"), "Glossy film");
  EXPECT_EQ(Get("record/ModelNumber"), Get("/record/Binary/ModelNumber"));
  EXPECT_EQ(Get("media/heater/0"), "45");
  EXPECT_EQ(Get("linearization/ink/1/samples/0"), "0");
  EXPECT_EQ(Get("6/optionInfo"), "0");
  for (const auto& [path, message] :
       TextPairs{{"linearization/ink/77/samples", "there is no curve of ink 77"},
                 {"media/heater/16", "/parameters: there is no item \"16\" here, but 0 to"},
                 {"heater/0", "\"heater\" is nothing that the profile has"},
                 {"/entries/99", "/entries: the position of an entry is expected"},
                 {"", "nothing that the profile has"}}) {
    EXPECT_THAT(RunTool({"get", file_, path}), Fails(message));
  }
}

TEST_F(ToolValues, ChangeNoOtherByte) {
  const Bytes before = ReadBytes(file_);
  ASSERT_THAT(Set({"media/heater/0=46"}), Succeeds());
  Bytes after = ReadBytes(file_);
  ASSERT_EQ(after.size(), before.size());
  std::vector<std::size_t> places = Differences(before, after);
  ASSERT_EQ(places.size(), 1u) << "45 and 46 differ in one byte";
  EXPECT_EQ(after[places[0]], 46);
  EXPECT_EQ(Get("media/heater/0"), "46");

  ASSERT_THAT(Set({"media/heater/0=45", "record/MediaName=glossy film", "linearization/optionInfo=7"}), Succeeds());
  places = Differences(before, ReadBytes(file_));
  EXPECT_EQ(places.size(), 2u) << "one letter and one number";
  ASSERT_THAT(Set({"record/MediaName=Glossy film", "linearization/optionInfo=0"}), Succeeds());
  EXPECT_EQ(ReadBytes(file_), before);
}

TEST_F(ToolValues, OfAnotherLengthLeaveAllOtherTagsAndEntries) {
  const json before = Dump();
  const Bytes frame = ReadBytes(file_);
  const std::string out = folder_.File("out.icc");
  ASSERT_THAT(Set({"multi-ink-limit/ink/1/samples=[1,2,3]", "-o", out}), Succeeds());
  EXPECT_EQ(ReadBytes(file_), frame) << "the source stays as it is";
  json after = ToolJson({"dump", out});
  ASSERT_EQ(before["entries"][2]["type"], "multi-ink-limit");
  const json::json_pointer samples("/entries/2/payload/curves/0/samples");
  EXPECT_EQ(after[samples], json({1, 2, 3}));
  after[samples] = before[samples];
  after["record"]["FileName"] = before["record"]["FileName"];
  EXPECT_EQ(after, before);
  // The frame comes as base64; what it holds is compared tag by tag.
  const json tags = ToolJson({"info", "--json", file_})["privateTags"];
  const json newTags = ToolJson({"info", "--json", out})["privateTags"];
  EXPECT_NE(tags["NVX1"], newTags["NVX1"]);
  EXPECT_EQ(tags["NVX2"], newTags["NVX2"]);
}

TEST_F(ToolValues, KeepForeignBytesOfFilesThatOthersWrote) {
  // Curves of 8 bits, which a load widens; letters behind the end of a text; a block that does not parse; and tags of
  // which one has no padding.
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
  ASSERT_THAT(Set({"linearization/ink/1/samples/2=200"}), Succeeds());
  ASSERT_THAT(Set({"record/HalftoneCode=9"}), Succeeds());
  ASSERT_THAT(Set({"mask-download/weftHeader/reserved/0=1"}), Succeeds());
  const json masks = ToolJson({"masks", file_, "--json"})["maskDownload"];
  EXPECT_EQ(masks["weftHeader"]["reserved"], json({1, 0}));
  EXPECT_EQ(masks["weftData"][0]["blockType"], 6);
  EXPECT_EQ(Differences(before, ReadBytes(file_)).size(), 3u);
  // The name whose field holds letters behind its end is written anew, and nothing else.
  ASSERT_THAT(Set({"record/MediaName=Matte"}), Succeeds());
  EXPECT_EQ(Get("record/MediaName"), "Matte");
  EXPECT_EQ(Get("record/HalftoneCode"), "9");
  EXPECT_THAT(Set({"gray-balance/usedType=6"}), Fails());
  EXPECT_THAT(RunTool({"get", file_, "gray-balance/curves"}), Fails("there is no \"payload\""));
}

TEST_F(ToolValues, OfRandomProfilesAreSetOneByOne) {
  std::mt19937 random(17);
  for (int round = 0; round < 6; ++round) {
    SCOPED_TRACE(round);
    CProfileData data;
    nvx::test::FillRandomProfile(data, random);
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(folder_.WideFile("p.icc").c_str(), &data, nvx::kRouteCalibration));
    const json before = Dump();
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
      ASSERT_THAT(Set({pointer + "=" + std::to_string(value)}), Succeeds());
      json after = Dump();
      EXPECT_EQ(after[json::json_pointer(pointer)], value);
      after[json::json_pointer(pointer)] = before[json::json_pointer(pointer)];
      EXPECT_EQ(after, before);
      ASSERT_THAT(Set({pointer + "=" + before[json::json_pointer(pointer)].dump()}), Succeeds());
    }
  }
}

TEST_F(ToolValues, AreRefusedWithTheirPlace) {
  const Bytes before = ReadBytes(file_);
  for (const auto& [assignment, message] : std::vector<std::pair<const char*, const char*>>{
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
    EXPECT_THAT(Set({"record/ScanResolution=360", assignment}), Fails(message));
  }
  EXPECT_EQ(ReadBytes(file_), before);
  EXPECT_THAT(Set({"media/heater/0=50", "--dry-run"}).out, testing::ContainsRegex("45(.|\n)*50"));
  EXPECT_EQ(ReadBytes(file_), before);
  EXPECT_THAT(Set({"media/heater/0=50", "-o", "/no/such/folder/x.icc"}), Fails());
}

TEST_F(ToolValues, OfOlderFormsAreSetInPlace) {
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  const std::string old = folder_.File("old.qpf");
  std::filesystem::copy_file(kExamples + "/legacy/glossy.qpf", old);
  const Bytes before = ReadBytes(old);
  ASSERT_THAT(RunTool({"set", old, "ink-limit/curves/0/samples/1=77"}), Succeeds());
  EXPECT_EQ(RunTool({"get", old, "ink-limit/curves/0/samples/1"}).out, "77\n");
  EXPECT_EQ(ReadBytes(old).size(), before.size());
  EXPECT_LE(Differences(before, ReadBytes(old)).size(), 2u);
  EXPECT_THAT(RunTool({"set", old, "ink-limit/curves/0/samples=[1,2]"}), Fails("cannot change its size"));
  EXPECT_THAT(RunTool({"set", old, "record/ScanResolution=1"}), Fails("follows from its text"));
}

TEST_F(ToolValues, ACopyIsForAnotherMedium) {
  const std::string copy = folder_.File("satin.icc");
  ASSERT_THAT(RunTool({"copy", file_, copy, "--media", "Satin", "--name", "ja=\u30b5\u30c6\u30f3", "--name",
                       "7=Satinpapier", "--number", "77", "media/heater/0=50"}),
              Succeeds());
  const json before = Dump();
  json after = ToolJson({"dump", copy});
  EXPECT_EQ(after["record"]["MediaName"], "Satin");
  EXPECT_EQ(after["record"]["MediaCode"], "000000077");
  EXPECT_EQ(after["record"]["Binary"]["MediaInfo"], (json{{{"Language", 9}, {"Name", "Satin"}},
                                                          {{"Language", 17}, {"Name", "\u30b5\u30c6\u30f3"}},
                                                          {{"Language", 7}, {"Name", "Satinpapier"}}}));
  const Bytes bytes = ReadBytes(copy);
  EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("satin.icc"), std::string::npos) << "the description";
  for (const std::string field :
       {"FileName", "MediaName", "MediaCode", "Binary/DefaultMediaName", "Binary/MediaNumber", "Binary/MediaInfo"}) {
    const json::json_pointer place("/record/" + field);
    after[place] = before[place];
  }
  EXPECT_EQ(after["record"], before["record"]);
  EXPECT_EQ(after["entries"][0], before["entries"][0]);
  EXPECT_THAT(RunTool({"copy", kFrameProfile, copy, "--media", "x"}), Fails());
  EXPECT_EQ(ReadBytes(copy), bytes);
}

}  // namespace
