// Typed calls to the regular-expression component (Tarnwick.Rex) over its
// late-bound object. A call that fails in any way answers as no match would:
// Test false, Match nullopt, Replace the subject unchanged, Prepare false.
// Flag letters: "i" ignore case, "g" every match, "e" the replacement is an
// expression, "s" the dot matches line breaks.
#pragma once

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

 private:
  // The answer of `member`, or nothing when the call failed.
  std::optional<Variant> Call(std::string_view member, std::span<Variant> args);

  ComponentObject& object_;
};

}  // namespace tarnwick
