// Numeric addresses in text, read by the C library's own parser over the
// whole text. That parser stops at a NUL, and a percent escape or a JSON
// "\u0000" puts one anywhere: "::1<NUL>anything" must be no address, not ::1.
#pragma once

#include <netinet/in.h>

#include <optional>
#include <string_view>

namespace tarnwick::server {

// "a.b.c.d" with four decimal parts, as inet_pton reads it.
std::optional<in_addr> ReadIPv4Text(std::string_view text);
// An IPv6 address without brackets, as inet_pton reads it.
std::optional<in6_addr> ReadIPv6Text(std::string_view text);
// Any form inet_aton reads: one to four parts, decimal, octal or hex.
std::optional<in_addr> ReadAnyIPv4Text(std::string_view text);

}  // namespace tarnwick::server
