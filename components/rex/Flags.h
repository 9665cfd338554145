// The flag letters of a call, in any order; letters other than these four
// are ignored.
#pragma once

#include <cstdint>
#include <string_view>

#include "Pcre.h"

namespace tarnwick::rex {

struct Flags {
  bool ignoreCase = false;  // "i"
  bool global = false;      // "g": every match, not only the first
  bool evaluate = false;    // "e": the replacement is an expression per match
  bool dotAll = false;      // "s": the dot matches line breaks too

  static Flags Parse(std::string_view letters) {
    Flags flags;
    for (const char letter : letters) {
      if (letter == 'i') flags.ignoreCase = true;
      if (letter == 'g') flags.global = true;
      if (letter == 'e') flags.evaluate = true;
      if (letter == 's') flags.dotAll = true;
    }
    return flags;
  }

  // The letters that change how a pattern compiles.
  std::uint32_t CompileOptions() const { return (ignoreCase ? PCRE2_CASELESS : 0u) | (dotAll ? PCRE2_DOTALL : 0u); }
};

}  // namespace tarnwick::rex
