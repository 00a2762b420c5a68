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

  std::string Page() const {
    const Bytes bytes = ReadBytes(page_);
    return std::string(bytes.begin(), bytes.end());
  }

  // The JSON of the data element that lists the profiles.
  json Index() const {
    const std::string start = "<script type=\"application/json\" id=\"index\">";
    const std::string text = Page();
    const std::size_t at = text.find(start) + start.size();
    return json::parse(text.substr(at, text.find("</script>", at) - at));
  }

  TempFolder folder_;
  std::string profile_ = folder_.File("two <inks>.qct");
  std::string page_ = folder_.File("page.html");
};

TEST_F(ToolReport, NothingOfAProfileReachesThePageAsMarkup) {
  EXPECT_EQ(Index()["profiles"][0]["file"], "two <inks>.qct");
  EXPECT_EQ(Page().find("two <"), std::string::npos);
}

TEST_F(ToolReport, FilesThatDoNotLoadAreNamed) {
  const std::string broken = folder_.File("broken.icc");
  WriteText(broken, "no profile");
  EXPECT_THAT(RunTool({"report", broken, profile_, "-o", page_}), Fails());
  EXPECT_NE(Index()["profiles"][0]["failure"], "");
  EXPECT_EQ(Index()["profiles"][1]["file"], "two <inks>.qct");

  const std::string before = Page();
  EXPECT_THAT(RunTool({"report", broken, "-o", page_}), Fails());
  EXPECT_THAT(RunTool({"report", profile_, "--compare", "-o", page_}), IsWrongUsage());
  EXPECT_EQ(Page(), before) << "a report on nothing leaves what was there";
}

}  // namespace
