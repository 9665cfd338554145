#include "CheckFixture.h"
#include "support/Base64.h"

namespace tarnwick::testing {
namespace {

using CheckUrlTest = CheckFixture;

TEST_F(CheckUrlTest, TheSchemeFilterIsCaseSensitive) {
  checker.SetLastResponse("kept");
  bool cancel = true;
  checker.Check("mailto:someone@example.com", {}, cancel);
  EXPECT_FALSE(cancel);
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Scheme);
  EXPECT_EQ(checker.GetLastResponse(), "kept");
  EXPECT_TRUE(Logged("(CheckURL) Not Checking URL: mailto:someone@example.com"));
  EXPECT_FALSE(Logged("(CheckURL) Checking URL: mailto:"));

  EXPECT_TRUE(Navigate("JavaScript:alert(1)"));  // checked, and caught as scripting
  EXPECT_TRUE(Logged("(CheckURL) Checking URL: JavaScript:alert(1)"));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Xss);
}

// The filter asks the component only about URLs that may match; those it
// leaves out the pattern would not have matched either.
TEST_F(CheckUrlTest, TheSchemeFilterAnswersAsItsPatternDoes) {
  Rex rex(*rexObject);
  const std::string pattern = "^(javascript|jscript|vbscript|telnet|about|msc|htc|hcp|callto|ymsgr|res|mailto):";
  for (const char* url : {"mailto:a@b",
                          "mailto",
                          "mailto:",
                          "xmailto:a",
                          "res:",
                          "res",
                          "resx:",
                          ":",
                          "",
                          "hcp://x",
                          "HCP://x",
                          "about:blank",
                          "ymsgr:a:b",
                          "http://a/?u=javascript:x",
                          "javascript::",
                          "jscript:1",
                          "vbscript:",
                          "telnet:/",
                          "msc:",
                          "htc:",
                          "callto:1",
                          " mailto:a"}) {
    EXPECT_EQ(CheckURL::HasUncheckedScheme(url, rex), rex.Test(url, pattern)) << url;
  }
}

TEST_F(CheckUrlTest, SitesOutsideTheInternetZoneGetTheirZoneText) {
  zones.trusted = "bank.example";
  const std::pair<const char*, const char*> cases[] = {
      {"http://intranet/", "This site is in your Local Intranet zone."},
      {"https://www.bank.example/", "This site is in your Trusted Sites zone."},
      {"file:///home/user/page.html", "No information available."},
  };
  for (const auto& [url, text] : cases) {
    process.CurrentRiskRank = 5;
    bool cancel = true;
    checker.Check(url, {}, cancel);
    EXPECT_TRUE(cancel) << url;  // not touched
    EXPECT_EQ(checker.GetLastResponse(), text) << url;
    EXPECT_EQ(shownInformation.back(), text) << url;
    EXPECT_EQ(process.CurrentRiskRank, -1) << url;
  }
  EXPECT_TRUE(server.Requests().empty());
}

TEST_F(CheckUrlTest, OtherSchemesAreRewrittenAndSchemelessUrlsAreNotSupported) {
  resolver.names["host.example"] = {203, 0, 113, 9};
  EXPECT_FALSE(Navigate("ttp://host.example/page"));
  EXPECT_TRUE(Logged("(CheckURL) Changing the protocol of ttp://host.example/page"));
  EXPECT_EQ(Targets(), std::vector<std::string>{"/check_url/http://host.example/3405803785"});

  EXPECT_FALSE(Navigate("host.example/page"));
  EXPECT_TRUE(Logged("URL not supported: host.example/page"));
  EXPECT_EQ(checker.GetLastResponse(), "No information available.");
  EXPECT_EQ(server.Requests().size(), 1u);
}

TEST_F(CheckUrlTest, ScriptingInTheUrlOrPostDataBlocksWithoutReportHintOrServer) {
  EXPECT_TRUE(Navigate("http://shop.example/search?q=%3Cscript%3Ealert(1)"));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Xss);
  EXPECT_EQ(LastMessage(),
            "The page you are trying to visit is using Cross-Site Scripting (XSS).\r\n"
            "This is a technique commonly used in phishing attacks.\r\n\r\n"
            "URL: http://shop.example/search?q=<script>alert(1)\r\n\r\n"  // the decoded URL
            "Are you sure you want to visit the page?");
  EXPECT_EQ(t.ui.shown.back().title, "Page Blocked");
  EXPECT_EQ(t.ui.shown.back().style, vbYesNo | vbCritical | vbDefaultButton2);

  EXPECT_FALSE(Navigate("http://shop.example/pay", vbYes, "card=1&note=<img src=x onerror=steal()>"));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Xss);
  EXPECT_TRUE(server.Requests().empty());
}

TEST_F(CheckUrlTest, LocalPatternsBlockWithTheReportHintAndALogLine) {
  EXPECT_TRUE(Navigate("http://www.bank.example@evil.example/"));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Local);
  EXPECT_TRUE(Logged("URL (http://www.bank.example@evil.example/) blocked by local pattern (^https?://[^/?#]*@)"));
  EXPECT_NE(LastMessage().find("because it contains suspicious characters"), std::string::npos);
  EXPECT_NE(LastMessage().find("\"Report Incorrectly Blocked URL\""), std::string::npos);
  EXPECT_TRUE(Logged("(URL_Blocked_Locally) returning True"));
  EXPECT_TRUE(server.Requests().empty());
}

TEST_F(CheckUrlTest, TheServersStatusDecides) {
  resolver.names["site.example"] = {198, 51, 100, 20};
  verdict = {403, "Known phishing site", "10", ""};
  EXPECT_TRUE(Navigate("http://site.example/account"));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Remote);
  EXPECT_EQ(checker.GetLastResponse(), "Known phishing site");
  EXPECT_NE(LastMessage().find("believed to be part of a fraudulent phishing attack"), std::string::npos);

  verdict = {200, "Risk rating: 2/10 [US] United States", "2", ""};
  EXPECT_FALSE(Navigate("http://site.example/"));
  EXPECT_EQ(process.CurrentRiskRank, 2);
  EXPECT_EQ(checker.GetLastResponse(), "Risk rating: 2/10 [US] United States");
  EXPECT_EQ(shownInformation.back(), checker.GetLastResponse());

  verdict = {500, "Database down (code 7)", "9", ""};
  EXPECT_FALSE(Navigate("http://site.example/"));
  EXPECT_EQ(process.CurrentRiskRank, -1);
  EXPECT_EQ(checker.GetLastResponse(), "The toolbar server could not be contacted (Database down )");
  EXPECT_TRUE(Logged("Invalid or missing reponse from toolbar server (500): Database down (code 7)"));
}

TEST_F(CheckUrlTest, AServerThatNeverAnswersTimesOutAndNeverBlocks) {
  process.options.ServerTimeout = 1;
  t.ui.onDoEvents = [this] { t.clock.now += 0.5 / 86400; };  // half a second per poll
  LoopbackServer silent([](const Request&) {
    Reply reply;
    reply.stall = true;
    return reply;
  });
  process.endpoints.server = silent.Base();
  EXPECT_FALSE(Navigate("http://203.0.113.50/"));
  EXPECT_EQ(checker.GetLastResponse(), "The toolbar server could not be contacted (Timeout)");
  EXPECT_EQ(process.CurrentRiskRank, -1);
}

TEST_F(CheckUrlTest, HeaderPatternsMatchTheUrlCaseSensitively) {
  verdict.patterns = EncodeBase64("^http://203\\.0\\.113\\.7/Shared/\tnever-matches");
  EXPECT_TRUE(Navigate("http://203.0.113.7/Shared/copy.html"));
  EXPECT_EQ(checker.GetLastResponse(), "(Blocked) Site information");
  EXPECT_TRUE(Logged("(URL_Blocked_Remotely) Trying pattern 0: ^http://203\\.0\\.113\\.7/Shared/"));

  EXPECT_FALSE(Navigate("http://203.0.113.7/shared/copy.html"));
  EXPECT_EQ(checker.GetLastResponse(), "Site information");
  // Patterns apply to the decoded URL.
  EXPECT_TRUE(Navigate("http://203.0.113.7/%53hared/x"));
}

TEST_F(CheckUrlTest, RiskRanksAboveTheSettingBlockWithoutReportHint) {
  process.options.BlockAtRiskRank = 3;
  verdict.riskRank = "3";
  EXPECT_FALSE(Navigate("http://203.0.113.8/"));
  verdict.riskRank = "4";
  EXPECT_TRUE(Navigate("http://203.0.113.8/"));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Rank);
  EXPECT_NE(LastMessage().find("Risk Rating exceeds the maximum level"), std::string::npos);
  EXPECT_EQ(LastMessage().find("Report Incorrectly Blocked URL"), std::string::npos);
  verdict.riskRank = "unknown";
  EXPECT_FALSE(Navigate("http://203.0.113.8/"));
  EXPECT_EQ(process.CurrentRiskRank, -1);

  process.options.BlockAtRiskRank = 10;
  verdict.riskRank = "10";
  EXPECT_FALSE(Navigate("http://203.0.113.8/"));
}

TEST_F(CheckUrlTest, HoldingCtrlOrAnsweringYesLetsThePageThrough) {
  verdict.status = 403;
  t.ui.ctrlDown = true;
  bool cancel = false;
  checker.Check("http://203.0.113.9/", {}, cancel);
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(t.ui.shown.empty());

  t.ui.ctrlDown = false;
  EXPECT_FALSE(Navigate("http://203.0.113.9/", vbYes));
  EXPECT_TRUE(Navigate("http://203.0.113.9/", vbNo));
}

TEST_F(CheckUrlTest, PrivateAddressesAreNeverSentToTheServer) {
  resolver.names["printer.example"] = {192, 168, 0, 20};
  for (const char* url :
       {"http://192.168.1.1/", "http://0300.0250.1.1/admin", "http://printer.example/", "http://10.0.0.1/"}) {
    EXPECT_FALSE(Navigate(url)) << url;
    EXPECT_EQ(checker.GetLastResponse(), "No information available - local or private site.") << url;
  }
  EXPECT_TRUE(server.Requests().empty());
  // A name that does not resolve is still asked about, without an address.
  EXPECT_FALSE(Navigate("https://unknown.example:8443/x"));
  EXPECT_EQ(Targets(), std::vector<std::string>{"/check_url/https://unknown.example:8443"});
}

}  // namespace
}  // namespace tarnwick::testing
