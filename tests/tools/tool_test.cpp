// The tool on real profiles and on profiles that the tests build.
#include "support/environment.h"
#include "support/files.h"
#include "support/qpf_builder.h"
#include "support/random_model.h"
#include "tools/profile_maker.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
using namespace nvx::test;
using testing::HasSubstr;
using testing::Not;

// A profile of the current generation with curves, a block that does not parse, and two media names.
Bytes PrinterProfile() {
  const std::vector<StoredEntry> entries{
      {6, 6, CurveSet(2, {1, 2, 3, 4}), 1, 5, "lin"}, {7, 6, {9, 9, 9}, 0, 0, "broken"}, Placeholder()};
  return IccFile({{"desc", DescriptionTag("frame")},
                  {"NVX1", EntryTag(entries)},
                  {"NVX2", MediaTag({{17, u"\u5149\u6ca2"}, {9, u"Glossy"}})},
                  {"NVX5", Padded(ByteBuilder(Opening()).Append(MaskStream(6)))}});
}

TEST(Tool, InfoDescribesEveryRealProfile) {
  for (const std::string& file : RealProfiles()) {
    const json document = ToolJson({"info", "--json", file});
    EXPECT_EQ(document["format"], 6) << file;
    const json& entry = document["routes"][0]["entries"][0];
    EXPECT_EQ(entry["usedType"], 10);
    EXPECT_EQ(entry["class"], "CICMEntry");
    EXPECT_EQ(entry["size"], std::filesystem::file_size(file));
    EXPECT_EQ(entry["payload"]["header"]["size"], std::filesystem::file_size(file));
  }
}

// What is written on the way is what the tree of the whole document would be, down to the last blank.
TEST(Tool, JsonIsWrittenAsItsLibraryWritesIt) {
  using nlohmann::ordered_json;
  const TempFolder folder;
  const nvx::test::ScopedVariable page("NVXPROFILE_CODEPAGE", "1252");
  CProfileData data;
  auto* const entry = new CLinearizationEntry;
  for (const char* const name : {"", "Cyan", "\"quoted\" \\", "\t\x01\x7F", "Gr\xFCn \x80", "\x81"}) {
    auto* const curve = new CCurveDataEntry16;
    curve->SetInkName(name);
    curve->SetMax(0xFFFFFFFF);
    for (std::uint32_t i = 0; i < std::strlen(name); ++i) curve->Add(i);
    entry->GetCurveData()->AddTail(curve);
  }
  entry->DataToBuffer();
  auto* const empty = new CInkLimitEntry;
  empty->DataToBuffer();
  data.SetProfileDataEntry(entry, nvx::kRouteMain);
  data.SetProfileDataEntry(empty, nvx::kRouteMain);
  const std::string file = folder.File("p \u00e4");
  ASSERT_TRUE(CProfileFileQCT().SaveData(folder.WideFile("p \u00e4").c_str(), &data, nvx::kRouteMain));

  const std::string text = RunTool({"info", "--json", file}).out;
  const ordered_json info = ordered_json::parse(text);
  EXPECT_EQ(info.dump(2) + "\n", text);
  const std::string line = info.dump() + "\n";
  EXPECT_EQ(line + line, RunTool({"info", "--json-lines", file, file}).out);
  EXPECT_EQ("[\n" + text + ",\n" + text + "]\n", RunTool({"info", "--json", file, file}).out);
  const std::string whole = RunTool({"dump", file}).out;
  const ordered_json document = ordered_json::parse(whole);
  EXPECT_EQ(document.dump(2) + "\n", whole);

  // A listing differs from the document in the samples alone, whose number it tells.
  ordered_json curves = document["entries"][0]["payload"];
  ASSERT_EQ(curves["curves"].size(), 6u);
  for (ordered_json& curve : curves["curves"]) curve["samples"] = {{"count", curve["samples"].size()}};
  EXPECT_EQ(info["routes"][0]["entries"][0]["payload"].dump(), curves.dump());
  EXPECT_EQ(info["routes"][0]["entries"][1]["payload"]["curves"].dump(), "[]");
}

TEST(Tool, DumpAndBuildKeepTheProfile) {
  const TempFolder folder;
  const ScopedVariable clock("SOURCE_DATE_EPOCH", nullptr);
  const std::string file = folder.File("p.icc");
  const std::string again = folder.File("again.icc");
  WriteBytes(file, PrinterProfile());
  WriteBytes(again, BuiltAgain(file));
  // The frame was laid out by somebody else and its description names another file: all else is the same.
  const json differences = ToolJson({"diff", "--json", file, again})["differences"];
  for (const json& item : differences) {
    EXPECT_THAT(item["place"].get<std::string>(),
                testing::ContainsRegex("^(entry 10|record/Rendering|record/ProfileMinorVersion)"));
  }
  // What the library itself wrote comes back in all its bytes.
  WriteBytes(file, ReadBytes(again));
  EXPECT_EQ(BuiltAgain(file), ReadBytes(again));
  ASSERT_THAT(BuildExample("uv_film.json", file), Succeeds());
  WriteBytes(again, BuiltAgain(file));
  EXPECT_THAT(RunTool({"diff", file, again}), Succeeds());
  EXPECT_EQ(BuiltAgain(kFrameProfile), ReadBytes(kFrameProfile));
  EXPECT_THAT(RunTool({"dump", "--files", folder.Path().string(), kFrameProfile}), Succeeds());
  EXPECT_EQ(ReadBytes(folder.File("icc.icc")), ReadBytes(kFrameProfile));
}

TEST(Tool, DumpAndBuildKeepRandomProfiles) {
  const TempFolder folder;
  std::mt19937 random(6);
  for (int round = 0; round < 24; ++round) {
    SCOPED_TRACE(round);
    CProfileData data;
    const bool container = round % 3 == 0;
    const std::string name = container ? "r.qct" : "r.icc";
    const std::u16string path = folder.WideFile(name);
    if (container) {
      FillRandomRoute(data, 4, random);
      ASSERT_TRUE(CProfileFileQCT().SaveData(path.c_str(), &data, 4));
    } else {
      FillRandomProfile(data, random);
      ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &data, nvx::kRouteCalibration));
      // A load fills in what the record leaves out.
      CProfileAccess access;
      CError error;
      ASSERT_TRUE(access.Init(path.c_str(), &error));
      ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), access.GetProfileData(), nvx::kRouteCalibration));
    }
    const json entries = ToolJson({"dump", folder.File(name)})["entries"];
    for (const json& entry : entries) {
      EXPECT_EQ(entry.contains("bytes"), entry["type"] == "icc") << "payloads travel as such, not as raw bytes";
    }
    EXPECT_EQ(BuiltAgain(folder.File(name)), ReadBytes(folder.File(name)));
  }
}

TEST(Tool, BuildRefusesMistakesAndWhatItWouldNotKeep) {
  const TempFolder folder;
  const std::string out = folder.File("out.icc");
  const json good = json::parse(std::ifstream(kExamples + "/printer_profile.json"));
  ASSERT_THAT(Build(good, out), Succeeds());
  const Bytes before = ReadBytes(out);
  const json samples = good["entries"][1]["payload"]["curves"][0]["samples"];
  EXPECT_EQ(SamplesIn(out, "linearization").at(1), samples.get<Samples>());

  struct Mistake {
    const char* pointer;
    json value;
    const char* message;
  };
  const std::vector<Mistake> mistakes{
      {"/nvxprofile", 2, "/nvxprofile"},
      {"/format", "paper", "/format"},
      {"/entries", 5, "/entries"},
      {"/entries/1/type", "no-such-type", "/entries/1/type"},
      {"/entries/1/payload/curves/0/samples/1", 70000, "/entries/1/payload/curves/0/samples/1"},
      {"/entries/1/payload/curves/0/samples/1", "x", "/entries/1/payload/curves/0/samples/1"},
      {"/entries/0/file", "no/such/file", "/entries/0/file"},
      {"/record", json{{"MediaName", std::string(70, 'x')}}, "/record"},
      {"/entriess", json::array(), "/entriess: nothing reads this key here"},
      {"/record/Foo", 1, "/record/Foo: nothing reads"},
      {"/record/Binary/MediaInfo/0/Nmae", "x", "/record/Binary/MediaInfo/0/Nmae: nothing reads"},
      {"/record/Text", {{"Media_Eng", "x"}}, "/record/Text: nothing reads"},
      {"/record/MediaName", "x", "/record/MediaName: the file keeps DefaultMediaName and MediaInfo"},
      {"/record/ModelCode", "9999", "/record/ModelCode: the file keeps ModelNumber"},
      {"/record/PrinterComment", "x", "/record/PrinterComment: files of this format do not keep it"},
      {"/record/HasMaskDownload", true, "/record/HasMaskDownload: there is no entry on route 8"},
      {"/targetType", 3, "/targetType: files of this format do not keep it"},
      {"/entries/1/payload/curvess", 1, "/entries/1/payload/curvess: nothing reads"},
      {"/entries/1/usedType", 9, "/entries/1/type: the name is that of the used type"},
      {"/entries/4/payload/mediaProperties/0/parameters", json(12, 1), "/parameters: at most 3 numbers are expected"}};
  for (const Mistake& mistake : mistakes) {
    json bad = good;
    bad[json::json_pointer(mistake.pointer)] = mistake.value;
    EXPECT_THAT(Build(bad, out), Fails(mistake.message));
    EXPECT_EQ(ReadBytes(out), before) << mistake.message;
  }
  EXPECT_THAT(BuildText("{\"a\": 1, \"a\": 2}", out), Fails("\"a\": the key stands twice"));
  const ToolResult parser = BuildText("{\n\"nvxprofile\": }", out);
  EXPECT_THAT(parser, Fails("line 2, column 15: is no JSON"));
  EXPECT_THAT(parser.err, Not(HasSubstr("exception")));
  EXPECT_THAT(RunTool({"build", kExamples + "/printer_profile.json", "-o", folder.File("no/x.icc")}),
              Fails("there is no folder"));
}

TEST(Tool, ValidateNamesPlaceOffsetAndRule) {
  const TempFolder folder;
  Bytes bytes = PrinterProfile();
  WriteBytes(folder.File("p.icc"), bytes);
  const json report = ToolJson({"validate", "--json", folder.File("p.icc")});
  EXPECT_EQ(report["loads"], true);
  ASSERT_FALSE(report["findings"].empty());
  EXPECT_EQ(report["findings"][0]["rule"], "curve set header: cut short");
  EXPECT_EQ(report["findings"][0]["place"], "NVX1/entry 7");

  const Bytes magic{'S', 'D', 'E', 'P'};
  const auto place = std::search(bytes.begin(), bytes.end(), magic.begin(), magic.end());
  place[0] = 'X';
  WriteBytes(folder.File("p.icc"), bytes);
  const ToolResult broken = RunTool({"validate", "--json", folder.File("p.icc")});
  EXPECT_EQ(broken.status, 4);
  const json findings = json::parse(broken.out)["findings"];
  ASSERT_EQ(findings.size(), 1u) << broken.out;
  EXPECT_EQ(findings[0]["rule"], "entry body: wrong magic");
  EXPECT_EQ(findings[0]["place"], "NVX1");
  EXPECT_EQ(findings[0]["offset"], place - bytes.begin() + 4);

  EXPECT_THAT(RunTool({"validate", kFrameProfile}), Succeeds());
  EXPECT_EQ(ToolJson({"validate", "--json", "/etc/passwd"})["findings"][0]["rule"],
            "ICC header: signature is not acsp");
}

}  // namespace
