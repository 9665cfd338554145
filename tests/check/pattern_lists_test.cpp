// The check engine's pattern lists under hostile input: server answers whose
// pattern lists are empty, oversized or runaway, and block lists that would
// freeze the browser for seconds.
#include "CheckFixture.h"
#include "support/Base64.h"

namespace tarnwick::testing {
namespace {

using PatternListsTest = CheckFixture;

// Patterns that each run into the match limit on a run of x's (a few
// milliseconds each), then one that matches.
std::vector<std::string> Runaway(std::size_t count) {
  std::vector<std::string> patterns(count, "(x+x+)+[yz]");
  patterns.push_back("x");
  return patterns;
}

std::string Joined(const std::vector<std::string>& patterns, const std::string& separator) {
  std::string text;
  for (const auto& pattern : patterns) text += (text.empty() ? "" : separator) + pattern;
  return text;
}

const std::string kRunawayUrl = "http://203.0.113.7/?q=" + std::string(30, 'x');

TEST_F(PatternListsTest, AServerListThatDecodesToNothingOrHasEmptyEntriesBlocksNothing) {
  for (const std::string& header : {std::string("!!!"), std::string("===="), EncodeBase64("\t\t"),
                                    EncodeBase64("^never$\t"), EncodeBase64("\t^never$")}) {
    verdict.patterns = header;
    EXPECT_FALSE(Navigate("http://203.0.113.7/page")) << header;
    EXPECT_EQ(checker.GetLastResponse(), "Site information") << header;
  }
  EXPECT_TRUE(Logged("(URL_Blocked_Remotely) Trying pattern 1: ^never$"));
}

TEST_F(PatternListsTest, RunawayLocalPatternsSpendTheTimeLimitAndBlockNothing) {
  process.options.PatternTimeLimit = 50;
  checker.SetURLPatterns(Joined(Runaway(1000), "\r\n"));
  EXPECT_FALSE(Navigate(kRunawayUrl));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::None);
  EXPECT_TRUE(
      Logged("(URL_Blocked_Locally) Pattern time limit of 50 ms reached: the patterns not yet tried count "
             "as no match"));
  EXPECT_TRUE(Logged("(URL_Blocked_Locally) returning False"));
  // The server is still asked, and its verdict still counts.
  verdict.status = 403;
  EXPECT_TRUE(Navigate(kRunawayUrl));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Remote);
}

TEST_F(PatternListsTest, RunawayServerPatternsShareTheChecksTimeAndAreReportedOnce) {
  process.options.PatternTimeLimit = 50;
  verdict.patterns = EncodeBase64(Joined(Runaway(999), "\t"));
  EXPECT_FALSE(Navigate(kRunawayUrl));
  EXPECT_EQ(checker.GetLastResponse(), "Site information");
  const std::string log = ReadFile(process.log, process.log.LogFilePath());
  std::size_t lines = 0;
  for (auto at = log.find("Pattern time limit"); at != std::string::npos; at = log.find("Pattern time limit", at + 1)) {
    ++lines;
  }
  EXPECT_EQ(lines, 1u);
  EXPECT_TRUE(Logged("(URL_Blocked_Remotely) Pattern time limit of 50 ms reached"));
}

TEST_F(PatternListsTest, TheServersListIsCutToAThousandPatternsAnd64KiB) {
  std::vector<std::string> patterns(1500, "never");
  patterns[1200] = "203";
  verdict.patterns = EncodeBase64(Joined(patterns, "\t"));
  EXPECT_FALSE(Navigate("http://203.0.113.7/page"));
  EXPECT_TRUE(Logged("(URL_Blocked_Remotely) Using the first 1000 of 1500 patterns"));

  verdict.patterns = EncodeBase64(std::string(70000, 'n') + "\t203");
  EXPECT_FALSE(Navigate("http://203.0.113.7/page"));
  EXPECT_TRUE(Logged("(URL_Blocked_Remotely) Using the first 0 of 2 patterns"));

  patterns.resize(1000);
  patterns[999] = "203";
  verdict.patterns = EncodeBase64(Joined(patterns, "\t"));
  EXPECT_TRUE(Navigate("http://203.0.113.7/page"));
  EXPECT_TRUE(Logged("(URL_Blocked_Remotely) Trying pattern 999: 203"));
}

}  // namespace
}  // namespace tarnwick::testing
