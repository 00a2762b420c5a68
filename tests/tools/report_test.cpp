// Reports as files; tests/report looks at them in a browser.
#include "support/files.h"
#include "tools/profile_maker.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using nlohmann::json;
using namespace nvx::test;

class ToolReport : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_THAT(BuildExample("container.json", profile_), Succeeds());
    const ToolResult report = RunTool({"report", profile_, "-o", page_});
    if (report.err.find("node-d3") != std::string::npos) {
      EXPECT_EQ(report.status, 1);
      GTEST_SKIP() << report.err;
    }
    ASSERT_THAT(report, Succeeds());
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
  WriteText(broken, "no profile");
  EXPECT_THAT(RunTool({"report", broken, profile_, "-o", page_}), Fails());
  EXPECT_NE(Data("index")["profiles"][0]["failure"], "");
  EXPECT_EQ(Data("index")["profiles"][1]["file"], "two <inks>.qct");

  const std::string before = Text();
  EXPECT_THAT(RunTool({"report", broken, "-o", page_}), Fails());
  EXPECT_EQ(Text(), before) << "a report on nothing leaves what was there";
}

TEST_F(ToolReport, ComparesTwo) {
  EXPECT_THAT(RunTool({"report", profile_, "--compare", "-o", page_}), IsWrongUsage());
  EXPECT_THAT(RunTool({"report", profile_, profile_, "--compare", "-o", page_}), Succeeds());
  EXPECT_EQ(Data("index")["compare"], true);
}

}  // namespace
