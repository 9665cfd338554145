#include "server/FeedUrl.h"

#include "server/HostNames.h"
#include "server/TextLines.h"
#include "support/Hex.h"
#include "support/Text.h"

namespace tarnwick::server {

std::optional<SiteUrl> ParseFeedUrl(std::string_view url, std::string& reason) {
  url = TrimBlanks(url);
  if (url.empty()) {
    reason = "empty URL";
    return std::nullopt;
  }
  if (url.size() > kMaxFeedUrlBytes) {
    reason = "URL longer than " + std::to_string(kMaxFeedUrlBytes) + " characters";
    return std::nullopt;
  }
  for (const char c : url) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte <= 0x20 || byte == 0x7F) {
      reason = "URL contains white space or control characters";
      return std::nullopt;
    }
  }
  const auto separator = url.find("://");
  const std::string scheme = separator == std::string_view::npos ? std::string() : LowerAscii(url.substr(0, separator));
  if (scheme != "http" && scheme != "https") {
    reason = "not an http or https URL";
    return std::nullopt;
  }
  const std::string_view afterScheme = url.substr(separator + 3);
  const auto pathStart = afterScheme.find_first_of("/?#");
  const std::string_view authority = afterScheme.substr(0, pathStart);
  std::string_view rest = pathStart == std::string_view::npos ? std::string_view() : afterScheme.substr(pathStart);
  rest = rest.substr(0, rest.find('#'));

  SiteUrl site;
  site.host = HostOfAuthority(authority);
  if (site.host.empty()) {
    reason = "no valid host name";
    return std::nullopt;
  }
  if (!IsInternetHost(site.host)) {
    reason = "'" + site.host + "' is not an Internet host name";
    return std::nullopt;
  }
  if (!HasValidPort(authority)) {
    reason = "bad port";
    return std::nullopt;
  }
  // The host as the host key reads it (escapes decoded, lower case), so
  // that the page's pattern matches the URL a browser shows for it.
  const std::string_view hostPart = HostPartOfAuthority(authority);
  const std::size_t hostStart = static_cast<std::size_t>(hostPart.data() - authority.data());
  site.siteUrl = std::string(authority.substr(0, hostStart)) + LowerAscii(PercentDecode(hostPart)) +
                 std::string(authority.substr(hostStart + hostPart.size()));
  site.wholeSite = rest.empty() || rest == "/";
  // Browsers show the root's slash before a query: "http://h?q" is "http://h/?q".
  if (rest.empty() || rest.front() == '?') site.siteUrl += '/';
  site.siteUrl += rest;
  return site;
}

}  // namespace tarnwick::server
