// The HTTP front: libmicrohttpd behind a small interface. It owns the
// listening socket and a thread per connection, enforces the limits (sizes,
// time to deliver a request, connections per client address), refuses
// requests whose framing is ambiguous, and hands each complete request to
// one handler (on several threads at once).
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "server/HttpTypes.h"
#include "server/ListenAddress.h"
#include "server/RequestDeadlines.h"

struct MHD_Daemon;

namespace tarnwick::server {

struct HttpLimits {
  std::size_t maxTargetBytes = 8192;          // request target, path and query together: 414 above
  std::size_t maxBodyBytes = 65536;           // request body: 413 above
  std::size_t connectionMemoryBytes = 32768;  // request line and headers must fit in it: 431 or 414 above
  // Each request, headers and body, must be in within this time of the
  // connection's opening or of the previous answer; idle connections close
  // after it too.
  std::chrono::milliseconds requestTime{10000};
  unsigned answerTimeoutSeconds = 15;  // an answer the client stops reading is dropped after this
  unsigned maxConnections = 1024;
  unsigned maxConnectionsPerAddress = 64;  // more from one client address are closed at once
};

class HttpFront {
 public:
  // Trouble while answering (a handler that failed), one line at a time.
  using Reporter = std::function<void(const std::string&)>;

  HttpFront(HttpHandler handler, Reporter report, HttpLimits limits = {});
  ~HttpFront();
  HttpFront(const HttpFront&) = delete;
  HttpFront& operator=(const HttpFront&) = delete;

  // Opens the listening socket on `address`; then Port() is known. On
  // failure returns false and says why in `error`.
  bool Listen(const ListenAddress& address, std::string& error);
  // Starts answering on the socket Listen opened.
  bool Serve(std::string& error);
  // The port actually bound (the chosen one when 0 was asked for).
  std::uint16_t Port() const { return port_; }
  // Stops accepting, finishes the requests under way, joins the threads.
  void Stop();

  // Called by the library's callbacks. Dispatch answers 500, and reports
  // it, when the handler throws.
  HttpResponse Dispatch(const HttpRequest& request) const;
  const HttpLimits& limits() const { return limits_; }
  RequestDeadlines& deadlines() { return *deadlines_; }

 private:
  HttpHandler handler_;
  Reporter report_;
  HttpLimits limits_;
  std::unique_ptr<RequestDeadlines> deadlines_;
  MHD_Daemon* daemon_ = nullptr;
  int socket_ = -1;  // listening, not yet handed to the library
  bool v6_ = false;
  std::uint16_t port_ = 0;
};

}  // namespace tarnwick::server
