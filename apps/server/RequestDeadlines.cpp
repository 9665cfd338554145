#include "server/RequestDeadlines.h"

#include <sys/socket.h>

#include <algorithm>

namespace tarnwick::server {

using Clock = std::chrono::steady_clock;

struct RequestDeadlines::Connection {
  int socket;
  Clock::time_point due;  // max() while a request is being answered
};

RequestDeadlines::RequestDeadlines(std::chrono::milliseconds limit) : limit_(limit), watcher_([this] { Watch(); }) {}

RequestDeadlines::~RequestDeadlines() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_one();
  watcher_.join();
}

RequestDeadlines::Connection* RequestDeadlines::Opened(int socket) {
  auto connection = std::make_unique<Connection>(Connection{socket, Clock::now() + limit_});
  Connection* key = connection.get();
  std::lock_guard lock(mutex_);
  connections_.emplace(key, std::move(connection));
  return key;
}

void RequestDeadlines::Answering(Connection* connection) {
  std::lock_guard lock(mutex_);
  connection->due = Clock::time_point::max();
}

void RequestDeadlines::Answered(Connection* connection) {
  std::lock_guard lock(mutex_);
  connection->due = Clock::now() + limit_;
}

void RequestDeadlines::Closed(Connection* connection) {
  std::lock_guard lock(mutex_);
  connections_.erase(connection);
}

void RequestDeadlines::Watch() {
  // Late by at most a quarter of the limit (and never more than a second).
  const auto period =
      std::clamp<std::chrono::milliseconds>(limit_ / 4, std::chrono::milliseconds(10), std::chrono::milliseconds(1000));
  std::unique_lock lock(mutex_);
  while (!wake_.wait_for(lock, period, [this] { return stopping_; })) {
    const auto now = Clock::now();
    for (auto& [key, connection] : connections_) {
      if (connection->due > now) continue;
      // The connection's own thread sees its socket end and closes it; the
      // socket stays open until Closed, which waits for this lock.
      shutdown(connection->socket, SHUT_RDWR);
      connection->due = Clock::time_point::max();
    }
  }
}

}  // namespace tarnwick::server
