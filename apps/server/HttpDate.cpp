#include "server/HttpDate.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <vector>

namespace tarnwick::server {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Thu", "Fri", "Sat", "Sun", "Mon", "Tue", "Wed"};

// Days since 1970-01-01 of a proleptic Gregorian date (Howard Hinnant's algorithm).
std::int64_t DaysFromCivil(std::int64_t year, unsigned month, unsigned day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yearOfEra = static_cast<unsigned>(year - era * 400);
  const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

void CivilFromDays(std::int64_t days, std::int64_t& year, unsigned& month, unsigned& day) {
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
  const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned mp = (5 * dayOfYear + 2) / 153;
  day = dayOfYear - (153 * mp + 2) / 5 + 1;
  month = mp < 10 ? mp + 3 : mp - 9;
  year = static_cast<std::int64_t>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0);
}

bool ReadNumber(std::string_view text, int& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

bool ReadTime(std::string_view text, int& seconds) {
  int hour = 0, minute = 0, second = 0;
  if (text.size() != 8 || text[2] != ':' || text[5] != ':') return false;
  if (!ReadNumber(text.substr(0, 2), hour) || !ReadNumber(text.substr(3, 2), minute) ||
      !ReadNumber(text.substr(6, 2), second) || hour > 23 || minute > 59 || second > 60) {
    return false;
  }
  seconds = hour * 3600 + minute * 60 + second;
  return true;
}

std::vector<std::string_view> Tokens(std::string_view text) {
  std::vector<std::string_view> tokens;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    if (i == text.size() || text[i] == ' ' || text[i] == ',' || text[i] == '-') {
      if (i > start) tokens.push_back(text.substr(start, i - start));
      start = i + 1;
    }
  }
  return tokens;
}

}  // namespace

std::string FormatHttpDate(std::int64_t unixSeconds) {
  const std::int64_t days = (unixSeconds >= 0 ? unixSeconds : unixSeconds - 86399) / 86400;
  const auto secondOfDay = static_cast<int>(unixSeconds - days * 86400);
  std::int64_t year = 0;
  unsigned month = 0, day = 0;
  CivilFromDays(days, year, month, day);
  const auto weekday = static_cast<std::size_t>(((days % 7) + 7) % 7);
  char text[64];
  std::snprintf(text, sizeof text, "%s, %02u %s %04lld %02d:%02d:%02d GMT", kWeekdays[weekday].data(), day,
                kMonths[month - 1].data(), static_cast<long long>(year), secondOfDay / 3600, secondOfDay / 60 % 60,
                secondOfDay % 60);
  return text;
}

std::optional<std::int64_t> ParseHttpDate(std::string_view text) {
  int day = -1, month = -1, year = -1, seconds = -1;
  for (const std::string_view token : Tokens(text)) {
    int number = 0;
    if (token.find(':') != std::string_view::npos) {
      if (seconds >= 0 || !ReadTime(token, seconds)) return std::nullopt;
    } else if (ReadNumber(token, number)) {
      if (day < 0 && token.size() <= 2) {
        day = number;
      } else if (year < 0) {
        year = token.size() == 2 ? number + (number < 70 ? 2000 : 1900) : number;
      } else {
        return std::nullopt;
      }
    } else if (token.size() == 3) {
      for (std::size_t i = 0; i < kMonths.size(); ++i) {
        if (token == kMonths[i]) month = static_cast<int>(i) + 1;
      }
    }
  }
  if (day < 1 || day > 31 || month < 1 || year < 1970 || seconds < 0) return std::nullopt;
  return DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) * 86400 + seconds;
}

}  // namespace tarnwick::server
