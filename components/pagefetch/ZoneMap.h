// The security zone of a URL, numbered as the browser numbers its zones:
//   0 local machine: file: URLs and local paths
//   1 local intranet: names without a dot (letters, digits, "-", "_"), and
//     hosts on the intranet list
//   2 trusted sites: hosts on the trusted list
//   3 Internet: everything else, including URLs that cannot be read
//   4 restricted sites: hosts on the restricted list
// A host that is an IPv4 address in any form the address parser reads
// (ParseIPv4Address: "134744072", "0x08080808", "8.526344") is that address,
// in the Internet zone unless a list names it; so is an IPv6 literal.
// Escapes in the host are decoded first.
// Each list is a setting of its own (TrustedSites, IntranetSites,
// RestrictedSites under the toolbar's settings key), absent by default: host
// names separated by semicolons or blanks. An entry names a host and every
// host below it ("example.com" covers "www.example.com"); a leading "*." is
// allowed and means the same. An address entry, in any of its forms, names
// that address alone. The restricted list wins over the others.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::pagefetch {

inline constexpr std::int32_t kZoneLocalMachine = 0;
inline constexpr std::int32_t kZoneIntranet = 1;
inline constexpr std::int32_t kZoneTrusted = 2;
inline constexpr std::int32_t kZoneInternet = 3;
inline constexpr std::int32_t kZoneRestricted = 4;

struct ZoneLists {
  std::string trusted;
  std::string intranet;
  std::string restricted;
};

std::int32_t MapZone(std::string_view url, const ZoneLists& lists);

}  // namespace tarnwick::pagefetch
