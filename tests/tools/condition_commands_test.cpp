// The commands that ask by printing condition, and the way of their payloads through a document.
#include "support/byte_builder.h"
#include "tools/run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using nlohmann::json;
using namespace nvx::test;

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
    const ToolResult result = RunTool(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return json::parse(result.out, nullptr, false);
  }

  nvx::test::TempFolder folder_;
  std::string path_ = folder_.File("profile.qct");
};

TEST_F(ConditionCommands, LampTablesByCondition) {
  const json answer = Ask("lamp", {"--condition", "1,9,3,1250"});
  EXPECT_EQ(answer["parameters"], json({20, 21, 22}));
  EXPECT_EQ(answer["splitParamCounts"], json({21}));
  EXPECT_EQ(Ask("lamp", {})["entries"][0]["patternCount"], 2);
  const ToolResult text = RunTool({"lamp", path_});
  EXPECT_NE(text.out.find("any"), std::string::npos) << text.out;
  const ToolResult none = RunTool({"lamp", path_, "--condition", "7,7,7,7"});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find("no pattern passes"), std::string::npos);
  EXPECT_EQ(RunTool({"lamp", path_, "--condition", "1,2,3"}).status, 2);
  EXPECT_EQ(RunTool({"lamp", path_, "--condition=-1,2,3,4"}).status, 1);
}

TEST_F(ConditionCommands, SpecialColoursByCondition) {
  const json answer = Ask("special", {"--condition", "1250,5", "--colors", "7,3"});
  EXPECT_EQ(answer["level"], 0);
  EXPECT_EQ(answer["inks"][0], json({{"ink", 7}, {"density", nullptr}, {"curveVD", nullptr}}));
  EXPECT_EQ(answer["inks"][1]["density"], 60) << "ink 3 alone takes the second pattern";
  const json all = Ask("special", {});
  EXPECT_EQ(all["entries"][0]["curvesVD"][0]["curves"][0]["samples"], json({1, 2, 0x1234}));
  EXPECT_NE(RunTool({"special", path_}).out.find("VD curve sets, 2"), std::string::npos);
  EXPECT_EQ(RunTool({"special", path_, "--condition", "1,1", "--colors", "3"}).status, 1);
  EXPECT_EQ(RunTool({"special", path_, "--colors", "3"}).status, 2);
}

TEST_F(ConditionCommands, DocumentsRebuildTheBytes) {
  const std::string document = folder_.File("profile.json");
  const ToolResult dump = RunTool({"dump", path_});
  ASSERT_EQ(dump.status, 0) << dump.err;
  const json entries = json::parse(dump.out)["entries"];
  for (const json& entry : entries) {
    EXPECT_TRUE(entry.contains("payload") && !entry.contains("bytes")) << entry;
  }
  nvx::test::WriteBytes(document, Bytes(dump.out.begin(), dump.out.end()));
  const std::string rebuilt = folder_.File("rebuilt.qct");
  const ToolResult build = RunTool({"build", document, "-o", rebuilt});
  ASSERT_EQ(build.status, 0) << build.err;
  EXPECT_EQ(nvx::test::ReadBytes(rebuilt), nvx::test::ReadBytes(path_));

  json wrong = json::parse(dump.out);
  wrong["entries"][0]["payload"]["entries"][0]["parameters"][0][0] = 4;
  const std::string text = wrong.dump();
  nvx::test::WriteBytes(document, Bytes(text.begin(), text.end()));
  EXPECT_EQ(RunTool({"build", document, "-o", rebuilt}).status, 1);
}

}  // namespace
