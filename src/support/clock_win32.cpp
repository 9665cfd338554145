#include <windows.h>

#include "support/Clock.h"
#include "support/DateTime.h"

namespace tarnwick {
namespace {

class SystemClock final : public Clock {
 public:
  double Now() override {
    SYSTEMTIME local{};
    GetLocalTime(&local);
    const DateParts parts{local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
    return JoinDate(parts) + local.wMilliseconds / 1000.0 / kSecondsPerDay;
  }
};

}  // namespace

std::unique_ptr<Clock> MakeSystemClock() { return std::make_unique<SystemClock>(); }

}  // namespace tarnwick
