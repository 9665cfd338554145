// A pattern set must answer what its patterns tried one by one answer: the
// atoms read from each pattern (RequiredAtoms) may say less than the
// pattern demands, never more, and the scanner finds each of them; a
// pattern read as naming a host is found by that host wherever it matches.
// Input: flag letters, then one pattern a line; the last line is the subject.
#include "AtomScanner.h"
#include "Flags.h"
#include "Fold.h"
#include "FuzzSupport.h"
#include "HostIndex.h"
#include "PatternSet.h"
#include "RequiredAtoms.h"
#include "RexObject.h"
#include "support/PatternSetAnswer.h"
#include "support/Text.h"

namespace {

// The scanner behind the set reports every occurrence of every atom, as a
// plain search of the folded subject finds them.
void CheckScanner(const std::vector<std::string>& atoms, const std::string& subject, const std::string& folded) {
  if (atoms.empty()) return;
  std::vector<std::size_t> reported(atoms.size());
  tarnwick::rex::AtomScanner(atoms).Scan(subject, [&](std::uint32_t atom) { ++reported[atom]; });
  for (std::size_t index = 0; index < atoms.size(); ++index) {
    std::size_t occurrences = 0;
    for (auto at = folded.find(atoms[index]); at != std::string::npos; at = folded.find(atoms[index], at + 1)) {
      ++occurrences;
    }
    if (reported[index] != occurrences) tarnwick::fuzz::Broken("the scanner finds every atom", atoms[index]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  std::vector<std::string> lines = Split(fuzz::AsText(data, size), "\n");
  if (lines.size() < 3) return 0;
  const std::string flags = lines.front();
  const std::string subject = lines.back();
  std::vector<std::string> patterns(lines.begin() + 1, lines.end() - 1);

  const std::uint32_t options = rex::Flags::Parse(flags).CompileOptions();
  rex::RexObject object(fuzz::FuzzLog());
  std::int32_t byOne = kSetNoMatch;
  std::string folded = subject;
  for (char& c : folded) c = rex::FoldByte(c);
  std::vector<std::string> allAtoms;
  for (std::size_t index = 0; index < patterns.size(); ++index) {
    if (patterns[index].empty()) continue;
    const auto atoms = rex::RequiredAtoms(patterns[index]);
    if (atoms) {
      for (const auto& atom : *atoms) {
        if (!atom.empty()) allAtoms.push_back(atom);
      }
    }
    if (!object.Test(subject, patterns[index], flags)) continue;
    if (atoms) {
      bool found = false;
      for (const auto& atom : *atoms) found = found || folded.find(atom) != std::string::npos;
      if (!found) fuzz::Broken("a pattern matches only where one of its atoms occurs", patterns[index]);
      if (auto host = rex::HostOfPattern(patterns[index], options)) {
        bool reported = false;
        rex::HostIndex({{std::move(*host), 0}}).Find(subject, [&reported](std::uint32_t) { reported = true; });
        if (!reported) fuzz::Broken("a pattern that names a host matches only on that host", patterns[index]);
      }
    }
    if (byOne == kSetNoMatch) byOne = static_cast<std::int32_t>(index);
  }
  CheckScanner(allAtoms, subject, folded);

  rex::PatternSet set(std::move(patterns), options);
  rex::Matcher matcher;
  if (set.FirstMatch(subject, std::nullopt, matcher, fuzz::FuzzLog()).index != byOne) {
    fuzz::Broken("the set answers as the patterns one by one", subject);
  }
  return 0;
}
