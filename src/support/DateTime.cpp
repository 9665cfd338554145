#include "support/DateTime.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace tarnwick {
namespace {

constexpr std::chrono::sys_days kEpoch = std::chrono::year{1899} / 12 / 30;

}  // namespace

double JoinDate(const DateParts& parts) {
  using namespace std::chrono;
  const sys_days day = year{parts.year} / month{static_cast<unsigned>(parts.month)} / parts.day;
  const double days = static_cast<double>((day - kEpoch).count());
  return days + (parts.hour * 3600.0 + parts.minute * 60.0 + parts.second) / kSecondsPerDay;
}

DateParts SplitDate(double date) {
  using namespace std::chrono;
  // Round to the nearest millisecond first so 0.5 s below a second boundary
  // through floating-point noise does not shift the whole-second text.
  const auto totalMs = static_cast<long long>(std::floor(date * kSecondsPerDay * 1000.0 + 0.5));
  const long long totalSeconds = totalMs >= 0 ? totalMs / 1000 : -((-totalMs + 999) / 1000);
  long long days = totalSeconds / 86400;
  long long secondOfDay = totalSeconds % 86400;
  if (secondOfDay < 0) {
    secondOfDay += 86400;
    --days;
  }
  const year_month_day ymd{kEpoch + std::chrono::days{days}};
  DateParts parts;
  parts.year = static_cast<int>(ymd.year());
  parts.month = static_cast<int>(static_cast<unsigned>(ymd.month()));
  parts.day = static_cast<int>(static_cast<unsigned>(ymd.day()));
  parts.hour = static_cast<int>(secondOfDay / 3600);
  parts.minute = static_cast<int>(secondOfDay / 60 % 60);
  parts.second = static_cast<int>(secondOfDay % 60);
  return parts;
}

std::string FormatDateTime(double date) {
  const DateParts p = SplitDate(std::floor(date * kSecondsPerDay) / kSecondsPerDay);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour, p.minute, p.second);
  return text;
}

double SecondsSinceMidnight(double date) { return (date - std::floor(date)) * kSecondsPerDay; }

}  // namespace tarnwick
