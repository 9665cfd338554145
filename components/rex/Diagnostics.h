// The debug-log lines of a pattern that cannot be used: written by single
// calls and by pattern sets alike, so a list reads the same either way.
#pragma once

#include <string>
#include <string_view>

#include "support/Log.h"

namespace tarnwick::rex {

inline void LogDoesNotCompile(Log& log, std::string_view error, std::string_view pattern) {
  log.DebugLog("(Rex) Pattern does not compile (" + std::string(error) + "): " + std::string(pattern));
}

inline void LogGaveUp(Log& log, std::string_view error, std::string_view pattern) {
  log.DebugLog("(Rex) Pattern gave up (" + std::string(error) + "): " + std::string(pattern));
}

}  // namespace tarnwick::rex
