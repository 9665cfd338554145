// The web pages the toolbar opens, and reports stored durably.
#include <gtest/gtest.h>

#include "ServerFixture.h"

namespace tarnwick::server::testing {
namespace {

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class PagesTest : public ::testing::Test {
 protected:
  void SetUp() override { server.Start(); }
  std::vector<Report> StoredReports() { return ReadSqliteReports(server.database); }
  ServerFixture server;
};

TEST_F(PagesTest, ReportFormCarriesTheAddressTheToolbarSends) {
  // The toolbar escapes "%" after the "?" and every "&", nothing else.
  const HttpResult page = HttpGet(server.Url("/report_url?url=a.b/x?q=5%25%26r=1\"><script>x</script>"));
  EXPECT_EQ(page.status, 200);
  for (const char* part : {"<form name=\"frmReportURL\"", "name=\"name\"", "name=\"email\"", "name=\"reason\"",
                           "name=\"url\"", "value=\"a.b/x?q=5%&amp;r=1&quot;&gt;&lt;script&gt;x&lt;/script&gt;\""}) {
    EXPECT_TRUE(Has(page.body, part)) << part << "\n" << page.body;
  }
  EXPECT_FALSE(Has(page.body, "<script>"));

  const HttpResult bug = HttpGet(server.Url("/bug_report?ua=Tarnwick%20Toolbar%20(v1.0.0)"));
  EXPECT_TRUE(Has(bug.body, "value=\"Tarnwick Toolbar (v1.0.0)\"")) << bug.body;
  EXPECT_TRUE(Has(HttpGet(server.Url("/report_mistake")).body, "<form name=\"frmReportURL\""));
  EXPECT_TRUE(Has(HttpGet(server.Url("/help/faq/index.html")).body, "name=\"riskrating\""));
  EXPECT_EQ(HttpGet(server.Url("/install")).status, 200);
  EXPECT_EQ(HttpGet(server.Url("/install/")).status, 200);
  EXPECT_EQ(HttpGet(server.Url("/")).status, 200);
  EXPECT_EQ(HttpGet(server.Url("/no/such/page")).status, 404);
}

TEST_F(PagesTest, SubmittedReportsSurviveARestart) {
  const HttpResult stored = HttpPost(server.Url("/report_url"),
                                     "url=http%3A%2F%2Fphish.example%2Flogin&name=Ann+Lee&email=ann%40example.com"
                                     "&reason=It+asks+for+my+PIN+%3Cb%3E");
  EXPECT_EQ(stored.status, 200);
  EXPECT_TRUE(Has(stored.body, "http://phish.example/login")) << stored.body;
  EXPECT_EQ(HttpPost(server.Url("/bug_report"), "ua=Tarnwick+Toolbar+(v1.0.0)&reason=menu+is+empty").status, 200);

  server.Start();  // a new server over the same database
  const auto reports = StoredReports();
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[0].kind, "phishing");
  EXPECT_EQ(reports[0].url, "http://phish.example/login");
  EXPECT_EQ(reports[0].name, "Ann Lee");
  EXPECT_EQ(reports[0].email, "ann@example.com");
  EXPECT_EQ(reports[0].reason, "It asks for my PIN <b>");
  EXPECT_EQ(reports[0].clientAddress, "127.0.0.1");
  EXPECT_EQ(reports[1].kind, "bug");
  EXPECT_EQ(reports[1].userAgent, "Tarnwick Toolbar (v1.0.0)");
}

TEST_F(PagesTest, BadSubmissionsAreRefusedAndNothingIsStored) {
  EXPECT_EQ(HttpPost(server.Url("/report_url"), "name=Ann&reason=no+address").status, 400);
  EXPECT_EQ(HttpPost(server.Url("/bug_report"), "ua=x").status, 400);
  EXPECT_EQ(HttpPost(server.Url("/report_mistake"), "url=" + std::string(3000, 'a')).status, 400);
  EXPECT_EQ(HttpPost(server.Url("/report_url"), "url=x&reason=" + std::string(5000, 'a')).status, 400);
  EXPECT_EQ(HttpPost(server.Url("/report_url"), "{\"url\":\"x\"}", "application/json").status, 415);
  EXPECT_EQ(HttpPost(server.Url("/report_url"), "url=x&reason=" + std::string(70000, 'a')).status, 413);
  EXPECT_EQ(HttpPost(server.Url("/check_url/http://a.example"), "x=1").status, 405);
  EXPECT_TRUE(StoredReports().empty());
}

}  // namespace
}  // namespace tarnwick::server::testing
