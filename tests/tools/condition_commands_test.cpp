// The commands that ask by printing condition.
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

  json Ask(const std::string& command, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {command, path_, "--json"});
    return ToolJson(arguments);
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

}  // namespace
