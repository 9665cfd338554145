#include "LoopbackServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstring>

#include "support/Text.h"

namespace tarnwick::testing {
namespace {

int ListenOnLoopback(int backlog, int& port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  ::listen(fd, backlog);
  socklen_t length = sizeof address;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return fd;
}

void SendAll(int fd, const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t n = ::send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
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
  if (::pipe2(wake_, O_CLOEXEC) != 0) wake_[0] = wake_[1] = -1;
  acceptor_ = std::thread([this] { AcceptLoop(); });
}

LoopbackServer::~LoopbackServer() {
  stopping_ = true;
  if (::write(wake_[1], "x", 1) < 0) {
    // The acceptor also wakes when the listener closes.
  }
  acceptor_.join();
  for (auto& worker : workers_) worker.join();
  ::close(listener_);
  ::close(wake_[0]);
  ::close(wake_[1]);
}

std::string LoopbackServer::Base() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::vector<Request> LoopbackServer::Requests() {
  std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

void LoopbackServer::AcceptLoop() {
  while (!stopping_) {
    pollfd fds[2] = {{listener_, POLLIN, 0}, {wake_[0], POLLIN, 0}};
    if (::poll(fds, 2, -1) <= 0 || (fds[1].revents & POLLIN) != 0) continue;
    const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection >= 0) workers_.emplace_back([this, connection] { Serve(connection); });
  }
}

void LoopbackServer::Serve(int connection) {
  // Read the head, then as much body as Content-Length announces.
  std::string data;
  char chunk[4096];
  Request request;
  for (;;) {
    pollfd fds[2] = {{connection, POLLIN, 0}, {wake_[0], POLLIN, 0}};
    if (::poll(fds, 2, 2000) <= 0 || (fds[1].revents & POLLIN) != 0) break;
    const ssize_t n = ::recv(connection, chunk, sizeof chunk, 0);
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
  if (!reply.drop) {
    if (reply.delayMs > 0) {
      pollfd wake{wake_[0], POLLIN, 0};
      ::poll(&wake, 1, reply.delayMs);
    }
    if (reply.trickleBytes == 0) SendAll(connection, reply.bytes);
    for (std::size_t sent = 0; reply.trickleBytes > 0 && sent < reply.bytes.size(); sent += reply.trickleBytes) {
      pollfd wake{wake_[0], POLLIN, 0};
      if (::poll(&wake, 1, reply.trickleMs) != 0) break;
      SendAll(connection, reply.bytes.substr(sent, reply.trickleBytes));
    }
    if (reply.stall) {
      pollfd wake{wake_[0], POLLIN, 0};
      ::poll(&wake, 1, -1);
    }
  }
  ::close(connection);
}

SilentPort::SilentPort() {
  listener_ = ListenOnLoopback(0, port_);
  // Fill the backlog so that the next handshake is never answered.
  for (int i = 0; i < 4; ++i) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    fillers_.push_back(fd);
  }
}

SilentPort::~SilentPort() {
  for (int fd : fillers_) ::close(fd);
  ::close(listener_);
}

std::string SilentPort::Base() const { return "http://127.0.0.1:" + std::to_string(port_); }

}  // namespace tarnwick::testing
