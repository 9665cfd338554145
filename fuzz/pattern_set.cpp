// A pattern set must answer what its patterns tried one by one answer: the
// atoms read from each pattern (RequiredAtoms) may say less than the
// pattern demands, never more. Input: flag letters, then one pattern a
// line; the last line is the subject.
#include "Flags.h"
#include "FuzzSupport.h"
#include "PatternSet.h"
#include "RequiredAtoms.h"
#include "RexObject.h"
#include "support/PatternSetAnswer.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  std::vector<std::string> lines = Split(fuzz::AsText(data, size), "\n");
  if (lines.size() < 3) return 0;
  const std::string flags = lines.front();
  const std::string subject = lines.back();
  std::vector<std::string> patterns(lines.begin() + 1, lines.end() - 1);

  rex::RexObject object(fuzz::FuzzLog());
  std::int32_t byOne = kSetNoMatch;
  std::string folded;
  rex::Fold(subject, folded);
  for (std::size_t index = 0; index < patterns.size(); ++index) {
    if (patterns[index].empty() || !object.Test(subject, patterns[index], flags)) continue;
    if (const auto atoms = rex::RequiredAtoms(patterns[index])) {
      bool found = false;
      for (const auto& atom : *atoms) found = found || folded.find(atom) != std::string::npos;
      if (!found) fuzz::Broken("a pattern matches only where one of its atoms occurs", patterns[index]);
    }
    if (byOne == kSetNoMatch) byOne = static_cast<std::int32_t>(index);
  }

  rex::PatternSet set(std::move(patterns), rex::Flags::Parse(flags).CompileOptions());
  rex::Matcher matcher;
  if (set.FirstMatch(subject, std::nullopt, matcher, fuzz::FuzzLog()) != byOne) {
    fuzz::Broken("the set answers as the patterns one by one", subject);
  }
  return 0;
}
