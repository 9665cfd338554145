// Typed calls to the regular-expression component (Tarnwick.Rex) over its
// late-bound object. A call that fails in any way answers as no match would:
// Test false, Match nullopt, Replace the subject unchanged, Prepare false.
// Flag letters: "i" ignore case, "g" every match, "e" the replacement is an
// expression, "s" the dot matches line breaks.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/ComponentObject.h"

namespace tarnwick {

class Rex {
 public:
  explicit Rex(ComponentObject& object) : object_(object) {}

  bool Test(std::string_view subject, std::string_view pattern, std::string_view flags = {});
  // The captured groups, element 0 being group 1; with "g" the groups of
  // every match one after the other. nullopt when it does not match.
  std::optional<std::vector<std::string>> Match(std::string_view subject, std::string_view pattern,
                                                std::string_view flags = {});
  std::string Replace(std::string_view subject, std::string_view pattern, std::string_view replacement,
                      std::string_view flags = {});
  // Compiles the pattern ahead of the Match calls that use it; true when
  // it compiles.
  bool Prepare(std::string_view pattern, std::string_view flags = {});

  // Keeps `patterns` in the object as the pattern set `name`, with `tag` to
  // tell versions apart; false when the call failed.
  bool CompileSet(std::string_view name, const std::vector<std::string>& patterns, std::string_view flags,
                  std::string_view tag);
  // The index of the first pattern of the set that matches, or one of the
  // answers of support/PatternSetAnswer.h; `time` bounds the patterns' run
  // and comes back as what is left of it. nullopt when the call failed (a
  // component without pattern sets).
  std::optional<std::int32_t> FirstMatch(std::string_view name, std::string_view subject, std::string_view tag,
                                         std::chrono::microseconds& time);
  // The set's patterns, those without a usable atom and its bytes.
  std::optional<std::vector<std::string>> SetInfo(std::string_view name);

 private:
  // The answer of `member`, or nothing when the call failed.
  std::optional<Variant> Call(std::string_view member, std::span<Variant> args);

  ComponentObject& object_;
};

}  // namespace tarnwick
