#include "support/Log.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <system_error>

#include "support/DateTime.h"

namespace tarnwick {

Log::Log(Paths& paths, Clock& clock, const bool& debugEnabled)
    : paths_(paths), clock_(clock), debugEnabled_(debugEnabled) {}

std::filesystem::path Log::LogFilePath() {
  return paths_.LocalAppDataFolder() / "Tarnwick" / "Toolbar" / "blocked.log";
}

std::string LogHundredths(double secondsSinceMidnight) {
  const double fraction = secondsSinceMidnight - std::floor(secondsSinceMidnight);
  // Banker's rounding to hundredths, the rounding the text conversion used.
  const auto hundredths = static_cast<int>(std::nearbyint(fraction * 100.0));
  std::string digits;
  if (hundredths > 0 && hundredths < 100) {
    char text[8];
    std::snprintf(text, sizeof text, "%02d", hundredths);
    digits = text;
    if (digits.back() == '0') digits.pop_back();  // .50 is written .5
  }
  return (digits + "0").substr(0, 2);
}

void Log::WriteLog(std::string_view message) {
  try {
    const auto path = LogFilePath();
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    const auto size = std::filesystem::file_size(path, error);
    if (!error && size > kMaxLogBytes) std::filesystem::remove(path, error);

    const double now = clock_.Now();
    std::ofstream out(path, std::ios::app);
    out << FormatDateTime(now) << '.' << LogHundredths(SecondsSinceMidnight(now)) << ": " << message << '\n';
  } catch (...) {
    // A log that cannot be written must never disturb the routine that logs.
  }
}

void Log::DebugLog(std::string_view message) {
  if (debugEnabled_) WriteLog(std::string("(debug) ").append(message));
}

}  // namespace tarnwick
