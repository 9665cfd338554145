#include "server/FeedImport.h"

#include <vector>

namespace tarnwick::server {
namespace {

class BatchingSink final : public FeedSink {
 public:
  BatchingSink(const ImportOptions& options, Storage& storage, ImportProgress& progress)
      : options_(options), storage_(storage), progress_(progress) {}

  void Row(FeedRow row) override {
    std::string reason;
    auto site = ParseFeedUrl(row.url, reason);
    if (!site) {
      Reject(row.where, reason);
      return;
    }
    site->wholeSite = site->wholeSite || options_.wholeSites;
    if (row.target.size() > kMaxTargetBytes) row.target.resize(kMaxTargetBytes);
    if (row.addresses.size() > kMaxAddressesPerRow) row.addresses.resize(kMaxAddressesPerRow);
    batchBytes_ += sizeof(FeedEntry) + site->host.size() + site->siteUrl.size() + row.target.size() +
                   row.addresses.size() * sizeof(std::uint32_t);
    batch_.push_back({std::move(*site), std::string(FeedFormatName(options_.format)), std::move(row.target),
                      std::move(row.addresses)});
    if (batch_.size() >= options_.batchRows || batchBytes_ >= kMaxBatchBytes) Commit();
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
    batchBytes_ = 0;
    summary_.added += counts.added;
    summary_.known += counts.known;
    progress_.Committed(summary_);
  }

  const ImportOptions& options_;
  Storage& storage_;
  ImportProgress& progress_;
  std::vector<FeedEntry> batch_;
  std::size_t batchBytes_ = 0;
  ImportSummary summary_;
};

}  // namespace

ImportSummary ImportFeed(std::istream& in, const ImportOptions& options, Storage& storage, ImportProgress& progress) {
  BatchingSink sink(options, storage, progress);
  ReadFeed(options.format, in, sink);
  return sink.Finish();
}

}  // namespace tarnwick::server
