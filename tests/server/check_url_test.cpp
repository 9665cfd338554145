// /check_url over real HTTP: verdicts per host, the pattern header, the
// risk rank and the site-information text.
#include <gtest/gtest.h>

#include "PatternTesting.h"
#include "ServerFixture.h"

namespace tarnwick::server::testing {
namespace {

constexpr const char* kUnitedStates = "134744072";  // 8.8.8.8
constexpr const char* kAustralia = "16843009";      // 1.1.1.1
constexpr const char* kPrivate = "3232235777";      // 192.168.1.1

class CheckUrlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ImportLines(server.database, {"evil.example", "http://compromised.example.org/wp-content/x/login.php",
                                  "http://compromised.example.org/a%20b/c+d.php?x=1"});
    server.Start();
  }
  int Rank(const std::string& path) { return std::stoi(HttpGet(server.Url(path)).Header("X-Risk-Rank")); }

  ServerFixture server;
};

TEST_F(CheckUrlTest, WholePhishingSiteIsForbiddenWithTopRankAndHostingCountry) {
  const HttpResult answer = HttpGet(server.Url(std::string("/check_url/http://evil.example/") + kUnitedStates));
  EXPECT_EQ(answer.status, 403);
  EXPECT_EQ(answer.Header("X-Risk-Rank"), "10");
  EXPECT_FALSE(answer.HasHeader("X-Phishing-Patterns"));
  // The strip finds its links and the country with these two patterns.
  EXPECT_TRUE(Matches(R"((.*?)<a\s+href\s*=\s*["']([^"']*)["']>([^<]*)<\/a>([^<]*))", answer.body)) << answer.body;
  EXPECT_NE(answer.body.find("[US] United States"), std::string::npos) << answer.body;

  // The verdict is per host: scheme, user part, port and letter case do not change it.
  EXPECT_EQ(HttpGet(server.Url("/check_url/https://someone@EVIL.Example:8443")).status, 403);
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://evil.example.")).status, 403);
}

TEST_F(CheckUrlTest, PatternsBlockExactlyTheListedPagesOfACompromisedSite) {
  const HttpResult answer = HttpGet(server.Url(std::string("/check_url/http://compromised.example.org/") + kAustralia));
  ASSERT_EQ(answer.status, 200);
  EXPECT_NE(answer.body.find("[AU] Australia"), std::string::npos) << answer.body;
  const auto patterns = DecodePatternHeader(answer.Header("X-Phishing-Patterns"));
  ASSERT_EQ(patterns.size(), 2u);

  for (const char* listed : {
           "http://compromised.example.org/wp-content/x/login.php",
           "https://compromised.example.org/wp-content/x/login.php",
           "http://compromised.example.org/wp-content/x/login.php#step2",
           "http://compromised.example.org/wp-content/x/login.php?session=42",
           "http://compromised.example.org/a%20b/c+d.php?x=1",
           "http://compromised.example.org/a b/c d.php?x=1",  // as the toolbar decodes it
       }) {
    EXPECT_TRUE(AnyMatches(patterns, listed)) << listed;
  }
  for (const char* neighbour : {
           "http://compromised.example.org/",
           "http://compromised.example.org/wp-content/x/",
           "http://compromised.example.org/wp-content/x/login.php5",
           "http://compromised.example.org/wp-content/x/other.php",
           "http://compromised.example.org/a%20b/c+d.php?x=12",
           "http://compromised.example.org.evil.example/wp-content/x/login.php",
           "http://www.compromised.example.org/wp-content/x/login.php",
           "ftp://compromised.example.org/wp-content/x/login.php",
       }) {
    EXPECT_FALSE(AnyMatches(patterns, neighbour)) << neighbour;
  }
}

TEST_F(CheckUrlTest, UnknownSiteIsAllowedWithoutCountryForPrivateOrMissingAddress) {
  for (const std::string& path : {std::string("/check_url/http://unknown.example.net/") + kPrivate,
                                  std::string("/check_url/http://unknown.example.net")}) {
    const HttpResult answer = HttpGet(server.Url(path));
    EXPECT_EQ(answer.status, 200);
    EXPECT_FALSE(answer.HasHeader("X-Phishing-Patterns"));
    EXPECT_EQ(answer.body.find('['), std::string::npos) << answer.body;
    const int rank = std::stoi(answer.Header("X-Risk-Rank"));
    EXPECT_GE(rank, 0);
    EXPECT_LE(rank, 10);
  }
}

TEST_F(CheckUrlTest, MalformedQuestionsAreBadRequests) {
  for (const char* path : {"/check_url/", "/check_url/evil.example", "/check_url/http:/evil.example",
                           "/check_url/gopher://evil.example", "/check_url/http://evil.example/12ab",
                           "/check_url/http://evil.example/4294967296", "/check_url/http://evil.example/1/2",
                           "/check_url/http://ev%20il.example", "/check_url/http://evil.example:99999"}) {
    EXPECT_EQ(HttpGet(server.Url(path)).status, 400) << path;
  }
}

TEST_F(CheckUrlTest, RankRisesForNewHostsAndForNeighboursOfPhishingHosts) {
  const std::string fresh = std::string("/check_url/http://fresh.example.net/") + kUnitedStates;
  const int first = Rank(fresh);
  EXPECT_EQ(Rank(fresh), first - 1);  // never seen before, the first time only

  // One client says evil.example is at 203.0.113.80, the address of an
  // innocent site; however often it says so, the site's rank stays.
  const std::string victim = "/check_url/http://victim.example.net/3405803856";
  Rank(victim);
  const int before = Rank(victim);
  for (int i = 0; i < 200; ++i) HttpGet(server.Url("/check_url/http://evil.example/3405803856"));
  EXPECT_EQ(Rank(victim), before);

  // When three clients say so, hosts at that address share its risk.
  for (const char* client : {"127.0.0.2", "127.0.0.3"}) {
    HttpGetFrom(client, server.Url("/check_url/http://evil.example/3405803856"));
  }
  EXPECT_EQ(Rank(victim), before + 2);
  EXPECT_EQ(Rank("/check_url/http://neighbour.example.net/3405803856"),
            Rank("/check_url/http://stranger.example.net/3405803857") + 2);
}

TEST_F(CheckUrlTest, HostNamesBeyondTheLimitsAreBadRequests) {
  const std::string label63(63, 'a');
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://" + label63 + ".example")).status, 200);
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://" + label63 + "a.example")).status, 400);
  std::string host253 = label63 + "." + label63 + "." + label63 + "." + std::string(53, 'b') + ".example";
  ASSERT_EQ(host253.size(), 253u);
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://" + host253)).status, 200);
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://" + host253 + ".")).status, 200);
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://a" + host253)).status, 400);
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://" + std::string(7000, 'x') + ".example")).status, 400);
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://a..example")).status, 400);
}

TEST_F(CheckUrlTest, LinksPointAtTheHostTheClientUsedAndReflectNoMarkup) {
  const std::string path = "/check_url/http://evil.example";
  EXPECT_NE(HttpGet(server.Url(path), {"Host: toolbar.example:8750"})
                .body.find("href=\"http://toolbar.example:8750/help/faq/index.html#riskrating\""),
            std::string::npos);
  const HttpResult hostile = HttpGet(server.Url(path), {"Host: x\"><script>alert(1)</script>"});
  EXPECT_EQ(hostile.body.find("<script>"), std::string::npos) << hostile.body;
  EXPECT_NE(hostile.body.find(server.Url("/help/faq/index.html")), std::string::npos) << hostile.body;
}

}  // namespace
}  // namespace tarnwick::server::testing
