// A URL from a feed, reduced to the host and site the verdicts are keyed by;
// and host names as the server reads them from any authority.
#include "FuzzSupport.h"
#include "server/FeedUrl.h"
#include "server/HostNames.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  using namespace tarnwick::server;
  const std::string_view text = fuzz::AsText(data, size);

  const std::string host = HostOfAuthority(text);
  if (!host.empty() && HostOfAuthority(host) != host) fuzz::Broken("a host is its own authority's host", host);
  if (host.size() > kMaxHostBytes) fuzz::Broken("hosts are bounded", host);

  std::string reason;
  const auto site = ParseFeedUrl(text, reason);
  if (!site) {
    if (reason.empty()) fuzz::Broken("a refusal says why", text);
    return 0;
  }
  if (site->host.empty() || !IsInternetHost(site->host)) fuzz::Broken("a site has an Internet host", site->host);
  if (site->siteUrl.find(site->host) == std::string::npos) fuzz::Broken("the site holds its host", site->siteUrl);
  if (site->siteUrl.size() > kMaxFeedUrlBytes + 1) fuzz::Broken("site URLs are bounded", site->siteUrl);
  const auto again = ParseFeedUrl("http://" + site->siteUrl, reason);
  if (!again || again->host != site->host || again->siteUrl != site->siteUrl) {
    fuzz::Broken("a site's URL reads back as itself", site->siteUrl);
  }
  return 0;
}
