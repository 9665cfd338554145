// A loopback HTTP server for the transfer tests that misbehaves on request:
// it answers with exactly the bytes a handler gives, late, half, never, or
// by dropping the connection.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tarnwick::testing {

// A socket of the platform (a descriptor on POSIX, a SOCKET on Windows).
using SocketHandle = std::intptr_t;

struct Request {
  std::string method;
  std::string target;
  std::string head;  // request line and header lines as received
  std::string body;
  // The value of a request header, or empty (name compared without case).
  std::string Header(const std::string& name) const;
};

struct Reply {
  std::string bytes;   // sent as they are
  int delayMs = 0;     // before anything is sent
  bool stall = false;  // send `bytes`, then hold the connection open
  bool drop = false;   // close at once without a byte
  // Send `bytes` in pieces of this many, each after a pause of trickleMs.
  std::size_t trickleBytes = 0;
  int trickleMs = 0;
  // A plain HTTP/1.1 answer with Content-Length and Connection: close.
  static Reply Http(int status, const std::string& reason, const std::string& body,
                    const std::vector<std::string>& headers = {});
};

class LoopbackServer {
 public:
  explicit LoopbackServer(std::function<Reply(const Request&)> handler);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  // "http://127.0.0.1:<port>"
  std::string Base() const;
  std::vector<Request> Requests();

 private:
  void AcceptLoop();
  void Serve(SocketHandle connection);
  // Waits `milliseconds` (forever when negative); true when the server is
  // stopping.
  bool PauseOrStop(int milliseconds);

  std::function<Reply(const Request&)> handler_;
  SocketHandle listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  std::condition_variable stop_;
  std::mutex mutex_;
  std::vector<Request> requests_;
  std::vector<std::thread> workers_;
  std::thread acceptor_;
};

// A port that accepts no connection at all: its backlog is full, so a
// connect to it never completes the handshake.
class SilentPort {
 public:
  SilentPort();
  ~SilentPort();
  std::string Base() const;

 private:
  SocketHandle listener_ = -1;
  std::vector<SocketHandle> fillers_;
  int port_ = 0;
};

}  // namespace tarnwick::testing
