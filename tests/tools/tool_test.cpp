// The tool on real profiles and on profiles that the tests build.
#include "support/environment.h"
#include "support/files.h"
#include "support/qpf_builder.h"
#include "support/random_model.h"
#include "tools/run_tool.h"

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

constexpr const char* kCmyk = "/usr/share/color/icc/ghostscript/default_cmyk.icc";

// A profile of the current generation with curves, a block that does not parse, and two media names.
Bytes PrinterProfile() {
  using namespace nvx::test;
  const std::vector<StoredEntry> entries{
      {6, 6, CurveSet(2, {1, 2, 3, 4}), 1, 5, "lin"}, {7, 6, {9, 9, 9}, 0, 0, "broken"}, Placeholder()};
  return IccFile({{"desc", DescriptionTag("frame")},
                  {"NVX1", EntryTag(entries)},
                  {"NVX2", MediaTag({{17, u"\u5149\u6ca2"}, {9, u"Glossy"}})},
                  {"NVX5", Padded(ByteBuilder(Opening()).Append(MaskStream(6)))}});
}

// The entries of a loaded profile by route, each with its bytes after DataToBuffer (those of the payloads that parse).
json ModelOf(const std::string& path) {
  CProfileAccess access;
  CError error;
  if (!access.Init(nvx::platform::Utf8ToWide(path).c_str(), &error)) return nullptr;
  json model;
  bool moreRoutes = access.GetProfileData()->GetRouteStartPos();
  while (moreRoutes) {
    CProfileRoute* const route = access.GetProfileData()->GetNextRoute(moreRoutes);
    bool more = route->GetHeadPos();
    while (more) {
      CProfileDataEntry* const entry = route->GetNext(more);
      if (entry->BufferToData()) entry->DataToBuffer();
      const std::uint8_t* const bytes = entry->GetRefBuffer();
      model[std::to_string(route->GetRouteType())].push_back(
          {entry->GetUsedType(), entry->IsComplete(), entry->GetOptionInfo(), std::string(entry->GetLabelString()),
           bytes != nullptr ? Bytes(bytes, bytes + entry->GetSize()) : Bytes()});
    }
  }
  return model;
}

json Parse(const std::string& text) { return json::parse(text, nullptr, false); }

TEST(Tool, WrongUsageAndUnreadableFiles) {
  EXPECT_EQ(RunTool({}).status, 2);
  EXPECT_EQ(RunTool({"no-such-command"}).status, 2);
  EXPECT_EQ(RunTool({"info"}).status, 2);
  EXPECT_EQ(RunTool({"--version"}).status, 0);
  EXPECT_EQ(RunTool({"--help"}).status, 0);
  const ToolResult result = RunTool({"info", "/no/such/file", kCmyk});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "nvxprofile: /no/such/file: No such file or directory\n");
  EXPECT_NE(result.out.find("plain ICC profile"), std::string::npos);
}

TEST(Tool, InfoDescribesEveryRealProfile) {
  for (const std::string& file : RealProfiles()) {
    const ToolResult result = RunTool({"info", "--json", file});
    ASSERT_EQ(result.status, 0) << file << result.err;
    const json document = Parse(result.out);
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
  EXPECT_EQ(info.dump() + "\n", RunTool({"info", "--json-lines", file}).out);
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

TEST(Tool, DumpAndBuildKeepTheModel) {
  const TempFolder folder;
  const nvx::test::ScopedVariable clock("SOURCE_DATE_EPOCH", nullptr);
  const std::filesystem::path copies = folder.Path() / "copies";
  std::filesystem::create_directories(copies);
  std::vector<std::string> files{folder.File("p.icc"), folder.File("q.icc"), kCmyk};
  WriteBytes(files[0], PrinterProfile());
  // What the library itself wrote comes back in all its bytes.
  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(folder.WideFile("p.icc").c_str(), &error));
  ASSERT_TRUE(CProfileFileQPFv3().SaveData(folder.WideFile("q.icc").c_str(), access.GetProfileData(), 0x300));
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    const ToolResult dump = RunTool({"dump", file});
    ASSERT_EQ(dump.status, 0) << dump.err;
    const std::string text = folder.File("document.json");
    WriteBytes(text, Bytes(dump.out.begin(), dump.out.end()));
    const std::string copy = (copies / std::filesystem::path(file).filename()).string();
    const ToolResult build = RunTool({"build", text, "-o", copy});
    ASSERT_EQ(build.status, 0) << build.err;
    if (file == files[0]) {
      // The frame was laid out by somebody else and its description names another file: all else is the same.
      const ToolResult diff = RunTool({"diff", "--json", file, copy});
      const json differences = Parse(diff.out)["differences"];
      for (const json& item : differences) {
        const std::string place = item["place"];
        EXPECT_TRUE(place.find("entry 10") == 0 || place.find("record/Rendering") == 0 ||
                    place.find("record/ProfileMinorVersion") == 0)
            << place;
      }
    } else {
      EXPECT_EQ(ModelOf(copy), ModelOf(file));
      EXPECT_EQ(ReadBytes(copy), ReadBytes(file));
      EXPECT_EQ(RunTool({"diff", file, copy}).status, 0);
    }
  }
  const ToolResult files2 = RunTool({"dump", "--files", copies.string(), kCmyk});
  EXPECT_EQ(files2.status, 0);
  EXPECT_EQ(ReadBytes((copies / "icc.icc").string()), ReadBytes(kCmyk));
}

TEST(Tool, DumpAndBuildKeepRandomProfiles) {
  const TempFolder folder;
  const std::filesystem::path copies = folder.Path() / "copies";
  std::filesystem::create_directories(copies);
  std::mt19937 random(6);
  for (int round = 0; round < 24; ++round) {
    SCOPED_TRACE(round);
    CProfileData data;
    const bool container = round % 3 == 0;
    const std::u16string path = folder.WideFile("r.icc");
    const std::u16string plain = folder.WideFile("r.qct");
    if (container) {
      nvx::test::FillRandomRoute(data, 4, random);
      ASSERT_TRUE(CProfileFileQCT().SaveData(plain.c_str(), &data, 4));
    } else {
      nvx::test::FillRandomProfile(data, random);
      ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &data, nvx::kRouteCalibration));
    }
    const std::string name = container ? "r.qct" : "r.icc";
    const ToolResult dump = RunTool({"dump", folder.File(name)});
    ASSERT_EQ(dump.status, 0) << dump.err;
    WriteBytes(folder.File("d.json"), Bytes(dump.out.begin(), dump.out.end()));
    const std::string copy = (copies / name).string();
    const ToolResult build = RunTool({"build", folder.File("d.json"), "-o", copy});
    ASSERT_EQ(build.status, 0) << build.err;
    EXPECT_EQ(ModelOf(copy), ModelOf(folder.File(name)));
    const ToolResult diff = RunTool({"diff", folder.File(name), copy});
    EXPECT_EQ(diff.status, 0) << diff.out << diff.err;
  }
}

TEST(Tool, BuildsAMinimalDocumentAndNamesThePlaceOfAMistake) {
  const TempFolder folder;
  const json good = {
      {"nvxprofile", 1},
      {"format", "printer-profile"},
      {"entries",
       {{{"type", "icc"}, {"file", kCmyk}},
        {{"type", "linearization"}, {"payload", {{"curves", {{{"inkID", 1}, {"samples", {0, 500, 65535}}}}}}}},
        {{"type", "gray-balance"}, {"payload", {{"curves", {{{"inkID", 1}, {"samples", {2, 1, 0}}}}}}}}}}};
  const auto build = [&](const json& document) {
    const std::string text = document.dump();
    WriteBytes(folder.File("d.json"), Bytes(text.begin(), text.end()));
    return RunTool({"build", folder.File("d.json"), "-o", folder.File("out.icc")});
  };
  const ToolResult built = build(good);
  ASSERT_EQ(built.status, 0) << built.err;
  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(folder.WideFile("out.icc").c_str(), &error));
  int size = 0;
  int type = 0;
  const void* const samples = access.GetLinearization(1, size, type, &error);
  ASSERT_NE(samples, nullptr);
  EXPECT_EQ(type, 2);
  EXPECT_EQ(size, 6);
  EXPECT_EQ(static_cast<const std::uint16_t*>(samples)[1], 500);

  struct Mistake {
    const char* pointer;
    json value;
  };
  const std::vector<Mistake> mistakes{{"/nvxprofile", 2},
                                      {"/format", "paper"},
                                      {"/entries", 5},
                                      {"/entries/1/type", "no-such-type"},
                                      {"/entries/1/payload/curves/0/samples/1", 70000},
                                      {"/entries/1/payload/curves/0/samples/1", "x"},
                                      {"/entries/0/file", "no/such/file"},
                                      {"/record", json{{"MediaName", std::string(70, 'x')}}}};
  const Bytes before = ReadBytes(folder.File("out.icc"));
  for (const Mistake& mistake : mistakes) {
    json bad = good;
    bad[json::json_pointer(mistake.pointer)] = mistake.value;
    const ToolResult result = build(bad);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find(mistake.pointer), std::string::npos) << result.err;
    EXPECT_EQ(ReadBytes(folder.File("out.icc")), before);
  }
  EXPECT_EQ(ReadBytes(folder.File("out.icc")), before);
}

TEST(Tool, BuildRefusesWhatItWouldNotKeep) {
  const TempFolder folder;
  const json good = json::parse(RunTool({"dump", "--files", folder.Path().string(), kCmyk}).out);
  std::ifstream example(NVXPROFILE_SOURCE_FOLDER "/examples/printer_profile.json");
  const json profile = json::parse(example);
  const auto build = [&](const std::string& text) {
    WriteBytes(folder.File("d.json"), Bytes(text.begin(), text.end()));
    return RunTool({"build", folder.File("d.json"), "-o", folder.File("out.icc")});
  };
  struct Mistake {
    const char* pointer;
    json value;
    const char* message;
  };
  const std::vector<Mistake> mistakes{
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
  };
  for (const Mistake& mistake : mistakes) {
    json bad = profile;
    bad[json::json_pointer(mistake.pointer)] = mistake.value;
    const ToolResult result = build(bad.dump());
    EXPECT_EQ(result.status, 1) << mistake.pointer;
    EXPECT_NE(result.err.find(mistake.message), std::string::npos) << result.err;
  }
  json heaters = profile;
  for (json& entry : heaters["entries"]) {
    if (entry["type"] == "media-property") entry["payload"]["mediaProperties"][0]["parameters"] = json(12, 1);
  }
  EXPECT_NE(build(heaters.dump()).err.find("/parameters: at most 3 numbers are expected"), std::string::npos);
  json without = profile;
  without["entries"].erase(0);
  without["entries"].push_back({{"type", "icc"}, {"bytes", "AAAA"}});
  EXPECT_NE(build("{\"a\": 1, \"a\": 2}").err.find("\"a\": the key stands twice"), std::string::npos);
  const std::string parser = build("{\n\"nvxprofile\": }").err;
  EXPECT_NE(parser.find("line 2, column 15: is no JSON"), std::string::npos) << parser;
  EXPECT_EQ(parser.find("exception"), std::string::npos) << parser;
  EXPECT_FALSE(std::filesystem::exists(folder.File("out.icc")));

  // What a dump says, with all that is worked out anew, is taken.
  EXPECT_EQ(build(good.dump()).status, 0);
  EXPECT_EQ(build(profile.dump()).status, 0);
  WriteBytes(folder.File("p.icc"), PrinterProfile());
  EXPECT_EQ(build(RunTool({"dump", folder.File("p.icc")}).out).status, 0);
  EXPECT_NE(RunTool({"build", folder.File("d.json"), "-o", folder.File("no/x.icc")}).err.find("there is no folder"),
            std::string::npos);
}

TEST(Tool, DiffTellsTheGreatestDifferenceOfCurves) {
  const TempFolder folder;
  WriteBytes(folder.File("a.icc"), PrinterProfile());
  Bytes changed = PrinterProfile();
  const Bytes samples{'S', 'D', 'E', 'C', 1, 2, 3, 4};
  const auto place = std::search(changed.begin(), changed.end(), samples.begin(), samples.end());
  ASSERT_NE(place, changed.end());
  place[6] = 13;
  WriteBytes(folder.File("b.icc"), changed);
  EXPECT_EQ(RunTool({"diff", folder.File("a.icc"), folder.File("a.icc")}).status, 0);
  const ToolResult result = RunTool({"diff", "--json", folder.File("a.icc"), folder.File("b.icc")});
  EXPECT_EQ(result.status, 3);
  const json differences = Parse(result.out)["differences"];
  ASSERT_EQ(differences.size(), 1u) << result.out;
  EXPECT_EQ(differences[0]["place"], "entry 6 linearization/ink 1 extend 4/samples");
  EXPECT_EQ(differences[0]["greatest"], 10);
  EXPECT_EQ(RunTool({"diff", folder.File("a.icc"), "/no/such"}).status, 1);
}

TEST(Tool, ValidateNamesPlaceOffsetAndRule) {
  const TempFolder folder;
  Bytes bytes = PrinterProfile();
  WriteBytes(folder.File("p.icc"), bytes);
  const ToolResult faulty = RunTool({"validate", "--json", folder.File("p.icc")});
  const json report = Parse(faulty.out);
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
  const json findings = Parse(broken.out)["findings"];
  ASSERT_EQ(findings.size(), 1u) << broken.out;
  EXPECT_EQ(findings[0]["rule"], "entry body: wrong magic");
  EXPECT_EQ(findings[0]["place"], "NVX1");
  EXPECT_EQ(findings[0]["offset"], place - bytes.begin() + 4);

  EXPECT_EQ(RunTool({"validate", kCmyk}).status, 0);
  const ToolResult none = RunTool({"validate", "--json", "/etc/passwd"});
  EXPECT_EQ(Parse(none.out)["findings"][0]["rule"], "ICC header: signature is not acsp");
}

}  // namespace
