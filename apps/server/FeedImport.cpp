#include "server/FeedImport.h"

#include <vector>

namespace tarnwick::server {
namespace {

class BatchingSink final : public FeedSink {
 public:
  BatchingSink(const ImportOptions& options, Storage& storage, ImportProgress& progress)
      : options_(options), storage_(storage), progress_(progress) {
    batch_.reserve(options.batchRows);
  }

  void Row(FeedRow row) override {
    std::string reason;
    auto site = ParseFeedUrl(row.url, reason);
    if (!site) {
      Reject(row.where, reason);
      return;
    }
    site->wholeSite = site->wholeSite || options_.wholeSites;
    batch_.push_back({std::move(*site), std::string(FeedFormatName(options_.format)), std::move(row.target),
                      std::move(row.addresses)});
    if (batch_.size() >= options_.batchRows) Commit();
  }

  void Reject(const std::string& where, const std::string& reason) override {
    ++summary_.rejected;
    progress_.Rejected(where, reason);
  }

  ImportSummary Finish() {
    Commit();
    return summary_;
  }

 private:
  void Commit() {
    if (batch_.empty()) return;
    const ImportCounts counts = storage_.Import(batch_);
    batch_.clear();
    summary_.added += counts.added;
    summary_.known += counts.known;
    progress_.Committed(summary_);
  }

  const ImportOptions& options_;
  Storage& storage_;
  ImportProgress& progress_;
  std::vector<FeedEntry> batch_;
  ImportSummary summary_;
};

}  // namespace

ImportSummary ImportFeed(std::istream& in, const ImportOptions& options, Storage& storage, ImportProgress& progress) {
  BatchingSink sink(options, storage, progress);
  ReadFeed(options.format, in, sink);
  return sink.Finish();
}

}  // namespace tarnwick::server
