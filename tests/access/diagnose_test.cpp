// What loads and is odd all the same.
#include "support/curve_builder.h"
#include "support/entry_bytes.h"

#include <nvxprofile/diagnosis.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nvx::test {
namespace {

// Warnings about a container of these entries, each behind its place.
std::vector<std::string> Oddities(const std::vector<EntryBytes>& entries) {
  const TempFolder folder;
  WriteBytes(folder.File("p.qct"), ContainerOf(entries));
  Diagnosis diagnosis;
  EXPECT_TRUE(DiagnoseProfile(folder.WideFile("p.qct").c_str(), diagnosis));
  EXPECT_FALSE(diagnosis.HasErrors());
  std::vector<std::string> found;
  for (const Finding& finding : diagnosis.Findings()) found.push_back(finding.place + ": " + finding.rule);
  return found;
}

Bytes Curves(const std::vector<CurveFields>& curves) {
  ByteBuilder form = CurveSetHeader(6, static_cast<std::uint32_t>(curves.size()));
  for (const CurveFields& curve : curves) form.Append(CurveHeader(curve));
  for (const CurveFields& curve : curves) form.Text("SDEC").Fill(7, curve.size);
  return form;
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
