// The background thread that keeps the live index current: once a second
// (or at once when asked, as on SIGHUP) it writes the observations, looks at
// the storage's feed version and, when another process imported something,
// builds a new index off to the side and swaps it in.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "server/LiveIndex.h"
#include "server/Observations.h"
#include "server/Storage.h"

namespace tarnwick::server {

class IndexReloader {
 public:
  using Reporter = std::function<void(const std::string&)>;

  // `storage` is a connection of the reloader's own.
  IndexReloader(std::unique_ptr<Storage> storage, LiveIndex& index, Observations& observations,
                std::chrono::milliseconds interval, Reporter report);
  ~IndexReloader();
  IndexReloader(const IndexReloader&) = delete;
  IndexReloader& operator=(const IndexReloader&) = delete;

  // Rebuilds the index at once, whether or not the feeds changed.
  void RequestReload();

 private:
  void Run();
  void Tick(bool forced);
  void Flush();

  std::unique_ptr<Storage> storage_;
  LiveIndex& index_;
  Observations& observations_;
  std::chrono::milliseconds interval_;
  Reporter report_;

  std::mutex mutex_;
  std::condition_variable wake_;
  bool reloadRequested_ = false;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace tarnwick::server
