// What the fuzz targets share: a log for the routines under test, the input
// as text, and the input cut into the parts a target reads from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "support/Clock.h"
#include "support/Log.h"
#include "support/Paths.h"

namespace tarnwick::fuzz {

// Folders below /dev/null, which no one (root included) can make: the log
// formats every line it is given, debug lines too, and writes none, so a
// run of millions of inputs leaves no file behind.
class NowherePaths final : public Paths {
 public:
  std::filesystem::path ProgramFolder() override { return "/dev/null/program"; }
  std::filesystem::path LocalAppDataFolder() override { return "/dev/null/local"; }
};

class FixedClock final : public Clock {
 public:
  double Now() override { return 46000.5; }
};

// The process-wide log of a target, with the Debug setting on.
inline Log& FuzzLog() {
  static NowherePaths paths;
  static FixedClock clock;
  static const bool debug = true;
  static Log log(paths, clock, debug);
  return log;
}

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// A property of the code under test that does not hold: says which, with
// what, and stops the run as a crash would, so libFuzzer keeps the input.
[[noreturn]] inline void Broken(const char* property, std::string_view detail = {}) {
  std::fprintf(stderr, "property broken: %s\n%.*s\n", property, static_cast<int>(detail.size()), detail.data());
  std::abort();
}

}  // namespace tarnwick::fuzz
