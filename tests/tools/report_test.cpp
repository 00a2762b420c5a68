// Reports as files; tests/report looks at them in a browser.
#include "support/files.h"
#include "tools/run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using nlohmann::json;
using namespace nvx::test;

Bytes BytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

class ToolReport : public testing::Test {
 protected:
  void SetUp() override {
    const ToolResult built = RunTool({"build", NVXPROFILE_SOURCE_FOLDER "/examples/container.json", "-o", profile_});
    ASSERT_EQ(built.status, 0) << built.err;
    const ToolResult report = RunTool({"report", profile_, "-o", page_});
    if (report.err.find("node-d3") != std::string::npos) {
      EXPECT_EQ(report.status, 1);
      GTEST_SKIP() << report.err;
    }
    ASSERT_EQ(report.status, 0) << report.err;
  }

  std::string Text() const {
    const Bytes bytes = ReadBytes(page_);
    return std::string(bytes.begin(), bytes.end());
  }

  // The JSON of the data element with that id.
  json Data(const std::string& id) const {
    const std::string text = Text();
    const std::string start = "<script type=\"application/json\" id=\"" + id + "\">";
    const std::size_t at = text.find(start) + start.size();
    return json::parse(text.substr(at, text.find("</script>", at) - at));
  }

  TempFolder folder_;
  std::string profile_ = folder_.File("two <inks>.qct");
  std::string page_ = folder_.File("page.html");
};

TEST_F(ToolReport, NothingOfAProfileReachesThePageAsMarkup) {
  EXPECT_EQ(Data("index")["profiles"][0]["file"], "two <inks>.qct");
  EXPECT_EQ(Text().find("two <"), std::string::npos);
  EXPECT_EQ(Data("profile-0")["leftOut"], json::array());
}

TEST_F(ToolReport, FilesThatDoNotLoadAreNamed) {
  const std::string broken = folder_.File("broken.icc");
  WriteBytes(broken, BytesOf("no profile"));
  EXPECT_EQ(RunTool({"report", broken, profile_, "-o", page_}).status, 1);
  EXPECT_NE(Data("index")["profiles"][0]["failure"], "");
  EXPECT_EQ(Data("index")["profiles"][1]["file"], "two <inks>.qct");

  const Bytes before = ReadBytes(page_);
  EXPECT_EQ(RunTool({"report", broken, "-o", page_}).status, 1);
  EXPECT_EQ(ReadBytes(page_), before) << "a report on nothing leaves what was there";
}

TEST_F(ToolReport, ComparesTwo) {
  EXPECT_EQ(RunTool({"report", profile_, "--compare", "-o", page_}).status, 2);
  EXPECT_EQ(RunTool({"report", profile_, profile_, "--compare", "-o", page_}).status, 0);
  EXPECT_EQ(Data("index")["compare"], true);
}

}  // namespace
