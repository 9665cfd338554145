// HTTP dates for Last-Modified and If-Modified-Since.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::server {

// "Sun, 06 Nov 1994 08:49:37 GMT" for seconds since 1970 (UTC).
std::string FormatHttpDate(std::int64_t unixSeconds);

// Reads a date in any of the forms HTTP allows (RFC 1123, RFC 850 and
// asctime), with a one- or two-digit day, as the toolbar sends its stored
// date back ("Thu, 1 Jan 1970 00:00:00 GMT" when it has none), through
// libcurl's date parser. Nothing when unreadable.
std::optional<std::int64_t> ParseHttpDate(std::string_view text);

}  // namespace tarnwick::server
