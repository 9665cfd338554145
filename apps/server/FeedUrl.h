// A phishing URL from a feed, reduced to what the verdicts need.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::server {

struct SiteUrl {
  std::string host;  // lower case, without user part and port
  std::string
      siteUrl;  // user part, host (escapes decoded, lower case) and port, then path and query; no scheme, no fragment
  bool wholeSite = false;  // the site's root ("/" or nothing, no query): the whole host is phishing
};

inline constexpr std::size_t kMaxFeedUrlBytes = 2048;

// The parts of an absolute http or https URL, surrounding white space
// ignored; nothing, with the reason in `reason`, when it is not one.
std::optional<SiteUrl> ParseFeedUrl(std::string_view url, std::string& reason);

}  // namespace tarnwick::server
