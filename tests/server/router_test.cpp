// The router called directly, without sockets: each path reaches its
// service, methods are checked, and links follow the Host the client used.
#include "server/Router.h"

#include <gtest/gtest.h>

#include "ServerFixture.h"

namespace tarnwick::server::testing {
namespace {

class RouterTest : public ::testing::Test {
 protected:
  RouterTest() { WriteText(client.dir / "data" / "localblock.dat", "^https?://[^/]*@\r\n"); }

  HttpResponse Ask(const std::string& method, const std::string& target, HeaderList headers = {},
                   const std::string& body = {}) {
    HttpRequest request;
    request.method = method;
    const auto question = target.find('?');
    request.path = target.substr(0, question);
    if (question != std::string::npos) request.query = target.substr(question + 1);
    request.headers = std::move(headers);
    request.body = body;
    request.clientAddress = "192.0.2.10";
    return router.Handle(request);
  }
  static std::string Header(const HttpResponse& answer, const std::string& name) {
    for (const auto& [key, value] : answer.headers) {
      if (key == name) return value;
    }
    return {};
  }

  tarnwick::testing::TestProcess client;  // a folder and a log for the services
  std::unique_ptr<Storage> storage = [this] {
    ImportLines(client.dir / "server.db", {"evil.example"});
    return OpenSqliteStorage(client.dir / "server.db");
  }();
  LiveIndex index{PhishIndex::Load(*storage)};
  Observations observations;
  RiskModel risk{RiskConfig{}, PopularityList{}};
  GeoIpDatabase geoIp{client.dir / "no-geoip.dat"};
  DataFiles files{client.dir / "data", client.process.log};
  ProgramReleases releases{client.dir / "data" / "releases", client.process.log};
  std::vector<std::string> log;
  ReportPages pages{*storage, risk.config(), [this](const std::string& line) { log.push_back(line); }};
  Verdicts verdicts{index, observations, risk, geoIp};
  std::string ownAddress = "http://127.0.0.1:8750";
  Router router{verdicts, files, releases, pages, ownAddress};
};

TEST_F(RouterTest, EachPathReachesItsService) {
  const HttpResponse phishing = Ask("GET", "/check_url/http://evil.example/134744072");
  EXPECT_EQ(phishing.status, 403);
  EXPECT_EQ(Header(phishing, "X-Risk-Rank"), "10");
  EXPECT_EQ(Ask("GET", "/check_url/http://good.example").status, 200);
  EXPECT_EQ(Ask("GET", "/check_url/evil.example").status, 400);

  const HttpResponse file = Ask("GET", "/updates/localblock.dat");
  EXPECT_EQ(file.status, 200);
  EXPECT_EQ(file.body, "^https?://[^/]*@\r\n");
  EXPECT_EQ(Ask("GET", "/updates/missing.dat").status, 404);
  EXPECT_TRUE(Ask("GET", "/file_hashes?file0=localblock.dat").body.starts_with("localblock.dat="));
  EXPECT_EQ(Ask("GET", "/check_update/127/1.0.0/GUID").status, 404);
  EXPECT_EQ(Ask("GET", "/check_update/1.0.0").status, 400);
  EXPECT_EQ(Ask("GET", "/report_url?url=x").contentType, "text/html; charset=windows-1252");
  EXPECT_EQ(Ask("GET", "/").status, 200);
  EXPECT_EQ(Ask("GET", "/no/such/page").status, 404);
  EXPECT_EQ(Ask("GET", "*").status, 400);
}

TEST_F(RouterTest, MethodsAreCheckedAndFormsStored) {
  EXPECT_EQ(Ask("HEAD", "/check_url/http://evil.example").status, 403);
  const HttpResponse post = Ask("POST", "/check_url/http://evil.example");
  EXPECT_EQ(post.status, 405);
  EXPECT_EQ(Header(post, "Allow"), "GET, HEAD");
  const HttpResponse put = Ask("PUT", "/");
  EXPECT_EQ(put.status, 405);
  EXPECT_EQ(Header(put, "Allow"), "GET, HEAD, POST");

  const HttpResponse stored =
      Ask("POST", "/report_mistake", {{"Content-Type", "application/x-www-form-urlencoded; charset=UTF-8"}},
          "url=http%3A%2F%2Fgood.example%2F&reason=mine");
  EXPECT_EQ(stored.status, 200);
  const auto reports = ReadSqliteReports(client.dir / "server.db");
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].clientAddress, "192.0.2.10");
}

TEST_F(RouterTest, LinksPointAtTheHostTheClientUsed) {
  const auto faqLink = [&](HeaderList headers) {
    const std::string body = Ask("GET", "/check_url/http://evil.example", std::move(headers)).body;
    const auto start = body.find("href=\"") + 6;
    return body.substr(start, body.find('"', start) - start);
  };
  EXPECT_EQ(faqLink({{"host", "toolbar.example:8750"}}), "http://toolbar.example:8750/help/faq/index.html#riskrating");
  EXPECT_EQ(faqLink({{"Host", "[::1]:8750"}}), "http://[::1]:8750/help/faq/index.html#riskrating");
  EXPECT_EQ(faqLink({}), "http://127.0.0.1:8750/help/faq/index.html#riskrating");
  EXPECT_EQ(faqLink({{"Host", "x\"/><script>"}}), "http://127.0.0.1:8750/help/faq/index.html#riskrating");
}

}  // namespace
}  // namespace tarnwick::server::testing
