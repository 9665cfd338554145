// The HTTP front: libmicrohttpd behind a small interface. It owns the
// listening socket and a thread per connection, enforces the size limits,
// and hands each complete request to one handler (on several threads at once).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "server/HttpTypes.h"

struct MHD_Daemon;

namespace tarnwick::server {

struct HttpLimits {
  std::size_t maxTargetBytes = 8192;          // request target, path and query together: 414 above
  std::size_t maxBodyBytes = 65536;           // request body: 413 above
  std::size_t connectionMemoryBytes = 32768;  // request line and headers must fit in it: 431 or 414 above
  unsigned connectionTimeoutSeconds = 15;     // idle keep-alive connections close after this
  unsigned maxConnections = 1024;
};

struct ListenAddress {
  std::string host;  // IPv4 dotted or IPv6 without brackets
  std::uint16_t port = 0;
};

// "127.0.0.1:8750" or "[::1]:0"; nothing when the text is not of that form.
std::optional<ListenAddress> ParseListenAddress(std::string_view text);
// "http://127.0.0.1:8750", "http://[::1]:8750": the form a client uses.
std::string BaseAddress(const ListenAddress& address);

class HttpFront {
 public:
  explicit HttpFront(HttpHandler handler, HttpLimits limits = {});
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

  // Called by the library's callbacks.
  HttpResponse Dispatch(const HttpRequest& request) const { return handler_(request); }
  const HttpLimits& limits() const { return limits_; }

 private:
  HttpHandler handler_;
  HttpLimits limits_;
  MHD_Daemon* daemon_ = nullptr;
  int socket_ = -1;  // listening, not yet handed to the library
  bool v6_ = false;
  std::uint16_t port_ = 0;
};

}  // namespace tarnwick::server
