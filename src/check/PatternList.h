// A pattern list as the data files and the server give it: its patterns in
// order, empty ones kept (so indexes stay those of the list) and skipped when
// tried; unset until a list was given. The regular-expression component
// matches it as one pattern set, compiled once per list and per component
// object; a component without pattern sets gets the patterns one by one,
// with the same answers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check/PatternBudget.h"
#include "check/Rex.h"

namespace tarnwick {

class PatternList {
 public:
  // `name` is the set's name in the component; `flags` the flag letters
  // every pattern is tried with.
  PatternList(std::string name, std::string flags) : name_(std::move(name)), flags_(std::move(flags)) {}

  void Set(std::vector<std::string> patterns);
  bool IsSet() const { return set_; }
  const std::vector<std::string>& patterns() const { return patterns_; }

  // Compiles the list in `rex` now rather than at the first question.
  void Prepare(Rex& rex);
  // The index of the first pattern that matches `subject`, kSetNoMatch
  // (also for an unset list), or kSetOutOfTime when `budget` ran out first.
  std::int32_t FirstMatch(Rex& rex, std::string_view subject, PatternBudget& budget);
  // The same, one Test call per pattern: the component's own answer for
  // each, for a component without pattern sets and to compare with.
  std::int32_t FirstMatchOneByOne(Rex& rex, std::string_view subject, PatternBudget& budget);

 private:
  std::string name_;
  std::string flags_;
  std::vector<std::string> patterns_;
  std::string tag_;  // tells this list from others under the same name
  bool set_ = false;
};

}  // namespace tarnwick
