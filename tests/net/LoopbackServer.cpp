#include "LoopbackServer.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <chrono>
#include <cstring>
#include <optional>

#include "support/Text.h"

namespace tarnwick::testing {
namespace {

#ifdef _WIN32
using Native = SOCKET;
using Length = int;
constexpr int kSendFlags = 0;
void CloseSocket(SocketHandle fd) { ::closesocket(static_cast<Native>(fd)); }
int PollSockets(pollfd* fds, unsigned long count, int milliseconds) { return ::WSAPoll(fds, count, milliseconds); }
Native OpenSocket() { return ::socket(AF_INET, SOCK_STREAM, 0); }
std::optional<Native> Accept(Native listener) {
  const Native connection = ::accept(listener, nullptr, nullptr);
  return connection == INVALID_SOCKET ? std::nullopt : std::optional<Native>(connection);
}
void SetNonBlocking(Native fd) {
  u_long on = 1;
  ::ioctlsocket(fd, FIONBIO, &on);
}
// Winsock counts its users; each server is one.
struct WinsockSession {
  WinsockSession() {
    WSADATA data{};
    ::WSAStartup(MAKEWORD(2, 2), &data);
  }
  ~WinsockSession() { ::WSACleanup(); }
};
#else
using Native = int;
using Length = socklen_t;
constexpr int kSendFlags = MSG_NOSIGNAL;
void CloseSocket(SocketHandle fd) { ::close(static_cast<Native>(fd)); }
int PollSockets(pollfd* fds, nfds_t count, int milliseconds) { return ::poll(fds, count, milliseconds); }
// Close-on-exec: the tests start programs, which must not hold these.
Native OpenSocket() { return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); }
std::optional<Native> Accept(Native listener) {
  const Native connection = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  return connection < 0 ? std::nullopt : std::optional<Native>(connection);
}
void SetNonBlocking(Native fd) { ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK); }
struct WinsockSession {};
#endif

Native NativeOf(SocketHandle fd) { return static_cast<Native>(fd); }

// How often the threads look whether the server is stopping.
constexpr int kLookMs = 50;

SocketHandle ListenOnLoopback(int backlog, int& port) {
  [[maybe_unused]] static WinsockSession session;
  const Native fd = OpenSocket();
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  ::listen(fd, backlog);
  Length length = sizeof address;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return static_cast<SocketHandle>(fd);
}

bool Readable(SocketHandle fd, int milliseconds) {
  pollfd ready{};
  ready.fd = NativeOf(fd);
  ready.events = POLLIN;
  return PollSockets(&ready, 1, milliseconds) > 0;
}

void SendAll(SocketHandle fd, const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const auto n = ::send(NativeOf(fd), bytes.data() + sent, static_cast<int>(bytes.size() - sent), kSendFlags);
    if (n <= 0) return;
    sent += static_cast<std::size_t>(n);
  }
}

}  // namespace

std::string Request::Header(const std::string& name) const {
  std::size_t start = head.find("\r\n");
  while (start != std::string::npos && start + 2 < head.size()) {
    start += 2;
    const auto end = head.find("\r\n", start);
    const std::string line = head.substr(start, end - start);
    const auto colon = line.find(':');
    if (colon != std::string::npos && EqualsIgnoreCase(line.substr(0, colon), name)) {
      return line.substr(line.find_first_not_of(' ', colon + 1));
    }
    start = end;
  }
  return {};
}

Reply Reply::Http(int status, const std::string& reason, const std::string& body,
                  const std::vector<std::string>& headers) {
  std::string bytes = "HTTP/1.1 " + std::to_string(status) + " " + reason + "\r\n";
  for (const auto& header : headers) bytes += header + "\r\n";
  bytes += "Content-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
  return {bytes};
}

LoopbackServer::LoopbackServer(std::function<Reply(const Request&)> handler) : handler_(std::move(handler)) {
  listener_ = ListenOnLoopback(64, port_);
  acceptor_ = std::thread([this] { AcceptLoop(); });
}

LoopbackServer::~LoopbackServer() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  stop_.notify_all();
  acceptor_.join();
  for (auto& worker : workers_) worker.join();
  CloseSocket(listener_);
}

std::string LoopbackServer::Base() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::vector<Request> LoopbackServer::Requests() {
  std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

bool LoopbackServer::PauseOrStop(int milliseconds) {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto stopping = [this] { return stopping_.load(); };
  if (milliseconds < 0) {
    stop_.wait(lock, stopping);
    return true;
  }
  return stop_.wait_for(lock, std::chrono::milliseconds(milliseconds), stopping);
}

void LoopbackServer::AcceptLoop() {
  while (!stopping_) {
    if (!Readable(listener_, kLookMs)) continue;
    const auto connection = Accept(NativeOf(listener_));
    if (!connection) continue;
    workers_.emplace_back([this, fd = static_cast<SocketHandle>(*connection)] { Serve(fd); });
  }
}

void LoopbackServer::Serve(SocketHandle connection) {
  // Read the head, then as much body as Content-Length announces.
  std::string data;
  char chunk[4096];
  Request request;
  const auto readUntil = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (!stopping_ && std::chrono::steady_clock::now() < readUntil) {
    if (!Readable(connection, kLookMs)) continue;
    const auto n = ::recv(NativeOf(connection), chunk, sizeof chunk, 0);
    if (n <= 0) break;
    data.append(chunk, static_cast<std::size_t>(n));
    const auto headEnd = data.find("\r\n\r\n");
    if (headEnd == std::string::npos) continue;
    request.head = data.substr(0, headEnd);
    const std::string length = request.Header("Content-Length");
    if (data.size() - headEnd - 4 >= (length.empty() ? 0u : std::stoul(length))) {
      request.body = data.substr(headEnd + 4);
      break;
    }
  }
  const auto firstSpace = request.head.find(' ');
  request.method = request.head.substr(0, firstSpace);
  if (firstSpace != std::string::npos) {
    request.target = request.head.substr(firstSpace + 1, request.head.find(' ', firstSpace + 1) - firstSpace - 1);
  }
  {
    std::lock_guard<std::mutex> lock(mutex_);
    requests_.push_back(request);
  }
  const Reply reply = handler_(request);
  if (!reply.drop && !(reply.delayMs > 0 && PauseOrStop(reply.delayMs))) {
    if (reply.trickleBytes == 0) SendAll(connection, reply.bytes);
    for (std::size_t sent = 0; reply.trickleBytes > 0 && sent < reply.bytes.size(); sent += reply.trickleBytes) {
      if (PauseOrStop(reply.trickleMs)) break;
      SendAll(connection, reply.bytes.substr(sent, reply.trickleBytes));
    }
    if (reply.stall) PauseOrStop(-1);
  }
  CloseSocket(connection);
}

SilentPort::SilentPort() {
  listener_ = ListenOnLoopback(0, port_);
  // Fill the backlog so that the next handshake is never answered.
  for (int i = 0; i < 4; ++i) {
    const Native fd = OpenSocket();
    SetNonBlocking(fd);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    fillers_.push_back(static_cast<SocketHandle>(fd));
  }
}

SilentPort::~SilentPort() {
  for (const SocketHandle fd : fillers_) CloseSocket(fd);
  CloseSocket(listener_);
}

std::string SilentPort::Base() const { return "http://127.0.0.1:" + std::to_string(port_); }

}  // namespace tarnwick::testing
