// The index in use. Request threads take the current one; the reloader
// swaps in a new one atomically, and an old one lives on until the last
// request that holds it is answered.
#pragma once

#include <atomic>
#include <memory>

#include "server/PhishIndex.h"

namespace tarnwick::server {

class LiveIndex {
 public:
  explicit LiveIndex(std::shared_ptr<const PhishIndex> first) : current_(std::move(first)) {}
  std::shared_ptr<const PhishIndex> Current() const { return current_.load(std::memory_order_acquire); }
  void Replace(std::shared_ptr<const PhishIndex> next) { current_.store(std::move(next), std::memory_order_release); }

 private:
  std::atomic<std::shared_ptr<const PhishIndex>> current_;
};

}  // namespace tarnwick::server
