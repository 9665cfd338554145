// A running server follows imports made by another process, and keeps what
// it learns across a restart.
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace tarnwick::server::testing
