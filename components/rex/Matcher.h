// Runs compiled patterns under limits. Patterns come from data files and the
// server and may backtrack without end; PCRE2's match, depth and heap limits
// and a bounded JIT stack turn that into a failure to report, not a hang.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "CompiledPattern.h"

namespace tarnwick::rex {

// One match: where it is and what its groups hold.
class MatchView {
 public:
  MatchView(std::string_view subject, const PCRE2_SIZE* offsets, std::uint32_t groups)
      : subject_(subject), offsets_(offsets), groups_(groups) {}

  std::size_t start() const { return offsets_[0]; }
  std::size_t end() const { return offsets_[1]; }
  std::uint32_t groups() const { return groups_; }
  // Group `number` (0 is the whole match); a group that took no part is
  // std::nullopt.
  std::optional<std::string_view> Group(std::uint32_t number) const;

 private:
  std::string_view subject_;
  const PCRE2_SIZE* offsets_;
  std::uint32_t groups_;
};

enum class MatchOutcome { Matched, NoMatch, Failed };

class Matcher {
 public:
  Matcher();
  ~Matcher();
  Matcher(const Matcher&) = delete;
  Matcher& operator=(const Matcher&) = delete;

  // Calls `onMatch` for the first match, or with `global` for every match in
  // turn (after an empty match the next one must not be empty at the same
  // place, as Perl has it). Matched when there was at least one; Failed with
  // PCRE2's reason in `error` when a limit stopped it, even after matches.
  MatchOutcome ForEachMatch(const CompiledPattern& pattern, std::string_view subject, bool global,
                            const std::function<void(const MatchView&)>& onMatch, std::string& error);

 private:
  // PCRE2's answer for one attempt at `offset`.
  int Attempt(const CompiledPattern& pattern, std::string_view subject, std::size_t offset, std::uint32_t options);

  pcre2_match_context* context_;
  pcre2_jit_stack* jitStack_;
  pcre2_match_data* data_ = nullptr;
  std::uint32_t dataPairs_ = 0;
};

}  // namespace tarnwick::rex
