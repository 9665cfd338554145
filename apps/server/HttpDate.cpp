#include "server/HttpDate.h"

#include <curl/curl.h>

#include <array>
#include <cstdio>
#include <ctime>

namespace tarnwick::server {
namespace {

constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<const char*, 7> kWeekdays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

}  // namespace

std::string FormatHttpDate(std::int64_t unixSeconds) {
  const auto seconds = static_cast<std::time_t>(unixSeconds);
  std::tm utc{};
  if (gmtime_r(&seconds, &utc) == nullptr) return {};
  char text[64];
  std::snprintf(text, sizeof text, "%s, %02d %s %04d %02d:%02d:%02d GMT",
                kWeekdays[static_cast<std::size_t>(utc.tm_wday)], utc.tm_mday,
                kMonths[static_cast<std::size_t>(utc.tm_mon)], utc.tm_year + 1900, utc.tm_hour, utc.tm_min, utc.tm_sec);
  return text;
}

std::optional<std::int64_t> ParseHttpDate(std::string_view text) {
  // The parser reads a C string: a date cut short by a NUL would be read
  // as the part before it.
  if (text.find('\0') != std::string_view::npos) return std::nullopt;
  const std::string terminated(text);
  const time_t seconds = curl_getdate(terminated.c_str(), nullptr);
  if (seconds == -1) return std::nullopt;
  return static_cast<std::int64_t>(seconds);
}

}  // namespace tarnwick::server
