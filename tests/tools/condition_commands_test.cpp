// The commands that ask by printing condition: lamp tables, special colours and masks.
#include "support/byte_builder.h"
#include "tools/profile_maker.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using nlohmann::json;
using namespace nvx::test;
using testing::HasSubstr;

// A container with the seeds of the fuzzers as entries, padded as a rebuilt buffer is.
class ConditionCommands : public testing::Test {
 protected:
  void SetUp() override {
    const std::string corpus = std::string(NVXPROFILE_SOURCE_FOLDER) + "/fuzz/corpus/";
    ByteBuilder file;
    file.Text(" TCQ").U32(32).U32(0x00010000).U32(0).U32(4).U32(0).U32(2).U32(0);
    ByteBuilder bodies;
    for (const auto& [usedType, seed] : {std::pair(28u, "large_parameter/patterns"), {30u, "special_color/two"}}) {
      Bytes bytes = nvx::test::ReadBytes(corpus + seed);
      ASSERT_FALSE(bytes.empty());
      bytes.resize(1024);
      file.Text("IHEP").U32(292).U32(usedType).U32(8).U32(1028).U32(1).U32(0).Zero(264);
      bodies.Text("SDEP").Append(bytes);
    }
    nvx::test::WriteBytes(path_, file.Append(bodies));
  }

  json Ask(const std::string& command, const std::vector<std::string>& more) {
    return ToolJson({command, path_, "--json"}, more);
  }

  nvx::test::TempFolder folder_;
  std::string path_ = folder_.File("profile.qct");
};

TEST_F(ConditionCommands, LampTablesByCondition) {
  const json answer = Ask("lamp", {"--condition", "1,9,3,1250"});
  EXPECT_EQ(answer["parameters"], json({20, 21, 22}));
  EXPECT_EQ(answer["splitParamCounts"], json({21}));
  EXPECT_EQ(Ask("lamp", {})["entries"][0]["patternCount"], 2);
  EXPECT_THAT(RunTool({"lamp", path_}).out, HasSubstr("any"));
  EXPECT_THAT(RunTool({"lamp", path_, "--condition", "7,7,7,7"}), Fails("no pattern passes"));
  EXPECT_THAT(RunTool({"lamp", path_, "--condition", "1,2,3"}), IsWrongUsage());
  EXPECT_THAT(RunTool({"lamp", path_, "--condition=-1,2,3,4"}), Fails());
}

TEST_F(ConditionCommands, SpecialColoursByCondition) {
  const json answer = Ask("special", {"--condition", "1250,5", "--colors", "7,3"});
  EXPECT_EQ(answer["level"], 0);
  EXPECT_EQ(answer["inks"][0], json({{"ink", 7}, {"density", nullptr}, {"curveVD", nullptr}}));
  EXPECT_EQ(answer["inks"][1]["density"], 60) << "ink 3 alone takes the second pattern";
  EXPECT_EQ(Ask("special", {})["entries"][0]["curvesVD"][0]["curves"][0]["samples"], json({1, 2, 0x1234}));
  EXPECT_THAT(RunTool({"special", path_}).out, HasSubstr("VD curve sets, 2"));
  EXPECT_THAT(RunTool({"special", path_, "--condition", "1,1", "--colors", "3"}), Fails());
  EXPECT_THAT(RunTool({"special", path_, "--colors", "3"}), IsWrongUsage());
}

// A table whose start of the second array lies elsewhere than it does would not be what a load reads.
TEST_F(ConditionCommands, ADocumentThatContradictsItselfIsRefused) {
  json wrong = ToolJson({"dump", path_});
  EXPECT_EQ(BuiltAgain(path_), ReadBytes(path_));
  wrong["entries"][0]["payload"]["entries"][0]["parameters"][0][0] = 4;
  EXPECT_THAT(Build(wrong, folder_.File("wrong.qct")), Fails("/entries/0/payload"));
}

TEST(Masks, ArePackedForThePrinter) {
  const TempFolder folder;
  const std::string file = folder.File("p.icc");
  ASSERT_THAT(BuildExample("uv_film.json", file), Succeeds());
  const std::string out = folder.File("packed");
  const auto pack = [&](const std::string& condition) { return RunTool({"masks", file, "--pack", condition, out}); };
  const ToolResult packed = pack("8,2,200,9,5");
  EXPECT_THAT(packed, Succeeds());
  EXPECT_EQ(packed.err, "") << "the order of layer colours means nothing";
  const Bytes bytes = ReadBytes(out);
  ASSERT_EQ(bytes.size(), 21u + 24 + 3 * 512);
  EXPECT_EQ(First(bytes, 21), ByteBuilder().U16(24).U8(3).U16(1).U32(512).U16(3).U32(512).U16(5).U32(512).Take());

  // The table counts layer colours and does not compare them.
  const ToolResult others = pack("8,2,200,5,8");
  EXPECT_THAT(others, Succeeds());
  EXPECT_THAT(others.err, HasSubstr("warning: the mask is that of the layer colours 5,9"));
  EXPECT_THAT(pack("4,2,200"), Fails("Profile:There is no specified condition."));
  EXPECT_THAT(pack("4,2"), IsWrongUsage());
  EXPECT_THAT(pack("4,2,200,"), IsWrongUsage());
  EXPECT_EQ(ToolJson({"masks", file, "--json"})["maskPatterns"]["maskParameters"][1]["layerColors"], json({5, 9}));
}

}  // namespace
