// What arrives on the socket is untrusted: limits and malformed requests get
// an error status, and the server keeps answering.
#include <gtest/gtest.h>

#include "ServerFixture.h"
#include "server/HttpFront.h"

namespace tarnwick::server::testing {
namespace {

std::string StatusLine(const std::string& answer) { return answer.substr(0, answer.find("\r\n")); }

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
  for (const char* bad : {"127.0.0.1", "127.0.0.1:", ":80", "127.0.0.1:65536", "::1:80", "[::1:80", "host:x"}) {
    EXPECT_FALSE(ParseListenAddress(bad)) << bad;
  }

  std::string error;
  HttpFront front([](const HttpRequest&) { return HttpResponse{}; });
  EXPECT_FALSE(front.Listen({"localhost", 0}, error));
  EXPECT_EQ(error, "not a numeric address: localhost");
  HttpFront first([](const HttpRequest&) { return HttpResponse{}; });
  ASSERT_TRUE(first.Listen({"127.0.0.1", 0}, error)) << error;
  EXPECT_FALSE(front.Listen({"127.0.0.1", first.Port()}, error));
  EXPECT_NE(error.find("Address already in use"), std::string::npos) << error;
}

}  // namespace
}  // namespace tarnwick::server::testing
