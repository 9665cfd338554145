// Importing a feed into the storage: rows are checked, gathered into
// batches and committed one transaction per batch, so that whatever has
// been reported as committed survives the importer being killed. Importing
// the same feed again adds nothing.
#pragma once

#include <cstddef>
#include <istream>
#include <string>

#include "server/FeedFormats.h"
#include "server/Storage.h"

namespace tarnwick::server {

struct ImportSummary {
  std::size_t added = 0;
  std::size_t known = 0;
  std::size_t rejected = 0;
};

class ImportProgress {
 public:
  virtual ~ImportProgress() = default;
  // A batch is committed; `soFar` counts every row up to it.
  virtual void Committed(const ImportSummary& soFar) = 0;
  virtual void Rejected(const std::string& where, const std::string& reason) = 0;
};

// A batch is committed when it holds batchRows rows or kMaxBatchBytes of
// them, whichever comes first, so its memory is bounded whatever the rows.
inline constexpr std::size_t kMaxBatchRows = 1'000'000;
inline constexpr std::size_t kMaxBatchBytes = 64 << 20;
// The brand a feed names is cut to this length.
inline constexpr std::size_t kMaxTargetBytes = 200;

struct ImportOptions {
  FeedFormat format = FeedFormat::Lines;
  bool wholeSites = false;        // every listed host is a phishing site as a whole
  std::size_t batchRows = 50000;  // 1 to kMaxBatchRows
};

// Throws StorageError when a batch cannot be committed; the batches
// reported before stay committed.
ImportSummary ImportFeed(std::istream& in, const ImportOptions& options, Storage& storage, ImportProgress& progress);

}  // namespace tarnwick::server
