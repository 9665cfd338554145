// A list of patterns compiled once and asked, for each subject, which is the
// first that matches: what a block list needs, and what the patterns one at
// a time answer, fast enough for lists of a hundred thousand lines.
//
// Building reads the atoms each pattern demands (RequiredAtoms.h) and files
// them in one scanner, except for patterns that name the host a URL must be
// on, which are filed by that host (HostIndex.h); nothing is compiled yet.
// A question scans the subject once for atoms, folded to lower case as it
// is read, looks its host up, and runs, in list order, only the patterns
// whose atoms or host occur and those without a usable atom, each compiled
// (to machine code where PCRE2 can) the first time it runs. The answer is
// the one the patterns tried one by one in order would give: empty patterns
// are skipped, one that does not compile or runs into a limit counts as no
// match (with the debug-log line a single call writes), and a pattern the
// scan rules out could not have matched.
//
// The questions may be given a time: patterns run until it is spent, and
// the answer is then kSetOutOfTime, unless the scan alone settles it. Each
// answer says how long patterns ran, so that the caller need not time a
// question that the scan alone answered.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "AtomScanner.h"
#include "CompiledPattern.h"
#include "HostIndex.h"
#include "Matcher.h"
#include "support/Log.h"

namespace tarnwick::rex {

// The index of the first pattern that matches, kSetNoMatch or kSetOutOfTime,
// and how long patterns ran to find it (zero where none ran).
struct SetAnswer {
  std::int32_t index;
  std::chrono::microseconds spent{0};
};

class PatternSet {
 public:
  // The patterns in order, and PCRE2's compile options for each.
  PatternSet(std::vector<std::string> patterns, std::uint32_t options);

  // The first pattern that matches `subject`; kSetOutOfTime when `time` ran
  // out before it was known.
  SetAnswer FirstMatch(std::string_view subject, std::optional<std::chrono::microseconds> time, Matcher& matcher,
                       Log& log);

  std::size_t size() const { return patterns_.size(); }
  // Non-empty patterns without a usable atom: these run for every subject.
  std::size_t WithoutAtoms() const { return always_.size(); }
  // What the set holds in memory now, compiled patterns included.
  std::size_t MemoryBytes() const;

 private:
  // Pattern `index`, compiled on first use; nullptr after logging why not.
  const CompiledPattern* Compiled(std::uint32_t index, Log& log);

  std::vector<std::string> patterns_;
  std::uint32_t options_;
  std::vector<std::shared_ptr<CompiledPattern>> compiled_;
  std::map<std::uint32_t, std::string> errors_;  // patterns that do not compile, and why
  std::vector<std::uint32_t> always_;            // ascending
  // Atom a is demanded by the patterns byAtom_[atomStarts_[a], atomStarts_[a+1]).
  std::vector<std::uint32_t> atomStarts_;
  std::vector<std::uint32_t> byAtom_;
  std::unique_ptr<AtomScanner> scanner_;
  HostIndex hosts_;  // the patterns that name a host, filed there rather than as atoms
  std::size_t compiledBytes_ = 0;
  std::vector<std::uint32_t> candidates_;  // reused between questions
};

}  // namespace tarnwick::rex
