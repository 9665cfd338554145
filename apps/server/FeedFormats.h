// Reading the phishing feeds the server imports. Each reader turns its
// format into rows (a URL, and what else the feed says about it) and
// rejects, with a reason, what it cannot read, then goes on with the rest.
//
//   phishtank-csv   PhishTank's online-valid.csv: a header naming the columns
//                   phish_id,url,phish_detail_url,submission_time,verified,
//                   verification_time,online,target
//   phishtank-json  PhishTank's online-valid.json: an array of objects with
//                   the same fields and "details" (hosting addresses)
//   openphish       OpenPhish's feed: one URL per line
//   urlhaus-csv     URLhaus's CSV: "#" comment lines, then the columns
//                   id,dateadded,url,url_status,last_online,threat,tags,urlhaus_link,reporter
//   lines           our own list: one URL per line, "#" comments, and a bare
//                   host name (no scheme) for a whole site
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::server {

enum class FeedFormat { PhishtankCsv, PhishtankJson, OpenPhish, UrlhausCsv, Lines };

std::optional<FeedFormat> FeedFormatNamed(std::string_view name);
std::string_view FeedFormatName(FeedFormat format);

// At most this many hosting addresses are kept for one row.
inline constexpr std::size_t kMaxAddressesPerRow = 16;

struct FeedRow {
  std::string where;  // "line 12", "entry 3 (line 40)": for messages
  std::string url;
  std::string target;                    // the brand the feed names, if any
  std::vector<std::uint32_t> addresses;  // hosting addresses, if the feed gives them
};

class FeedSink {
 public:
  virtual ~FeedSink() = default;
  virtual void Row(FeedRow row) = 0;
  virtual void Reject(const std::string& where, const std::string& reason) = 0;
};

// Reads the whole feed into `sink`, in memory bounded whatever the feed
// holds. Input that ends the reading early (a header that names no url
// column, JSON that breaks off or goes on after its array) is rejected too.
void ReadFeed(FeedFormat format, std::istream& in, FeedSink& sink);
// The same over a feed in memory.
void ReadFeed(FeedFormat format, std::string_view bytes, FeedSink& sink);

// The readers behind ReadFeed.
void ReadUrlList(std::istream& in, bool ourOwnList, FeedSink& sink);
void ReadPhishtankCsv(std::istream& in, FeedSink& sink);
void ReadPhishtankJson(std::istream& in, FeedSink& sink);
void ReadUrlhausCsv(std::istream& in, FeedSink& sink);

}  // namespace tarnwick::server
