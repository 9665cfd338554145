// Date-times are days since 30 December 1899 held in a double, the fraction
// being the time of day: the arithmetic the LastChecked values and the log
// rely on. Whole seconds are what the log and the settings keep.
#pragma once

#include <string>

namespace tarnwick {

struct DateParts {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

double JoinDate(const DateParts& parts);
// Splits at whole seconds (the fraction of a second is dropped).
DateParts SplitDate(double date);

// "YYYY-MM-DD HH:MM:SS": the date-time text of log lines.
std::string FormatDateTime(double date);

// Seconds since midnight with their fraction, as the log's hundredths read them.
double SecondsSinceMidnight(double date);

inline constexpr double kSecondsPerDay = 86400.0;

}  // namespace tarnwick
