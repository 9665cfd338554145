#include "PatternSet.h"

#include <algorithm>
#include <unordered_map>

#include "Diagnostics.h"
#include "HostIndex.h"
#include "RequiredAtoms.h"
#include "support/PatternSetAnswer.h"

namespace tarnwick::rex {
namespace {

// Text up to this long lives inside the string object itself.
const std::size_t kInlineText = std::string().capacity();

}  // namespace

PatternSet::PatternSet(std::vector<std::string> patterns, std::uint32_t options)
    : patterns_(std::move(patterns)), options_(options), compiled_(patterns_.size()) {
  std::unordered_map<std::string, std::uint32_t> numbers;
  std::vector<std::string> atoms;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> demands;  // (atom, pattern)
  std::vector<std::pair<std::string, std::uint32_t>> hosts;      // (host, pattern)
  numbers.reserve(patterns_.size());
  atoms.reserve(patterns_.size());
  demands.reserve(patterns_.size());
  for (std::uint32_t index = 0; index < patterns_.size(); ++index) {
    if (patterns_[index].empty()) continue;
    auto required = RequiredAtoms(patterns_[index]);
    if (!required) {
      always_.push_back(index);
      continue;
    }
    // Read whole by the atom reader, so its shape can be trusted.
    if (auto host = HostOfPattern(patterns_[index], options_)) {
      hosts.emplace_back(std::move(*host), index);
      continue;
    }
    for (auto& atom : *required) {
      const auto [found, added] = numbers.try_emplace(std::move(atom), static_cast<std::uint32_t>(atoms.size()));
      if (added) atoms.push_back(found->first);
      demands.emplace_back(found->second, index);
    }
  }
  numbers = {};
  std::sort(demands.begin(), demands.end());
  atomStarts_.assign(atoms.size() + 1, 0);
  byAtom_.reserve(demands.size());
  for (const auto& [atom, pattern] : demands) {
    ++atomStarts_[atom + 1];
    byAtom_.push_back(pattern);
  }
  for (std::size_t atom = 0; atom < atoms.size(); ++atom) atomStarts_[atom + 1] += atomStarts_[atom];
  scanner_ = std::make_unique<AtomScanner>(atoms);
  hosts_ = HostIndex(hosts);
}

const CompiledPattern* PatternSet::Compiled(std::uint32_t index, Log& log) {
  if (compiled_[index]) return compiled_[index].get();
  const auto failed = errors_.find(index);
  if (failed == errors_.end()) {
    std::string error;
    compiled_[index] = CompiledPattern::Compile(patterns_[index], options_, error);
    if (compiled_[index]) {
      // A set is asked again and again: machine code pays at once.
      compiled_[index]->CompileToMachineCode();
      compiledBytes_ += compiled_[index]->MemoryBytes();
      return compiled_[index].get();
    }
    errors_.emplace(index, std::move(error));
    LogDoesNotCompile(log, errors_.at(index), patterns_[index]);
    return nullptr;
  }
  LogDoesNotCompile(log, failed->second, patterns_[index]);
  return nullptr;
}

SetAnswer PatternSet::FirstMatch(std::string_view subject, std::optional<std::chrono::microseconds> time,
                                 Matcher& matcher, Log& log) {
  candidates_.clear();
  scanner_->Scan(subject, [this](std::uint32_t atom) {
    candidates_.insert(candidates_.end(), byAtom_.begin() + atomStarts_[atom], byAtom_.begin() + atomStarts_[atom + 1]);
  });
  hosts_.Find(subject, [this](std::uint32_t pattern) { candidates_.push_back(pattern); });
  if (!always_.empty()) candidates_.insert(candidates_.end(), always_.begin(), always_.end());
  if (candidates_.size() > 1) {
    std::sort(candidates_.begin(), candidates_.end());
    candidates_.erase(std::unique(candidates_.begin(), candidates_.end()), candidates_.end());
  }

  if (candidates_.empty()) return {kSetNoMatch};
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const auto answer = [&start](std::int32_t index, Clock::time_point now) {
    return SetAnswer{index, std::chrono::duration_cast<std::chrono::microseconds>(now - start)};
  };
  std::string error;
  for (const std::uint32_t index : candidates_) {
    const auto now = Clock::now();
    if (time && now - start >= *time) return answer(kSetOutOfTime, now);
    const CompiledPattern* pattern = Compiled(index, log);
    if (pattern == nullptr) continue;
    const MatchOutcome outcome = matcher.ForEachMatch(
        *pattern, subject, false, [](const MatchView&) {}, error);
    if (outcome == MatchOutcome::Matched) return answer(static_cast<std::int32_t>(index), Clock::now());
    if (outcome == MatchOutcome::Failed) LogGaveUp(log, error, patterns_[index]);
  }
  return answer(kSetNoMatch, Clock::now());
}

std::size_t PatternSet::MemoryBytes() const {
  std::size_t bytes = sizeof *this + scanner_->MemoryBytes() + hosts_.MemoryBytes() + compiledBytes_ +
                      (always_.capacity() + atomStarts_.capacity() + byAtom_.capacity()) * sizeof(std::uint32_t) +
                      compiled_.capacity() * sizeof(compiled_[0]) + patterns_.capacity() * sizeof(std::string);
  for (const auto& pattern : patterns_) {
    if (pattern.capacity() > kInlineText) bytes += pattern.capacity() + 1;
  }
  return bytes;
}

}  // namespace tarnwick::rex
