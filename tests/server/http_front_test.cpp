// What arrives on the socket is untrusted: limits and malformed requests get
// an error status, and the server keeps answering.
#include <gtest/gtest.h>

#include <mutex>
#include <stdexcept>
#include <thread>

#include "ServerFixture.h"
#include "server/HttpFront.h"

namespace tarnwick::server::testing {
namespace {

using std::chrono::milliseconds;
using namespace std::string_literals;

std::string StatusLine(const std::string& answer) { return answer.substr(0, answer.find("\r\n")); }

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// A front alone, with a handler that notes the paths that reach it and
// throws for /throw.
class FrontTest : public ::testing::Test {
 protected:
  void Start(HttpLimits limits = {}) {
    front = std::make_unique<HttpFront>(
        [this](const HttpRequest& request) {
          std::lock_guard lock(mutex);
          reached.push_back(request.path);
          if (request.path == "/throw") throw std::runtime_error("the disk is on fire");
          HttpResponse answer;
          answer.body = "ok";
          return answer;
        },
        [this](const std::string& line) {
          std::lock_guard lock(mutex);
          reports.push_back(line);
        },
        limits);
    std::string error;
    ASSERT_TRUE(front->Listen({"127.0.0.1", 0}, error)) << error;
    ASSERT_TRUE(front->Serve(error)) << error;
  }
  std::vector<std::string> Reached() {
    std::lock_guard lock(mutex);
    return reached;
  }

  std::mutex mutex;
  std::vector<std::string> reached, reports;
  std::unique_ptr<HttpFront> front;
};

// The whole answer, and whether the server closed the connection after it.
std::pair<std::string, bool> Converse(unsigned short port, const std::string& request) {
  RawConnection connection(port);
  connection.Send(request);
  std::string answer = connection.Read(milliseconds(3000));
  return {answer, connection.closed()};
}

TEST_F(FrontTest, AmbiguousRequestsAreRefusedBeforeAHandlerAndTheConnectionIsClosed) {
  Start();
  const std::string form = "Content-Type: application/x-www-form-urlencoded\r\n";
  for (const auto& [request, status] : std::vector<std::pair<std::string, std::string>>{
           {"GET /ok\0/../secret HTTP/1.1\r\nHost: x\r\n\r\n"s, "400 Bad Request"},
           {"GET /a b HTTP/1.1\r\nHost: x\r\n\r\n", "400 Bad Request"},
           {"GET /a\tb HTTP/1.1\r\nHost: x\r\n\r\n", "400 Bad Request"},
           {"POST /form HTTP/1.1\r\nHost: x\r\n" + form +
                "Content-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\nGET /smuggled HTTP/1.1\r\n\r\n",
            "400 Bad Request"},
           {"POST /form HTTP/1.1\r\nHost: x\r\n" + form + "Content-Length: 3\r\nContent-Length: 30\r\n\r\nabc",
            "400 Bad Request"},
           {"POST /form HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: gzip\r\n\r\nabc", "501 Not Implemented"},
           {"GET /ok HTTP/1.1\r\n\r\n", "400 Bad Request"},
       }) {
    const auto [answer, closed] = Converse(front->Port(), request);
    EXPECT_EQ(StatusLine(answer), "HTTP/1.1 " + status) << request;
    EXPECT_EQ(Count(answer, "\r\n\r\n"), 1u) << answer;  // one header block
    EXPECT_TRUE(closed) << request;
  }
  EXPECT_TRUE(Reached().empty());
  EXPECT_EQ(StatusLine(Converse(front->Port(), "GET /ok HTTP/1.0\r\n\r\n").first), "HTTP/1.1 200 OK");
  EXPECT_EQ(Reached(), std::vector<std::string>{"/ok"});
}

TEST_F(FrontTest, AHandlerThatThrowsGets500AndALogLine) {
  Start();
  const auto [answer, closed] = Converse(front->Port(), "GET /throw HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(StatusLine(answer), "HTTP/1.1 500 Internal Server Error");
  EXPECT_EQ(reports, std::vector<std::string>{"500 for GET /throw: the disk is on fire"});
  EXPECT_EQ(StatusLine(RawExchange(front->Port(), "GET /ok HTTP/1.1\r\nHost: x\r\n\r\n")), "HTTP/1.1 200 OK");
}

TEST_F(FrontTest, AClientThatDoesNotFinishItsRequestInTimeIsCutOff) {
  HttpLimits limits;
  limits.requestTime = milliseconds(500);
  Start(limits);

  // A byte every 100 ms keeps the connection busy, never idle.
  RawConnection slow(front->Port());
  slow.Send("GET /ok HTTP/1.1\r\nHost: x\r\nX-Slow: ");
  const auto started = std::chrono::steady_clock::now();
  while (!slow.closed() && std::chrono::steady_clock::now() - started < std::chrono::seconds(5)) {
    slow.Send("a");
    slow.Read(milliseconds(100));
  }
  EXPECT_TRUE(slow.closed());

  // A request delivered in time is answered; the idle connection after it
  // is closed in the same time.
  RawConnection prompt(front->Port());
  prompt.Send("GET /ok HTTP/1.1\r\nHost: x\r\n\r\n");
  EXPECT_EQ(StatusLine(prompt.Read(milliseconds(3000),
                                   [](const std::string& text) { return text.find("ok") != std::string::npos; })),
            "HTTP/1.1 200 OK");
  prompt.Read(milliseconds(3000));
  EXPECT_TRUE(prompt.closed());
}

TEST_F(FrontTest, OneAddressCannotHoldMoreThanItsShareOfConnections) {
  HttpLimits limits;
  limits.maxConnectionsPerAddress = 3;
  Start(limits);
  std::vector<std::unique_ptr<RawConnection>> held;
  for (int i = 0; i < 3; ++i) {
    held.push_back(std::make_unique<RawConnection>(front->Port(), "127.0.0.2"));
    held.back()->Send("GET /ok HTTP/1.1\r\n");
  }
  RawConnection extra(front->Port(), "127.0.0.2");
  extra.Read(milliseconds(2000));
  EXPECT_TRUE(extra.closed());
  for (const auto& connection : held) {
    connection->Read(milliseconds(10));
    EXPECT_FALSE(connection->closed());
  }
  EXPECT_EQ(HttpGet(BaseAddress({"127.0.0.1", front->Port()}) + "/ok").status, 200);
}

TEST(HttpFront, LimitsAndMalformedRequestsGetErrorStatuses) {
  ServerFixture server;
  server.Start();
  const unsigned short port = server.Port();
  const auto status = [&](const std::string& request) { return StatusLine(RawExchange(port, request)); };

  EXPECT_EQ(status("GET / FOO\r\n\r\n"), "HTTP/1.1 400 Bad Request");
  EXPECT_EQ(status("GET / HTTP/1.1\r\n\r\n"), "HTTP/1.1 400 Bad Request");  // no Host
  EXPECT_EQ(status("GET / HTTP/1.1\r\nHost: x\r\nNo colon here\r\n\r\n"), "HTTP/1.1 400 Bad Request");
  EXPECT_EQ(status("GET http://x/ HTTP/1.1\r\nHost: x\r\n\r\n"), "HTTP/1.1 400 Bad Request");
  EXPECT_EQ(status("GET /" + std::string(9000, 'a') + " HTTP/1.1\r\nHost: x\r\n\r\n"), "HTTP/1.1 414 URI Too Long");
  EXPECT_EQ(status("GET / HTTP/1.1\r\nHost: x\r\nX-Big: " + std::string(40000, 'b') + "\r\n\r\n"),
            "HTTP/1.1 431 Request Header Fields Too Large");
  EXPECT_EQ(status("POST /report_url HTTP/1.1\r\nHost: x\r\nContent-Length: 1000000\r\n\r\n"),
            "HTTP/1.1 413 Content Too Large");
  std::string chunked = "POST /report_url HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (int i = 0; i < 70; ++i) chunked += "400\r\n" + std::string(1024, 'c') + "\r\n";
  EXPECT_EQ(status(chunked + "0\r\n\r\n"), "HTTP/1.1 413 Content Too Large");
  EXPECT_EQ(status("DELETE / HTTP/1.1\r\nHost: x\r\n\r\n"), "HTTP/1.1 405 Method Not Allowed");

  const HttpResult head = HttpGet(server.Url("/check_url/http://a.example"), {}, true);
  EXPECT_EQ(head.status, 200);
  EXPECT_TRUE(head.body.empty());
  EXPECT_EQ(HttpGet(server.Url("/check_url/http://a.example")).status, 200);
}

TEST(HttpFront, ListenAddresses) {
  const auto v4 = ParseListenAddress("127.0.0.1:8750");
  ASSERT_TRUE(v4);
  EXPECT_EQ(v4->host, "127.0.0.1");
  EXPECT_EQ(v4->port, 8750);
  EXPECT_EQ(BaseAddress(*v4), "http://127.0.0.1:8750");
  const auto v6 = ParseListenAddress("[::1]:0");
  ASSERT_TRUE(v6);
  EXPECT_EQ(BaseAddress(*v6), "http://[::1]:0");
  // Only numeric addresses, IPv6 in brackets: what BaseAddress writes must
  // read back as the address listened on.
  using namespace std::string_literals;
  for (const std::string& bad :
       {"127.0.0.1"s, "127.0.0.1:"s, ":80"s, "127.0.0.1:65536"s, "::1:80"s, "[::1:80"s, "host:x"s, "localhost:80"s,
        "[127.0.0.1]:80"s, "127.0.0.1.5:80"s, "[[x[x-]-]:0"s, "[::1\0junk]:80"s, "127.0.0.1\0x:80"s}) {
    EXPECT_FALSE(ParseListenAddress(bad)) << bad;
  }

  std::string error;
  const auto quiet = [](const std::string&) {};
  HttpFront front([](const HttpRequest&) { return HttpResponse{}; }, quiet);
  EXPECT_FALSE(front.Listen({"localhost", 0}, error));
  EXPECT_EQ(error, "not a numeric address: localhost");
  HttpFront first([](const HttpRequest&) { return HttpResponse{}; }, quiet);
  ASSERT_TRUE(first.Listen({"127.0.0.1", 0}, error)) << error;
  EXPECT_FALSE(front.Listen({"127.0.0.1", first.Port()}, error));
  EXPECT_NE(error.find("Address already in use"), std::string::npos) << error;
}

}  // namespace
}  // namespace tarnwick::server::testing
