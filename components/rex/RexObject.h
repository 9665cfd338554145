// The Tarnwick.Rex object: Test, Match, Replace and Prepare over PCRE2.
//
//   Test(subject, pattern [, flags])        True when the pattern matches
//   Match(subject, pattern [, flags])       the captured groups, element 0
//       being group 1's text (a group that took no part is ""); a pattern
//       without groups gives the whole match. With "g", the groups of every
//       match one after the other: for a pattern of n groups, elements
//       k*n .. k*n+n-1 are the groups of match k. No match answers an empty
//       value, which is not an array.
//   Replace(subject, pattern, replacement [, flags])  the subject with the
//       first match (every match with "g") replaced by the replacement text,
//       or with "e" by the value of the replacement expression for that match
//   Prepare(pattern [, flags])              compiles the pattern now, to
//       machine code, and keeps it with the object, out of reach of the
//       cache's dropping: for a pattern matched over and over, as the
//       information strip does; True when it compiles
//   CompileSet(name, patterns [, flags [, tag]])  keeps the text array
//       `patterns` as the pattern set `name` (PatternSet.h), replacing the
//       set of that name; `tag`, any text, tells versions of a list apart.
//       True.
//   FirstMatch(name, subject [, tag [, microseconds]])  the index of the
//       first pattern of set `name` that matches the subject, kSetNoMatch
//       (-1), kSetOutOfTime (-2) when the time given ran out first (no
//       limit without it), or kSetUnknown (-3) when the object holds no set
//       of that name and tag (support/PatternSetAnswer.h). Where patterns
//       ran, the microseconds come back as what is left of them; where the
//       scan alone answered, unchanged, so the caller need not time a
//       question itself
//   SetInfo(name)                           the set's patterns, those without
//       a usable atom, and its bytes in memory, as decimal texts; empty when
//       there is no such set
//
// Flags are the letters "i", "g", "e", "s" in any order. A pattern that does
// not compile, or whose match runs into PCRE2's limits, answers "no match"
// (Test False, Match empty, Replace the subject unchanged) and writes one
// debug-log line. A replacement expression that cannot be read is an error
// of the call.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Dispatch.h"
#include "Expression.h"
#include "Matcher.h"
#include "PatternCache.h"
#include "PatternSet.h"
#include "support/Log.h"

namespace tarnwick::rex {

class RexObject final : public kit::Dispatcher {
 public:
  // Big enough for the block lists of a real installation, so that every
  // navigation finds all of their lines compiled.
  static constexpr std::size_t kCacheCapacity = 16384;

  explicit RexObject(Log& log);

  bool Test(std::string_view subject, std::string_view pattern, std::string_view flags);
  Variant Match(std::string_view subject, std::string_view pattern, std::string_view flags);
  std::string Replace(std::string_view subject, std::string_view pattern, std::string_view replacement,
                      std::string_view flags);
  bool Prepare(std::string_view pattern, std::string_view flags);
  bool CompileSet(std::string_view name, const std::vector<std::string>& patterns, std::string_view flags,
                  std::string_view tag);
  SetAnswer FirstMatch(std::string_view name, std::string_view subject, std::string_view tag,
                       std::optional<std::chrono::microseconds> time);
  Variant SetInfo(std::string_view name) const;

 private:
  // The compiled pattern, or nullptr after logging why there is none.
  std::shared_ptr<const CompiledPattern> Compiled(std::string_view pattern, std::uint32_t options);
  // The replacement expression read, kept for the next call that uses it;
  // throws kit::ComponentError after logging why it cannot be read.
  const Expression& Parsed(std::string_view replacement);
  // False after logging why the match gave up.
  bool Finished(MatchOutcome outcome, std::string_view pattern, const std::string& error);

  Log& log_;
  PatternCache cache_{kCacheCapacity};
  Matcher matcher_;
  struct Prepared {
    std::string pattern;
    std::uint32_t options = 0;
    std::shared_ptr<CompiledPattern> compiled;
  } prepared_;
  struct NamedSet {
    std::string tag;
    PatternSet set;
  };
  std::map<std::string, NamedSet, std::less<>> sets_;
  // Replacement expressions read before: a few are used over and over (the
  // decoding of every URL for cross-site scripting).
  static constexpr std::size_t kExpressionsKept = 64;
  std::map<std::string, Expression, std::less<>> expressions_;
};

}  // namespace tarnwick::rex
