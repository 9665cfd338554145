// The event log blocked.log and the debug log that every routine writes to.
#pragma once

#include <filesystem>
#include <string_view>

#include "support/Clock.h"
#include "support/Paths.h"

namespace tarnwick {

class Log {
 public:
  // The log follows the live Debug setting through `debugEnabled`, so loading
  // the options switches the debug log on and off without a second copy.
  Log(Paths& paths, Clock& clock, const bool& debugEnabled);

  // Appends "<date-time>.<hundredths>: <message>" to blocked.log, starting the
  // file afresh once it has grown past 102,400 bytes. Never fails the caller.
  void WriteLog(std::string_view message);
  // WriteLog("(debug) " + message) while the Debug setting is on.
  void DebugLog(std::string_view message);
  bool DebugEnabled() const { return debugEnabled_; }

  std::filesystem::path LogFilePath();

  static constexpr std::uintmax_t kMaxLogBytes = 102400;

 private:
  Paths& paths_;
  Clock& clock_;
  const bool& debugEnabled_;
};

// The two digits of hundredths a log line carries after the seconds, built as
// the log always has: round the fraction to two decimals, take the digits
// after the point, append "0", keep two characters (.5 -> "50", .07 -> "07",
// and a fraction that rounds to a whole number -> "0").
std::string LogHundredths(double secondsSinceMidnight);

}  // namespace tarnwick
