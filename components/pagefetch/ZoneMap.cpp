#include "ZoneMap.h"

#include "support/Text.h"

namespace tarnwick::pagefetch {
namespace {

bool IsLocalPath(std::string_view url) {
  if (url.starts_with("/") || url.starts_with("\\\\")) return true;
  return url.size() >= 3 && ((url[0] | 0x20) >= 'a' && (url[0] | 0x20) <= 'z') && url[1] == ':' &&
         (url[2] == '\\' || url[2] == '/');
}

// The host of "scheme://[user@]host[:port]/...", lower-cased; empty when the
// URL has no authority.
std::string HostOf(std::string_view url) {
  const auto schemeEnd = url.find("://");
  if (schemeEnd == std::string_view::npos) return {};
  std::string_view rest = url.substr(schemeEnd + 3);
  rest = rest.substr(0, rest.find_first_of("/?#"));
  if (const auto at = rest.rfind('@'); at != std::string_view::npos) rest = rest.substr(at + 1);
  if (rest.starts_with("[")) return LowerAscii(rest.substr(0, rest.find(']') + 1));
  return LowerAscii(rest.substr(0, rest.find(':')));
}

bool Listed(const std::string& host, std::string_view list) {
  std::size_t start = 0;
  while (start < list.size()) {
    const auto end = std::min(list.find_first_of("; \t", start), list.size());
    std::string entry = LowerAscii(list.substr(start, end - start));
    start = end + 1;
    if (entry.starts_with("*.")) entry.erase(0, 2);
    if (entry.empty()) continue;
    if (host == entry || (host.size() > entry.size() && host.ends_with("." + entry))) return true;
  }
  return false;
}

}  // namespace

std::int32_t MapZone(std::string_view url, const ZoneLists& lists) {
  if (IsLocalPath(url) || LowerAscii(url.substr(0, 5)) == "file:") return kZoneLocalMachine;
  const std::string host = HostOf(url);
  if (host.empty()) return kZoneInternet;
  if (Listed(host, lists.restricted)) return kZoneRestricted;
  if (Listed(host, lists.trusted)) return kZoneTrusted;
  if (Listed(host, lists.intranet) || host.find('.') == std::string::npos) return kZoneIntranet;
  return kZoneInternet;
}

}  // namespace tarnwick::pagefetch
