#include <time.h>

#include <chrono>

#include "support/Clock.h"
#include "support/DateTime.h"

namespace tarnwick {
namespace {

class SystemClock final : public Clock {
 public:
  double Now() override {
    const auto now = std::chrono::system_clock::now();
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(now.time_since_epoch()).count();
    const time_t seconds = static_cast<time_t>(micros / 1000000);
    tm local{};
    localtime_r(&seconds, &local);
    const DateParts parts{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                          local.tm_hour,        local.tm_min,     local.tm_sec};
    return JoinDate(parts) + static_cast<double>(micros % 1000000) / 1e6 / kSecondsPerDay;
  }
};

}  // namespace

std::unique_ptr<Clock> MakeSystemClock() { return std::make_unique<SystemClock>(); }

}  // namespace tarnwick
