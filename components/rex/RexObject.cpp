#include "RexObject.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "Diagnostics.h"
#include "Expression.h"
#include "Flags.h"
#include "support/PatternSetAnswer.h"

namespace tarnwick::rex {

RexObject::RexObject(Log& log)
    : Dispatcher({
          {"Test", 2, 3,
           [this](kit::Arguments& a) -> Variant { return Test(a.TextView(0), a.TextView(1), a.TextView(2)); }},
          {"Match", 2, 3,
           [this](kit::Arguments& a) -> Variant { return Match(a.TextView(0), a.TextView(1), a.TextView(2)); }},
          {"Replace", 3, 4,
           [this](kit::Arguments& a) -> Variant {
             return Replace(a.TextView(0), a.TextView(1), a.TextView(2), a.TextView(3));
           }},
          {"Prepare", 1, 2, [this](kit::Arguments& a) -> Variant { return Prepare(a.TextView(0), a.TextView(1)); }},
          {"CompileSet", 2, 4,
           [this](kit::Arguments& a) -> Variant {
             return CompileSet(a.TextView(0), a.Texts(1), a.TextView(2), a.TextView(3));
           }},
          {"FirstMatch", 2, 4,
           [this](kit::Arguments& a) -> Variant {
             std::optional<std::chrono::microseconds> time;
             if (a.Given(3)) {
               time = std::chrono::microseconds(std::max(a.Integer(3), 0));
             }
             const SetAnswer answer = FirstMatch(a.TextView(0), a.TextView(1), a.TextView(2), time);
             if (time && answer.spent.count() > 0) {
               const auto left = std::max(*time - answer.spent, std::chrono::microseconds(0));
               a.Set(3, static_cast<std::int32_t>(left.count()));
             }
             return answer.index;
           }},
          {"SetInfo", 1, 1, [this](kit::Arguments& a) -> Variant { return SetInfo(a.TextView(0)); }},
      }),
      log_(log) {}

std::shared_ptr<const CompiledPattern> RexObject::Compiled(std::string_view pattern, std::uint32_t options) {
  if (prepared_.compiled && prepared_.options == options && prepared_.pattern == pattern) return prepared_.compiled;
  const PatternCache::Entry& entry = cache_.Get(pattern, options);
  if (!entry.pattern) LogDoesNotCompile(log_, entry.error, pattern);
  return entry.pattern;
}

const Expression& RexObject::Parsed(std::string_view replacement) {
  if (const auto found = expressions_.find(replacement); found != expressions_.end()) return found->second;
  try {
    auto expression = Expression::Parse(replacement);
    if (expressions_.size() >= kExpressionsKept) expressions_.clear();
    return expressions_.emplace(std::string(replacement), std::move(expression)).first->second;
  } catch (const ExpressionError& failure) {
    log_.DebugLog("(Rex) Replacement cannot be evaluated (" + std::string(failure.what()) +
                  "): " + std::string(replacement));
    throw kit::ComponentError("Replacement expression '" + std::string(replacement) + "': " + failure.what());
  }
}

bool RexObject::Finished(MatchOutcome outcome, std::string_view pattern, const std::string& error) {
  if (outcome != MatchOutcome::Failed) return true;
  LogGaveUp(log_, error, pattern);
  return false;
}

bool RexObject::Test(std::string_view subject, std::string_view pattern, std::string_view flags) {
  const auto compiled = Compiled(pattern, Flags::Parse(flags).CompileOptions());
  if (!compiled) return false;
  std::string error;
  const MatchOutcome outcome = matcher_.ForEachMatch(
      *compiled, subject, false, [](const MatchView&) {}, error);
  return Finished(outcome, pattern, error) && outcome == MatchOutcome::Matched;
}

Variant RexObject::Match(std::string_view subject, std::string_view pattern, std::string_view flags) {
  const Flags parsed = Flags::Parse(flags);
  const auto compiled = Compiled(pattern, parsed.CompileOptions());
  if (!compiled) return std::monostate{};
  std::vector<std::string> groups;
  const auto collect = [&groups](const MatchView& match) {
    if (match.groups() == 0) groups.emplace_back(match.Group(0).value_or(""));
    for (std::uint32_t group = 1; group <= match.groups(); ++group)
      groups.emplace_back(match.Group(group).value_or(""));
  };
  std::string error;
  const MatchOutcome outcome = matcher_.ForEachMatch(*compiled, subject, parsed.global, collect, error);
  if (!Finished(outcome, pattern, error) || outcome == MatchOutcome::NoMatch) return std::monostate{};
  return groups;
}

std::string RexObject::Replace(std::string_view subject, std::string_view pattern, std::string_view replacement,
                               std::string_view flags) {
  const Flags parsed = Flags::Parse(flags);
  const Expression* expression = parsed.evaluate ? &Parsed(replacement) : nullptr;
  const auto compiled = Compiled(pattern, parsed.CompileOptions());
  if (!compiled) return std::string(subject);

  std::string result;
  std::size_t copied = 0;
  std::vector<std::optional<std::string_view>> groups;
  const auto replace = [&](const MatchView& match) {
    result.append(subject, copied, match.start() - copied);
    if (expression) {
      groups.clear();
      for (std::uint32_t group = 1; group <= match.groups(); ++group) groups.push_back(match.Group(group));
      result += expression->Evaluate(groups);
    } else {
      result += replacement;
    }
    copied = match.end();
  };
  std::string error;
  const MatchOutcome outcome = matcher_.ForEachMatch(*compiled, subject, parsed.global, replace, error);
  if (!Finished(outcome, pattern, error)) return std::string(subject);
  result.append(subject, copied);
  return result;
}

bool RexObject::Prepare(std::string_view pattern, std::string_view flags) {
  const std::uint32_t options = Flags::Parse(flags).CompileOptions();
  prepared_ = {std::string(pattern), options, cache_.Get(pattern, options).pattern};
  if (!prepared_.compiled) return false;
  prepared_.compiled->CompileToMachineCode();
  return true;
}

bool RexObject::CompileSet(std::string_view name, const std::vector<std::string>& patterns, std::string_view flags,
                           std::string_view tag) {
  PatternSet set(patterns, Flags::Parse(flags).CompileOptions());
  const auto found = sets_.find(name);
  if (found != sets_.end()) sets_.erase(found);
  sets_.emplace(std::string(name), NamedSet{std::string(tag), std::move(set)});
  return true;
}

SetAnswer RexObject::FirstMatch(std::string_view name, std::string_view subject, std::string_view tag,
                                std::optional<std::chrono::microseconds> time) {
  const auto found = sets_.find(name);
  if (found == sets_.end() || found->second.tag != tag) return {kSetUnknown};
  return found->second.set.FirstMatch(subject, time, matcher_, log_);
}

Variant RexObject::SetInfo(std::string_view name) const {
  const auto found = sets_.find(name);
  if (found == sets_.end()) return std::monostate{};
  const PatternSet& set = found->second.set;
  return std::vector<std::string>{std::to_string(set.size()), std::to_string(set.WithoutAtoms()),
                                  std::to_string(set.MemoryBytes())};
}

}  // namespace tarnwick::rex
