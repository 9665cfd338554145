// Host names as the server keys its verdicts: lower case, without user part
// or port, percent escapes decoded.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::server {

// A host name is at most 253 characters (without a final dot), in labels
// of 1 to 63 characters.
inline constexpr std::size_t kMaxHostBytes = 253;
inline constexpr std::size_t kMaxLabelBytes = 63;

// The host part of "user@host:port" as it is written.
std::string_view HostPartOfAuthority(std::string_view authority);

// The host of "user@host:port" (the port and user part are optional); ""
// when the authority holds no valid host: a name within the limits above
// made of letters, digits, "-" and "_" (which some sites use), or an IPv6
// literal in brackets.
std::string HostOfAuthority(std::string_view authority);

// True when the port part of an authority, if any, is 1 to 5 digits up to 65535.
bool HasValidPort(std::string_view authority);

// A host a phishing feed may name, given as HostOfAuthority returns it: an
// address literal, or a name of two labels or more whose last (the
// top-level domain) is two letters or more, or internationalised ("xn--").
// Random words in a feed ("Home", "v1.2") are not hosts.
bool IsInternetHost(std::string_view host);

// An address literal: any form the system's address parser accepts (dotted,
// one decimal number, hexadecimal parts) or an IPv6 literal.
bool IsNumericHost(std::string_view host);

// Private and special-use IPv4 ranges, where a country means nothing:
// 0/8, 10/8, 127/8, 169.254/16, 172.16/12, 192.0.2/24, 192.168/16, 224/3.
bool IsPrivateAddress(std::uint32_t address);

// "a.b.example.com" -> "b.example.com" -> "example.com" -> "com" -> "".
std::string_view ParentDomain(std::string_view host);

}  // namespace tarnwick::server
