#include "server/HttpFront.h"

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

#include "server/AddressText.h"
#include "support/Text.h"

namespace tarnwick::server {
namespace {

// What one request accumulates between the library's calls.
struct Exchange {
  std::string target;                // raw, as on the request line, up to a NUL byte if it holds one
  const char* lineTarget = nullptr;  // where the library keeps it in its copy of the request line
  std::string body;
  bool started = false;
  bool bodyTooLarge = false;
};

std::string Describe(int error) { return std::strerror(error); }

RequestDeadlines::Connection* DeadlineOf(MHD_Connection* connection) {
  const MHD_ConnectionInfo* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
  return info != nullptr ? static_cast<RequestDeadlines::Connection*>(info->socket_context) : nullptr;
}

void OnConnection(void* context, MHD_Connection* connection, void** socketContext,
                  MHD_ConnectionNotificationCode code) {
  auto& deadlines = static_cast<HttpFront*>(context)->deadlines();
  if (code == MHD_CONNECTION_NOTIFY_CLOSED) {
    if (*socketContext != nullptr) deadlines.Closed(static_cast<RequestDeadlines::Connection*>(*socketContext));
    return;
  }
  const MHD_ConnectionInfo* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
  try {
    if (info != nullptr) *socketContext = deadlines.Opened(info->connect_fd);
  } catch (const std::bad_alloc&) {
    *socketContext = nullptr;  // served without a deadline rather than not at all
  }
}

void* OnRequestLine(void*, const char* uri, MHD_Connection*) {
  try {
    auto* exchange = new Exchange;
    exchange->target = uri != nullptr ? uri : "";
    exchange->lineTarget = uri;
    return exchange;
  } catch (const std::bad_alloc&) {
    return nullptr;  // OnRequest then drops the connection
  }
}

void OnCompleted(void* context, MHD_Connection* connection, void** state, MHD_RequestTerminationCode) {
  delete static_cast<Exchange*>(*state);
  *state = nullptr;
  if (auto* deadline = DeadlineOf(connection)) static_cast<HttpFront*>(context)->deadlines().Answered(deadline);
}

MHD_Result Send(MHD_Connection* connection, const HttpResponse& answer) {
  MHD_Response* response =
      MHD_create_response_from_buffer(answer.body.size(), const_cast<char*>(answer.body.data()), MHD_RESPMEM_MUST_COPY);
  if (response == nullptr) return MHD_NO;
  MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.contentType.c_str());
  for (const auto& [name, value] : answer.headers) MHD_add_response_header(response, name.c_str(), value.c_str());
  const MHD_Result queued = MHD_queue_response(connection, static_cast<unsigned>(answer.status), response);
  MHD_destroy_response(response);
  return queued;
}

// An answer after which nothing more is read from the connection: what
// follows a request we could not frame cannot be trusted to be a request.
MHD_Result Refuse(MHD_Connection* connection, int status, std::string_view detail) {
  HttpResponse answer = ErrorResponse(status, detail);
  answer.headers.emplace_back(MHD_HTTP_HEADER_CONNECTION, "close");
  return Send(connection, answer);
}

MHD_Result CollectHeader(void* list, MHD_ValueKind, const char* key, const char* value) {
  static_cast<HeaderList*>(list)->emplace_back(key, value != nullptr ? value : "");
  return MHD_YES;
}

const char* HeaderValue(MHD_Connection* connection, const char* name) {
  return MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
}

MHD_Result CountContentLength(void* count, MHD_ValueKind, const char* key, const char*) {
  if (EqualsIgnoreCase(key, MHD_HTTP_HEADER_CONTENT_LENGTH)) ++*static_cast<int*>(count);
  return MHD_YES;
}

int ContentLengthHeaders(MHD_Connection* connection) {
  int count = 0;
  MHD_get_connection_values(connection, MHD_HEADER_KIND, CountContentLength, &count);
  return count;
}

std::string ClientAddress(MHD_Connection* connection) {
  const MHD_ConnectionInfo* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
  if (info == nullptr || info->client_addr == nullptr) return {};
  char text[INET6_ADDRSTRLEN] = {};
  const sockaddr* address = info->client_addr;
  if (address->sa_family == AF_INET) {
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(address)->sin_addr, text, sizeof text);
  } else if (address->sa_family == AF_INET6) {
    inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr, text, sizeof text);
  }
  return text;
}

bool BodyDeclaredTooLarge(MHD_Connection* connection, std::size_t limit) {
  const char* length = HeaderValue(connection, MHD_HTTP_HEADER_CONTENT_LENGTH);
  if (length == nullptr) return false;
  std::size_t bytes = 0;
  const auto [end, error] = std::from_chars(length, length + std::strlen(length), bytes);
  return error != std::errc() || bytes > limit;
}

// The library hands the target over as a C string, so a NUL byte in it
// would cut it short unseen. In its copy of the request line the HTTP
// version follows the whole target and one space; a gap between the end of
// the string and the version means the target held a NUL.
bool TargetHasNul(const Exchange& exchange, const char* version) {
  if (exchange.lineTarget == nullptr || version == nullptr) return false;
  const auto start = reinterpret_cast<std::uintptr_t>(exchange.lineTarget);
  const auto next = reinterpret_cast<std::uintptr_t>(version);
  if (next <= start || next - start > 65536) return false;  // not in the same line: nothing to compare
  return next - start - 1 != exchange.target.size();
}

bool HasControlOrSpace(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= 0x20 || byte == 0x7F;
  });
}

// The answer to a request that must not reach a handler, or nothing.
std::optional<MHD_Result> RefuseUnframed(const HttpFront& front, MHD_Connection* connection, const Exchange& exchange,
                                         const char* version) {
  if (exchange.target.size() > front.limits().maxTargetBytes) return Refuse(connection, 414, {});
  if (TargetHasNul(exchange, version) || HasControlOrSpace(exchange.target)) {
    return Refuse(connection, 400, "the request target holds control characters or spaces");
  }
  if (version != nullptr && std::string_view(version) == MHD_HTTP_VERSION_1_1 &&
      HeaderValue(connection, MHD_HTTP_HEADER_HOST) == nullptr) {
    return Refuse(connection, 400, "an HTTP/1.1 request needs a Host header");
  }
  // A body whose length two headers state can be read two ways, one of
  // which may see a second request in it.
  const int lengths = ContentLengthHeaders(connection);
  if (lengths > 1) return Refuse(connection, 400, "more than one Content-Length");
  if (const char* coding = HeaderValue(connection, MHD_HTTP_HEADER_TRANSFER_ENCODING)) {
    if (lengths > 0) return Refuse(connection, 400, "both Content-Length and Transfer-Encoding");
    if (!EqualsIgnoreCase(coding, "chunked")) return Refuse(connection, 501, "only the chunked transfer coding");
  }
  if (BodyDeclaredTooLarge(connection, front.limits().maxBodyBytes)) return Refuse(connection, 413, {});
  return std::nullopt;
}

MHD_Result Advance(HttpFront& front, MHD_Connection* connection, const char* method, const char* version,
                   const char* uploadData, std::size_t* uploadSize, Exchange& exchange) {
  if (!exchange.started) {
    // The first call comes once the headers are in; the body, if any, follows.
    exchange.started = true;
    if (auto refused = RefuseUnframed(front, connection, exchange, version)) return *refused;
    return MHD_YES;
  }
  if (*uploadSize != 0) {
    // The answer can only go out once the body is in; past the limit the
    // rest of it is read and dropped.
    exchange.bodyTooLarge = exchange.bodyTooLarge || exchange.body.size() + *uploadSize > front.limits().maxBodyBytes;
    if (!exchange.bodyTooLarge) exchange.body.append(uploadData, *uploadSize);
    *uploadSize = 0;
    return MHD_YES;
  }
  if (auto* deadline = DeadlineOf(connection)) front.deadlines().Answering(deadline);
  if (exchange.bodyTooLarge) return Refuse(connection, 413, {});

  HttpRequest request;
  request.method = method;
  const auto question = exchange.target.find('?');
  request.path = exchange.target.substr(0, question);
  if (question != std::string::npos) request.query = exchange.target.substr(question + 1);
  MHD_get_connection_values(connection, MHD_HEADER_KIND, CollectHeader, &request.headers);
  request.body = std::move(exchange.body);
  request.clientAddress = ClientAddress(connection);
  return Send(connection, front.Dispatch(request));
}

MHD_Result OnRequest(void* context, MHD_Connection* connection, const char*, const char* method, const char* version,
                     const char* uploadData, std::size_t* uploadSize, void** state) {
  auto* exchange = static_cast<Exchange*>(*state);
  if (exchange == nullptr) return MHD_NO;
  try {
    return Advance(*static_cast<HttpFront*>(context), connection, method, version, uploadData, uploadSize, *exchange);
  } catch (...) {
    return MHD_NO;  // out of memory even for an error answer: the library closes the connection
  }
}

// A bound, listening socket, or -1 with `error` set.
int OpenListeningSocket(const ListenAddress& address, std::string& error) {
  sockaddr_storage storage{};
  socklen_t length = 0;
  auto* v4 = reinterpret_cast<sockaddr_in*>(&storage);
  auto* v6 = reinterpret_cast<sockaddr_in6*>(&storage);
  if (const auto ipv4 = ReadIPv4Text(address.host)) {
    v4->sin_addr = *ipv4;
    v4->sin_family = AF_INET;
    v4->sin_port = htons(address.port);
    length = sizeof *v4;
  } else if (const auto ipv6 = ReadIPv6Text(address.host)) {
    v6->sin6_addr = *ipv6;
    v6->sin6_family = AF_INET6;
    v6->sin6_port = htons(address.port);
    length = sizeof *v6;
  } else {
    error = "not a numeric address: " + address.host;
    return -1;
  }
  const int socket = ::socket(storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket < 0) {
    error = "cannot open a socket: " + Describe(errno);
    return -1;
  }
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (bind(socket, reinterpret_cast<sockaddr*>(&storage), length) != 0 || listen(socket, SOMAXCONN) != 0) {
    error = "cannot listen on " + BaseAddress(address) + ": " + Describe(errno);
    close(socket);
    return -1;
  }
  return socket;
}

std::uint16_t BoundPort(int socket) {
  sockaddr_storage storage{};
  socklen_t length = sizeof storage;
  if (getsockname(socket, reinterpret_cast<sockaddr*>(&storage), &length) != 0) return 0;
  if (storage.ss_family == AF_INET6) return ntohs(reinterpret_cast<sockaddr_in6*>(&storage)->sin6_port);
  return ntohs(reinterpret_cast<sockaddr_in*>(&storage)->sin_port);
}

}  // namespace

HttpFront::HttpFront(HttpHandler handler, Reporter report, HttpLimits limits)
    : handler_(std::move(handler)), report_(std::move(report)), limits_(limits) {}

HttpFront::~HttpFront() { Stop(); }

bool HttpFront::Listen(const ListenAddress& address, std::string& error) {
  socket_ = OpenListeningSocket(address, error);
  if (socket_ < 0) return false;
  port_ = BoundPort(socket_);
  v6_ = address.host.find(':') != std::string::npos;
  return true;
}

bool HttpFront::Serve(std::string& error) {
  // A thread per connection: on a busy machine a worker that the scheduler
  // sets aside then delays one connection, not every connection of its
  // event loop, which keeps the slowest answers fast (see bench/server).
  const unsigned flags =
      MHD_USE_THREAD_PER_CONNECTION | MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_POLL | (v6_ ? MHD_USE_IPv6 : 0);
  deadlines_ = std::make_unique<RequestDeadlines>(limits_.requestTime);
  // Strictness 0: the library's own answer to a missing Host header repeats
  // its header block, so RefuseUnframed answers that case instead.
  daemon_ =
      MHD_start_daemon(flags, 0, nullptr, nullptr, &OnRequest, this, MHD_OPTION_LISTEN_SOCKET, socket_,
                       MHD_OPTION_URI_LOG_CALLBACK, &OnRequestLine, nullptr, MHD_OPTION_NOTIFY_COMPLETED, &OnCompleted,
                       this, MHD_OPTION_NOTIFY_CONNECTION, &OnConnection, this, MHD_OPTION_CONNECTION_MEMORY_LIMIT,
                       limits_.connectionMemoryBytes, MHD_OPTION_CONNECTION_TIMEOUT, limits_.answerTimeoutSeconds,
                       MHD_OPTION_CONNECTION_LIMIT, limits_.maxConnections, MHD_OPTION_PER_IP_CONNECTION_LIMIT,
                       limits_.maxConnectionsPerAddress, MHD_OPTION_STRICT_FOR_CLIENT, 0, MHD_OPTION_END);
  if (daemon_ == nullptr) {
    error = "the HTTP library could not start on port " + std::to_string(port_);
    return false;
  }
  socket_ = -1;  // the library closes it when it stops
  return true;
}

void HttpFront::Stop() {
  if (socket_ >= 0) close(socket_);
  socket_ = -1;
  if (daemon_ != nullptr) MHD_stop_daemon(daemon_);
  daemon_ = nullptr;
  deadlines_.reset();
}

HttpResponse HttpFront::Dispatch(const HttpRequest& request) const {
  try {
    return handler_(request);
  } catch (const std::exception& failure) {
    report_("500 for " + request.method + " " + request.path.substr(0, 200) + ": " + failure.what());
  } catch (...) {
    report_("500 for " + request.method + " " + request.path.substr(0, 200) + ": an unknown exception");
  }
  return ErrorResponse(500);
}

}  // namespace tarnwick::server
