// The pattern rule on its own, tested with the toolbar's regex engine.
#include <gtest/gtest.h>

#include "PatternTesting.h"
#include "server/PhishingPatterns.h"

namespace tarnwick::server::testing {
namespace {

TEST(PhishingPatterns, MetacharactersAreLiteral) {
  const std::string page = "h.example/a.b(c)[d]{e}*x+y?z|w^v$u\\t.php";
  const std::string pattern = PatternForPage(page);
  EXPECT_TRUE(Matches(pattern, "http://" + page)) << pattern;
  EXPECT_TRUE(Matches(pattern, "http://h.example/a.b(c)[d]{e}*x y?z|w^v$u\\t.php")) << pattern;
  EXPECT_FALSE(Matches(pattern, "http://hXexample/a.b(c)[d]{e}*x+y?z|w^v$u\\t.php")) << pattern;
  EXPECT_FALSE(Matches(pattern, "http://h.example/aXb(c)[d]{e}*x+y?z|w^v$u\\t.php")) << pattern;
}

TEST(PhishingPatterns, PercentEscapesAlsoMatchWhatTheyStandFor) {
  const std::string pattern = PatternForPage("h.example/a%2Fb%3c%00.php");
  for (const char* url : {"http://h.example/a%2Fb%3c%00.php", "http://h.example/a%2fb%3C%00.php",
                          "http://h.example/a/b<.php", "http://h.example/a/b%3c.php"}) {
    EXPECT_TRUE(Matches(pattern, url)) << pattern << " " << url;
  }
  EXPECT_FALSE(Matches(pattern, "http://h.example/a%2Fb%3c%01.php"));
}

TEST(PhishingPatterns, ControlAndNonAsciiBytesNeverBreakTheTabSeparatedList) {
  const std::string page = "h.example/\t\x01\xE9.php";
  const std::string pattern = PatternForPage(page);
  EXPECT_EQ(pattern.find('\t'), std::string::npos);
  EXPECT_EQ(pattern.find('\xE9'), std::string::npos);
  EXPECT_TRUE(Matches(pattern, "https://" + page)) << pattern;
}

TEST(PhishingPatterns, HeaderCarriesTheNewestPagesWithinItsLimits) {
  std::vector<std::string> pages;
  for (int i = 0; i < 150; ++i) pages.push_back("h.example/page" + std::to_string(i) + ".php");
  const auto patterns = DecodePatternHeader(PatternHeader(pages));
  ASSERT_EQ(patterns.size(), kMaxPatternsPerAnswer);
  EXPECT_TRUE(Matches(patterns.front(), "http://h.example/page149.php"));
  EXPECT_FALSE(AnyMatches(patterns, "http://h.example/page0.php"));

  const std::vector<std::string> longPages(60, "h.example/" + std::string(2000, 'a'));
  std::size_t bytes = 0;
  for (const auto& pattern : DecodePatternHeader(PatternHeader(longPages))) bytes += pattern.size() + 1;
  EXPECT_LE(bytes, kMaxPatternTextBytes + 1);
}

}  // namespace
}  // namespace tarnwick::server::testing
