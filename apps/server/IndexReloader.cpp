#include "server/IndexReloader.h"

#include <utility>

namespace tarnwick::server {

IndexReloader::IndexReloader(std::unique_ptr<Storage> storage, LiveIndex& index, Observations& observations,
                             std::chrono::milliseconds interval, Reporter report)
    : storage_(std::move(storage)),
      index_(index),
      observations_(observations),
      interval_(interval),
      report_(std::move(report)),
      thread_([this] { Run(); }) {}

IndexReloader::~IndexReloader() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

void IndexReloader::RequestReload() {
  {
    std::lock_guard lock(mutex_);
    reloadRequested_ = true;
  }
  wake_.notify_one();
}

void IndexReloader::Run() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait_for(lock, interval_, [this] { return stopping_ || reloadRequested_; });
    if (stopping_) break;
    const bool forced = std::exchange(reloadRequested_, false);
    lock.unlock();
    Tick(forced);
    lock.lock();
  }
  lock.unlock();
  Flush();
}

void IndexReloader::Flush() {
  try {
    observations_.Flush(*storage_);
  } catch (const StorageError& error) {
    report_(std::string("cannot save observations: ") + error.what());
  }
}

void IndexReloader::Tick(bool forced) {
  try {
    if (const std::string reopened = storage_->ReopenIfReplaced(); !reopened.empty()) {
      report_(reopened);
      forced = true;  // the new file's version number says nothing about the index
    }
  } catch (const StorageError& error) {
    report_(std::string("storage error: ") + error.what());
  }
  Flush();
  try {
    if (!forced && storage_->FeedVersion() == index_.Current()->feedVersion()) return;
    auto next = PhishIndex::Load(*storage_);
    report_("index loaded: " + next->Describe());
    index_.Replace(std::move(next));
  } catch (const StorageError& error) {
    report_(std::string("storage error: ") + error.what());
  }
}

}  // namespace tarnwick::server
