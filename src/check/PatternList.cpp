#include "check/PatternList.h"

#include <cstdio>

#include "support/Fnv.h"
#include "support/PatternSetAnswer.h"

namespace tarnwick {
namespace {

// FNV-1a over the flags' and each pattern's length and bytes: where lists
// or their flags differ, tags differ. Fifteen hexadecimal digits, short
// enough to be copied without an allocation at every question.
std::string TagOf(const std::string& flags, const std::vector<std::string>& patterns) {
  std::uint64_t hash = kFnvOffset;
  const auto mix = [&hash](const std::string& text) {
    for (std::size_t size = text.size(), i = 0; i < sizeof size; ++i) {
      hash = FnvStep(hash, static_cast<unsigned char>(size >> (8 * i)));
    }
    for (const char c : text) hash = FnvStep(hash, static_cast<unsigned char>(c));
  };
  mix(flags);
  for (const auto& pattern : patterns) mix(pattern);
  char text[16];
  std::snprintf(text, sizeof text, "%015llx", static_cast<unsigned long long>(hash >> 4));
  return text;
}

}  // namespace

void PatternList::Set(std::vector<std::string> patterns) {
  patterns_ = std::move(patterns);
  tag_ = TagOf(flags_, patterns_);
  set_ = true;
}

void PatternList::Prepare(Rex& rex) {
  if (set_) rex.CompileSet(name_, patterns_, flags_, tag_);
}

std::int32_t PatternList::FirstMatch(Rex& rex, std::string_view subject, PatternBudget& budget) {
  if (!set_) return kSetNoMatch;
  // The component says how long its patterns ran; a question its scan
  // answered alone takes a fraction of a microsecond, not worth two reads
  // of the clock.
  const auto ask = [&] {
    const auto given = budget.Remaining();
    auto left = given;
    const auto answer = rex.FirstMatch(name_, subject, tag_, left);
    budget.Charge(given - left);
    return answer;
  };
  auto answer = ask();
  if (answer == kSetUnknown && budget.Spend([&] { return rex.CompileSet(name_, patterns_, flags_, tag_); })) {
    answer = ask();
  }
  // An answer that names no pattern of the list is not one to act on.
  const bool usable = answer && *answer >= kSetOutOfTime && *answer < static_cast<std::int64_t>(patterns_.size()) &&
                      (*answer < 0 || !patterns_[static_cast<std::size_t>(*answer)].empty());
  return usable ? *answer : FirstMatchOneByOne(rex, subject, budget);
}

std::int32_t PatternList::FirstMatchOneByOne(Rex& rex, std::string_view subject, PatternBudget& budget) {
  if (!set_) return kSetNoMatch;
  for (std::size_t index = 0; index < patterns_.size(); ++index) {
    if (patterns_[index].empty()) continue;
    if (budget.Exhausted()) return kSetOutOfTime;
    if (budget.Spend([&] { return rex.Test(subject, patterns_[index], flags_); })) {
      return static_cast<std::int32_t>(index);
    }
  }
  return kSetNoMatch;
}

}  // namespace tarnwick
