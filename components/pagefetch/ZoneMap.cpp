#include "ZoneMap.h"

#include <algorithm>
#include <optional>

#include "support/Hex.h"
#include "support/IPv4Address.h"
#include "support/Text.h"

namespace tarnwick::pagefetch {
namespace {

bool IsLocalPath(std::string_view url) {
  if (url.starts_with("/") || url.starts_with("\\\\")) return true;
  return url.size() >= 3 && ((url[0] | 0x20) >= 'a' && (url[0] | 0x20) <= 'z') && url[1] == ':' &&
         (url[2] == '\\' || url[2] == '/');
}

// The host of "scheme://[user@]host[:port]/...", escapes decoded and
// lower-cased, as the browser and the host name cleaning of the check read
// it; empty when the URL has no authority.
std::string HostOf(std::string_view url) {
  const auto schemeEnd = url.find("://");
  if (schemeEnd == std::string_view::npos) return {};
  std::string_view rest = url.substr(schemeEnd + 3);
  rest = rest.substr(0, rest.find_first_of("/?#"));
  if (const auto at = rest.rfind('@'); at != std::string_view::npos) rest = rest.substr(at + 1);
  if (rest.starts_with("[")) return LowerAscii(rest.substr(0, rest.find(']') + 1));
  return LowerAscii(PercentDecode(rest.substr(0, rest.find(':'))));
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

// A host names an address in any numeric form by that address, "a.b.c.d".
std::optional<std::string> AddressOf(std::string_view host) {
  const auto address = ParseIPv4Address(host);
  if (!address) return std::nullopt;
  return DottedAddress(*address);
}

// An entry names a host and every host below it; an address only itself.
bool Listed(const std::string& host, bool isAddress, std::string_view list) {
  std::size_t start = 0;
  while (start < list.size()) {
    const auto end = std::min(list.find_first_of("; \t", start), list.size());
    std::string entry = LowerAscii(list.substr(start, end - start));
    start = end + 1;
    if (entry.starts_with("*.")) entry.erase(0, 2);
    if (entry.empty()) continue;
    if (const auto address = AddressOf(entry)) entry = *address;
    if (host == entry || (!isAddress && host.size() > entry.size() && host.ends_with("." + entry))) return true;
  }
  return false;
}

}  // namespace

std::int32_t MapZone(std::string_view url, const ZoneLists& lists) {
  if (IsLocalPath(url) || LowerAscii(url.substr(0, 5)) == "file:") return kZoneLocalMachine;
  std::string host = HostOf(url);
  if (host.empty()) return kZoneInternet;
  // A host written as a number ("134744072", "0x08080808", "8.526344") is
  // the address the resolver makes of it, never an intranet name.
  const auto address = AddressOf(host);
  if (address) host = *address;
  if (Listed(host, address.has_value(), lists.restricted)) return kZoneRestricted;
  if (Listed(host, address.has_value(), lists.trusted)) return kZoneTrusted;
  if (Listed(host, address.has_value(), lists.intranet)) return kZoneIntranet;
  if (!address && host.find('.') == std::string::npos && IsDotlessName(host)) return kZoneIntranet;
  return kZoneInternet;
}

}  // namespace tarnwick::pagefetch
