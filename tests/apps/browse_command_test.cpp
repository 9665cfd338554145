// `tarnwick browse` end to end: a browser window played from a script over
// the real program and the real reference server.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "CliFixture.h"

namespace tarnwick::testing {
namespace {

using nlohmann::json;

class BrowseCommandTest : public CliFixture {
 protected:
  void SetUp() override { StartServer(); }

  CliRun RunBrowse(const std::string& events, const std::string& flags) {
    return Run("browse --server " + server + " " + flags, events);
  }
  // One parsed JSON line per event, and the exit status.
  std::pair<std::vector<json>, int> Browse(const std::string& events, const std::string& flags = "--json") {
    const CliRun run = RunBrowse(events, flags);
    std::vector<json> reports;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) reports.push_back(json::parse(line));
    return {reports, run.status};
  }
};

TEST_F(BrowseCommandTest, ARedirectToAListedPageEndsOnTheBlockPageAndScriptPopupsAreRefused) {
  const auto [reports, status] = Browse(
      "navigate http://florist.example.org/spring.html\n"
      "redirect http://florist.example.org/old/joomla/chase/verify.php\n"
      "complete\n"
      "popup none\n"
      "popup gesture\n"
      "navigate http://paypal-resolution-center.example/signin\n"
      "close\n");
  EXPECT_EQ(status, 1);
  ASSERT_EQ(reports.size(), 10u);
  EXPECT_EQ(reports[0]["event"], "start");
  EXPECT_EQ(reports[0]["started"], true);
  EXPECT_EQ(reports[0]["toolbar"], true);

  EXPECT_EQ(reports[1]["checked"], true);
  EXPECT_EQ(reports[1]["cancel"], false);
  EXPECT_EQ(reports[2]["event"], "redirect");
  // On arrival the listed page is found and replaced by the block page.
  EXPECT_EQ(reports[3]["event"], "complete");
  EXPECT_EQ(reports[3]["step"], "remote");
  EXPECT_EQ(reports[3]["answer"], "no");
  EXPECT_EQ(reports[3]["block_page"], true);
  EXPECT_EQ(reports[4]["event"], "band navigates");
  EXPECT_EQ(reports[4]["url"], "about:PhishingSite");
  EXPECT_EQ(reports[4]["step"], "scheme");
  EXPECT_EQ(reports[5]["not_checked"], "unchanged");

  EXPECT_EQ(reports[6]["popup"], "refused: opened by a script");
  EXPECT_THAT(reports[6]["strip"]["text"].get<std::string>(), ::testing::StartsWith("(Popups blocked) (Blocked) "));
  EXPECT_EQ(reports[7]["popup"], "allowed: opened by the person");

  EXPECT_EQ(reports[8]["cancel"], true);
  EXPECT_EQ(reports[8]["risk_rank"], 10);
  EXPECT_THAT(reports[8]["message"].get<std::string>(), ::testing::HasSubstr("fraudulent phishing attack"));
  EXPECT_EQ(reports[9]["event"], "close");
  EXPECT_EQ(reports[9]["teardown"].size(), 11u);
  EXPECT_EQ(reports[9]["teardown"].back(), "(IDeskBand_CloseDW) exiting");
}

TEST_F(BrowseCommandTest, TheReportFormIsFilledWithWhatWasSentLastTime) {
  const std::string report = "navigate " + server + "/report_url?url=http://x.example/\ncomplete\n";
  auto [first, status] = Browse(report + "submit Bob bob@example.org\n");
  EXPECT_EQ(status, 0);
  ASSERT_EQ(first.size(), 5u);
  EXPECT_EQ(first[2]["report_form"]["name"], "");
  EXPECT_EQ(first[2]["report_form"]["focused"], "reason");
  EXPECT_EQ(first[3]["saved"], "the band saved the name and e-mail address");

  auto [second, again] = Browse(report);
  ASSERT_EQ(second.size(), 4u);
  EXPECT_EQ(second[2]["report_form"]["name"], "Bob");
  EXPECT_EQ(second[2]["report_form"]["email"], "bob@example.org");
}

TEST_F(BrowseCommandTest, BadEventsAreReportedAndTheWindowGoesOn) {
  const auto [reports, status] = Browse(
      "complete\n"
      "fly to the moon\n"
      "submit a b\n"
      "navigate http://florist.example.org/spring.html /nonexistent/post-data\n"
      "popup sideways\n"
      "navigate http://florist.example.org/spring.html\n");
  EXPECT_EQ(status, 2);
  ASSERT_EQ(reports.size(), 8u);
  for (int i = 1; i <= 5; ++i) EXPECT_TRUE(reports[i].contains("error")) << reports[i];
  EXPECT_EQ(reports[6]["checked"], true);
  EXPECT_EQ(reports[7]["event"], "close");  // the end of the input closes the window
}

TEST_F(BrowseCommandTest, MenusDropDownAndTheirItemsRun) {
  const auto [reports, status] = Browse("menu product\nmenu product 10\nmenu client 1\nmenu sideways\n");
  EXPECT_EQ(status, 2);
  ASSERT_GE(reports.size(), 6u);
  EXPECT_EQ(reports[1]["chosen"], 0);
  EXPECT_EQ(reports[1]["menu"].back()["link"], "tarnwicktoolbar:uninstall");
  EXPECT_EQ(reports[2]["link"], "tarnwicktoolbar:about");
  EXPECT_THAT(reports[2]["dialog"], ::testing::Contains("Version 1.0.0 (20070813)"));
  EXPECT_EQ(reports[3]["link"], reports[3]["menu"][0]["link"]);
  EXPECT_EQ(reports[4]["event"], "band navigates");  // the client menu's first link
  EXPECT_TRUE(reports.rbegin()[1].contains("error"));
}

TEST_F(BrowseCommandTest, TextOutputSaysWhatTheBandDid) {
  const auto [output, error, status] =
      RunBrowse("navigate http://paypal-resolution-center.example/signin\n", "--answer no");
  EXPECT_EQ(status, 1);
  EXPECT_THAT(output, ::testing::HasSubstr("> navigate http://paypal-resolution-center.example/signin\n"
                                           "  checked, objection: remote\n"
                                           "  dialog \"Page Blocked\":\n"));
  EXPECT_THAT(output, ::testing::HasSubstr("  answer: no\n  cancelled\n"));
  EXPECT_THAT(output, ::testing::HasSubstr("(DestroyToolbar) Destroyed PageFetch object"));
}

}  // namespace
}  // namespace tarnwick::testing
