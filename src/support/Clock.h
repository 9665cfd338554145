// Clock port: the local wall clock. Tests inject their own.
#pragma once

#include <memory>

namespace tarnwick {

class Clock {
 public:
  virtual ~Clock() = default;
  // Local date-time now, as days since 30 December 1899, with the fraction of
  // the current second included.
  virtual double Now() = 0;
};

// The system clock in the local time zone (backend per platform).
std::unique_ptr<Clock> MakeSystemClock();

}  // namespace tarnwick
