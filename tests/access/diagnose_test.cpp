// Why a profile does not load, and what is odd in one that does.
#include "support/curve_builder.h"
#include "support/entry_bytes.h"
#include "support/legacy_profile.h"
#include "support/qpf_builder.h"

#include <nvxprofile/diagnosis.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nvx::test {
namespace {

// What is found in a file, each behind its place if it has one.
std::vector<std::string> FoundIn(const TempFolder& folder, const std::string& name, bool loads) {
  Diagnosis diagnosis;
  EXPECT_EQ(DiagnoseProfile(folder.WideFile(name).c_str(), diagnosis), loads) << name;
  EXPECT_EQ(diagnosis.HasErrors(), !loads) << name;
  std::vector<std::string> found;
  for (const Finding& finding : diagnosis.Findings()) {
    found.push_back(finding.place.empty() ? finding.rule : finding.place + ": " + finding.rule);
  }
  return found;
}

// Warnings about a container of these entries.
std::vector<std::string> Oddities(const std::vector<EntryBytes>& entries) {
  const TempFolder folder;
  WriteBytes(folder.File("p.qct"), ContainerOf(entries));
  return FoundIn(folder, "p.qct", true);
}

Bytes Curves(const std::vector<CurveFields>& curves) {
  ByteBuilder form = CurveSetHeader(6, static_cast<std::uint32_t>(curves.size()));
  for (const CurveFields& curve : curves) form.Append(CurveHeader(curve));
  for (const CurveFields& curve : curves) form.Text("SDEC").Fill(7, curve.size);
  return form;
}

TEST(Diagnose, SaysWhyAFileIsNoProfile) {
  const LegacyFolder folder;
  const auto reasons = [&](const Bytes& bytes) {
    WriteBytes(folder.File("p"), bytes);
    return FoundIn(folder, "p", false);
  };
  EXPECT_THAT(FoundIn(folder, "none", false), testing::ElementsAre("file: cannot be opened"));
  EXPECT_THAT(reasons(Bytes(500, 'x')), testing::ElementsAre("ICC header: signature is not acsp"));
  EXPECT_THAT(reasons(First(IccFile({{"wtpt", Bytes(20, 1)}}), 140)),
              testing::ElementsAre("ICC header: size beyond the end"));
  EXPECT_THAT(reasons(ByteBuilder().Text("Printer_Label:")), testing::ElementsAre("text header: no line \"@Binary\""));
  EXPECT_THAT(reasons(ByteBuilder().Text("Printer_Label;")),
              testing::ElementsAre("ICC profile: ends inside the header or the tag count"));
  const std::string lines =
      "Printer_Label:PX\nInkSet_Label:SetA\nMedia_Code:1\nMedia_Label:Film\nDpi_Code:7201080\nProfileVersion_Code:3\n"
      "@Binary\n";
  EXPECT_THAT(reasons(ByteBuilder().Text(lines).Zero(8)),
              testing::ElementsAre("text header: ProfileVersion_Code is neither 1 nor 2"));
  std::filesystem::resize_file(folder.File("p"), std::uint64_t{1} << 32);
  EXPECT_THAT(FoundIn(folder, "p", false), testing::ElementsAre("file: 4 GiB or longer"));
}

TEST(Diagnose, NotesVersionsAndMissingProfiles) {
  constexpr const char* kVersion = "profile version is none of the known ones";
  constexpr const char* kNoIcc = "no ICC profile entry";
  const LegacyFolder folder;
  const auto oddities = [&](std::uint32_t version) {
    const StoredHeader header{.version = version};
    WriteBytes(folder.File("p.icc"), IccFile({{"NVX1", EntryTag({Placeholder()}, header)}, {"NVX2", MediaTag({})}}));
    return FoundIn(folder, "p.icc", true);
  };
  EXPECT_THAT(oddities(0x00090003), testing::Contains(kVersion));
  EXPECT_THAT(oddities(0x00040003),
              testing::AllOf(testing::Not(testing::Contains(kVersion)), testing::Not(testing::Contains(kNoIcc))));
  ASSERT_TRUE(WriteLegacyProfile(folder.File("p.qpf"), {6}, {7}));
  EXPECT_THAT(FoundIn(folder, "p.qpf", true), testing::Contains(kNoIcc));
  EXPECT_THAT(Oddities({}), testing::IsEmpty()) << "a container has no record";
}

TEST(Diagnose, NotesOddCurves) {
  EXPECT_THAT(Oddities({{6, 6, Curves({{.ink = 1, .size = 2}, {.ink = 2, .type = 2, .size = 4}})}}),
              testing::Not(testing::Contains(testing::HasSubstr("ink"))));
  EXPECT_THAT(Oddities({{6, 6,
                         Curves({{.ink = 1},
                                 {.ink = 2, .type = 2, .size = 3},
                                 {.ink = 3, .extendInfo = 5, .size = 3},
                                 {.ink = 3, .extendInfo = 6, .size = 3},
                                 {.ink = 3, .extendInfo = 5, .size = 3}})}}),
              testing::IsSupersetOf(
                  {"entry 6: ink 1: curve without samples", "entry 6: ink 2: odd number of bytes in 16-bit samples",
                   "entry 6: ink 3: two curves of one ink and ExtendInfo, of which the second is never found"}));
}

TEST(Diagnose, NotesCurvesThatDoNotMerge) {
  const Bytes gray =
      Curves({{.ink = 1, .size = 4}, {.ink = 2, .size = 4}, {.ink = 3, .size = 4}, {.ink = 9, .size = 4}});
  const Bytes linear = Curves({{.ink = 1, .size = 4}, {.ink = 2, .type = 2, .size = 4}, {.ink = 3, .size = 2}});
  std::vector<std::string> merges;
  for (const std::string& oddity : Oddities({{7, 6, gray}, {6, 6, linear}})) {
    if (oddity.find("differ in sample width") != oddity.npos) merges.push_back(oddity.substr(oddity.find("ink ")));
  }
  EXPECT_THAT(merges,
              testing::ElementsAre("ink 2 differ in sample width or number", "ink 3 differ in sample width or number"));
}

}  // namespace
}  // namespace nvx::test
