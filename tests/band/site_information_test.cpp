// Reading the toolbar server's text into what the strip draws.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "band/SiteInformation.h"
#include "components/ComponentTest.h"

namespace tarnwick::testing {
namespace {

class SiteInformationTest : public ComponentTest {
 protected:
  SiteInformation Read(const std::string& text, std::int16_t rank = -1) {
    return reader.Read(text, rank, "http://site.example");
  }
  std::filesystem::path rexFile = Install(kBuiltRex);
  SiteInformationReader reader{Create(rexFile, kRexProgId), Create(rexFile, kRexProgId)};
};

std::vector<std::string> Runs(const SiteInformation& information) {
  std::vector<std::string> runs;
  for (const auto& run : information.runs) {
    const char* kind = run.kind == StripRun::Kind::Link      ? "link"
                       : run.kind == StripRun::Kind::Country ? "flag"
                                                             : "text";
    runs.push_back(std::string(kind) + ":" + run.text + (run.target.empty() ? "" : "|" + run.target));
  }
  return runs;
}

TEST_F(SiteInformationTest, TheServersTextBecomesWordsLinksAndAFlag) {
  const SiteInformation information = Read(
      "Known phishing site! Risk rating: 10/10 <a href=\"http://s/help\">What is this?</a> | Hosted in [US] United "
      "States | <a href='http://s/report_mistake'>Report a mistake</a>",
      10);
  EXPECT_THAT(Runs(information),
              ::testing::ElementsAre("text:Known phishing site! Risk rating: 10/10 ",
                                     "link:What is this?|http://s/help", "text: | Hosted in ", "flag:United States|US",
                                     "text: | ", "link:Report a mistake|http://s/report_mistake"));
  EXPECT_EQ(information.countryCode, "US");
  EXPECT_EQ(information.countryName, "United States");
  EXPECT_EQ(information.riskRank, 10);
  EXPECT_EQ(information.riskLink, "http://site.example/help/faq/index.html#riskrating");
}

TEST_F(SiteInformationTest, TheRatingInTheTextDrawsTheBarAndTheRankStandsInForIt) {
  EXPECT_EQ(Read("Risk rating: 7/10", 3).riskRank, 7);
  EXPECT_EQ(Read("No information available.", 4).riskRank, 4);
  EXPECT_EQ(Read("No information available.", -1).riskRank, -1);
  EXPECT_EQ(Read("Risk rating: 99/10", 3).riskRank, 3);  // not a rating the scale has
}

TEST_F(SiteInformationTest, PlainTextEscapesAndStrayTagsSurviveWhole) {
  EXPECT_THAT(Runs(Read("This site is in your Local Intranet zone.")),
              ::testing::ElementsAre("text:This site is in your Local Intranet zone."));
  EXPECT_THAT(Runs(Read("Tom &amp; Jerry&#39;s <b>shop</b> [xx] [X1]")),
              ::testing::ElementsAre("text:Tom & Jerry's <b>shop</b> ", "flag:|XX", "text: ", "text:[X1]"));
  EXPECT_THAT(Runs(Read("a <a href=\"x\">b</a> c <i>d</i>")),
              ::testing::ElementsAre("text:a ", "link:b|x", "text: c ", "text:<i>d</i>"));
}

}  // namespace
}  // namespace tarnwick::testing
