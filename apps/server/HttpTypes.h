// One HTTP exchange as the server's handlers see it, free of the HTTP
// library: the request as it came (path and query raw, never unescaped or
// merged) and the answer to send.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick::server {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

struct HttpRequest {
  std::string method;  // "GET", "HEAD", "POST", ...
  std::string path;    // the request target up to the first "?", as sent
  std::string query;   // after the first "?", as sent; empty when there is none
  HeaderList headers;
  std::string body;
  std::string clientAddress;

  // The first header of that name (names compare without regard to case);
  // empty when absent.
  std::string_view Header(std::string_view name) const;
};

struct HttpResponse {
  int status = 200;
  std::string contentType = "text/plain; charset=windows-1252";
  std::string body;
  HeaderList headers;
};

using HttpHandler = std::function<HttpResponse(const HttpRequest&)>;

// A short plain-text answer for an error status: "400 Bad Request" and so on.
HttpResponse ErrorResponse(int status, std::string_view detail = {});

}  // namespace tarnwick::server
