// A running server follows imports made by another process, and keeps what
// it learns across a restart.
#include <gtest/gtest.h>

#include <algorithm>

#include "ServerFixture.h"

namespace tarnwick::server::testing {
namespace {

TEST(Reload, AnImportByAnotherProcessIsPickedUpWhileServing) {
  ServerFixture server;
  server.Start();
  const std::string question = server.Url("/check_url/http://late.example");
  EXPECT_EQ(HttpGet(question).status, 200);
  ImportLines(server.database, {"late.example"});
  EXPECT_TRUE(WaitForStatus(question, 403));
}

TEST(Reload, AReloadRequestRebuildsAtOnce) {
  ServerFixture server;
  server.Start(std::chrono::hours(1));  // no polling within the test
  const std::string question = server.Url("/check_url/http://late.example");
  ImportLines(server.database, {"late.example"});
  EXPECT_EQ(HttpGet(question).status, 200);
  server.server().Reload();
  EXPECT_TRUE(WaitForStatus(question, 403));
}

TEST(Reload, SeenHostsAndPhishingAddressesSurviveARestart) {
  ServerFixture server;
  ImportLines(server.database, {"evil.example"});
  server.Start();
  const auto rank = [&](const std::string& path) { return std::stoi(HttpGet(server.Url(path)).Header("X-Risk-Rank")); };
  const int firstAsk = rank("/check_url/http://met.example.net/16843009");
  for (const char* client : {"127.0.0.1", "127.0.0.2", "127.0.0.3"}) {
    HttpGetFrom(client, server.Url("/check_url/http://evil.example/3405803856"));
  }
  const int beforeRestart = rank("/check_url/http://other.example.net/3405803856");

  server.Start();  // stopping writes what was observed
  EXPECT_EQ(rank("/check_url/http://met.example.net/16843009"), firstAsk - 1);
  EXPECT_EQ(rank("/check_url/http://other.example.net/3405803856"), beforeRestart - 1);
}

TEST(Reload, ADatabaseRemovedAndMadeAgainIsNoticedAndReportsGoWhereTheNextReaderLooks) {
  ServerFixture server;
  ImportLines(server.database, {"old.example"});
  server.Start();
  const std::string old = server.Url("/check_url/http://old.example");
  ASSERT_EQ(HttpGet(old).status, 403);

  // The operator starts over while the server runs.
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(server.database.string() + suffix);
  ImportLines(server.database, {"new.example"});
  // A report sent before the server has looked at its database again.
  EXPECT_EQ(HttpPost(server.Url("/report_mistake"), "url=http%3A%2F%2Fnew.example%2F").status, 200);
  EXPECT_TRUE(WaitForStatus(server.Url("/check_url/http://new.example"), 403));
  EXPECT_EQ(HttpGet(old).status, 200);

  const auto reports = ReadSqliteReports(server.database);
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].url, "http://new.example/");
  const auto log = server.Log();
  EXPECT_NE(std::find(log.begin(), log.end(),
                      "the database " + server.database.string() + " was removed or replaced: opened it again"),
            log.end());
}

}  // namespace
}  // namespace tarnwick::server::testing
