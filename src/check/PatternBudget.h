// The time one check may spend on patterns in all (the PatternTimeLimit
// setting): cross-site scripting, the local list and the server's list draw
// on it in turn. Patterns from data files and the server may backtrack for
// milliseconds each; a thousand of them must not freeze the browser. When
// the time runs out the patterns not yet tried count as no match, so the
// page is not blocked for it, and the event log says so once.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "support/Log.h"

namespace tarnwick {

class PatternBudget {
 public:
  using Clock = std::chrono::steady_clock;

  PatternBudget(Log& log, std::int32_t milliseconds) : log_(log), limit_(milliseconds), left_(limit_) {}

  std::chrono::microseconds Remaining() const { return std::max(left_, std::chrono::microseconds::zero()); }
  bool Exhausted() const { return left_ <= std::chrono::microseconds::zero(); }

  // Runs `work` and takes the time it took from what is left.
  template <typename Work>
  auto Spend(Work&& work) {
    const auto start = Clock::now();
    auto result = work();
    left_ -= std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
    return result;
  }

  // Takes time that a call measured itself.
  void Charge(std::chrono::microseconds spent) { left_ -= spent; }

  // Writes the event-log line, the first time only: `routine` is the
  // routine whose patterns were cut short, as "(URL_Blocked_Locally)".
  void RanOut(std::string_view routine) {
    if (reported_) return;
    reported_ = true;
    log_.WriteLog(std::string(routine) + " Pattern time limit of " + std::to_string(limit_.count()) +
                  " ms reached: the patterns not yet tried count as no match");
  }

 private:
  Log& log_;
  std::chrono::milliseconds limit_;
  std::chrono::microseconds left_;
  bool reported_ = false;
};

}  // namespace tarnwick
