// Each connection has a limited time to deliver each request, headers and
// body, counted from its opening or from the end of its previous answer; a
// connection that has not delivered by then is shut down. The HTTP library's
// own time-out only counts silence, so without this a client sending a byte
// now and then would hold its connection, and a thread, for ever.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>

namespace tarnwick::server {

class RequestDeadlines {
 public:
  struct Connection;

  explicit RequestDeadlines(std::chrono::milliseconds limit);
  ~RequestDeadlines();
  RequestDeadlines(const RequestDeadlines&) = delete;
  RequestDeadlines& operator=(const RequestDeadlines&) = delete;

  // A new connection on `socket`: its first request is due within the limit.
  Connection* Opened(int socket);
  // Its request is in and being answered: no deadline until Answered.
  void Answering(Connection* connection);
  // Its answer is out: the next request is due within the limit.
  void Answered(Connection* connection);
  // Forgets the connection; called before its socket is closed.
  void Closed(Connection* connection);

 private:
  void Watch();

  const std::chrono::milliseconds limit_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool stopping_ = false;
  std::unordered_map<Connection*, std::unique_ptr<Connection>> connections_;
  std::thread watcher_;
};

}  // namespace tarnwick::server
