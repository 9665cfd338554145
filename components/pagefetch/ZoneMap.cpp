#include "ZoneMap.h"

#include <algorithm>
#include <optional>

#include "settings/SiteLists.h"
#include "support/IPv4Address.h"
#include "support/Text.h"

namespace tarnwick::pagefetch {
namespace {

bool IsLocalPath(std::string_view url) {
  if (url.starts_with("/") || url.starts_with("\\\\")) return true;
  return url.size() >= 3 && ((url[0] | 0x20) >= 'a' && (url[0] | 0x20) <= 'z') && url[1] == ':' &&
         (url[2] == '\\' || url[2] == '/');
}

// A name the intranet can have: letters, digits, "-" and "_", not all digits
// (a number is an address, or no host at all), and no dot.
bool IsDotlessName(std::string_view host) {
  bool letter = false;
  for (char c : host) {
    const bool digit = c >= '0' && c <= '9';
    if (!digit && !(c >= 'a' && c <= 'z') && c != '-' && c != '_') return false;
    letter = letter || !digit;
  }
  return letter;
}

// Without lists, a host written with a dot and no escape is in the Internet
// zone, whatever it decodes to: most URLs are answered without decoding.
bool PlainlyInternet(std::string_view url, const ZoneLists& lists) {
  if (!lists.trusted.empty() || !lists.intranet.empty() || !lists.restricted.empty()) return false;
  const auto schemeEnd = url.find("://");
  if (schemeEnd == std::string_view::npos) return false;
  std::string_view host = url.substr(schemeEnd + 3);
  host = host.substr(0, host.find_first_of("/?#"));
  if (const auto at = host.rfind('@'); at != std::string_view::npos) host = host.substr(at + 1);
  host = host.substr(0, host.find(':'));
  return host.find('.') != std::string_view::npos && host.find_first_of("%[") == std::string_view::npos;
}

}  // namespace

std::int32_t MapZone(std::string_view url, const ZoneLists& lists) {
  if (IsLocalPath(url) || LowerAscii(url.substr(0, 5)) == "file:") return kZoneLocalMachine;
  if (PlainlyInternet(url, lists)) return kZoneInternet;
  // A host written as a number ("134744072", "0x08080808", "8.526344") is
  // the address the resolver makes of it, never an intranet name.
  const std::string host = SiteOfURL(url);
  if (host.empty()) return kZoneInternet;
  if (SiteListCovers(lists.restricted, host)) return kZoneRestricted;
  if (SiteListCovers(lists.trusted, host)) return kZoneTrusted;
  if (SiteListCovers(lists.intranet, host)) return kZoneIntranet;
  if (!ParseIPv4Address(host) && host.find('.') == std::string::npos && IsDotlessName(host)) return kZoneIntranet;
  return kZoneInternet;
}

}  // namespace tarnwick::pagefetch
