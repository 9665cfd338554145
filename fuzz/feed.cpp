// The phishing feeds the server imports. The first byte of the input picks
// the format (its value modulo 5: 0 phishtank-csv, 1 phishtank-json,
// 2 openphish, 3 urlhaus-csv, 4 lines); the rest is the feed. Each URL the
// reader hands on is then read as the import reads it.
#include "FuzzSupport.h"
#include "server/FeedFormats.h"
#include "server/FeedUrl.h"

namespace {

class CheckingSink final : public tarnwick::server::FeedSink {
 public:
  void Row(tarnwick::server::FeedRow row) override {
    if (row.where.empty()) tarnwick::fuzz::Broken("a row says where it is", row.url);
    if (row.addresses.size() > tarnwick::server::kMaxAddressesPerRow) {
      tarnwick::fuzz::Broken("addresses are bounded per row", row.where);
    }
    std::string reason;
    if (!tarnwick::server::ParseFeedUrl(row.url, reason) && reason.empty()) {
      tarnwick::fuzz::Broken("a refused URL says why", row.url);
    }
  }
  void Reject(const std::string& where, const std::string& reason) override {
    if (where.empty() || reason.empty()) tarnwick::fuzz::Broken("a rejection says where and why", where + reason);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick::server;
  if (size == 0) return 0;
  static constexpr FeedFormat kFormats[] = {FeedFormat::PhishtankCsv, FeedFormat::PhishtankJson, FeedFormat::OpenPhish,
                                            FeedFormat::UrlhausCsv, FeedFormat::Lines};
  CheckingSink sink;
  ReadFeed(kFormats[data[0] % 5], tarnwick::fuzz::AsText(data + 1, size - 1), sink);
  return 0;
}
