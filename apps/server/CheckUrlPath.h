// The site a /check_url request asks about. The toolbar sends
//   /check_url/<scheme>://<authority>[/<IPv4 address as one decimal number>]
// with the authority exactly as in the URL (user part and port included) and
// no path, so the path is read raw: its "//" is part of the question.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::server {

inline constexpr std::string_view kCheckUrlPrefix = "/check_url/";

struct CheckUrlQuestion {
  std::string host;                      // lower case, without user part and port
  std::optional<std::uint32_t> address;  // as the toolbar resolved it
};

// Reads what follows "/check_url/"; nothing when it is not of that form (an
// http, https or ftp scheme, a valid host, and an address of at most 32 bits).
std::optional<CheckUrlQuestion> ParseCheckUrlPath(std::string_view rest);

}  // namespace tarnwick::server
