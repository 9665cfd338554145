// The literal text a pattern cannot match without: the prefilter of a
// pattern set runs a pattern only where one of its atoms occurs in the
// subject.
//
// The pattern is read in PCRE2's syntax and each part gets what it demands:
// an exact set of strings while the part is a small finite language
// ("https?://" is "http://" or "https://"), otherwise a disjunction of atoms
// one of which must occur ("\s" is one of its six characters). A sequence
// keeps the most selective demand of its parts, an alternation the union of
// its branches' demands. Everything that is not plain literal text
// (classes, the dot, other escapes for kinds of characters,
// back-references, lookarounds, a part that may be repeated zero times)
// demands nothing, except that a sequence may read past an optional run of
// a few characters, such as the "\s*" in "j\s*a", and then demand "ja" or
// one of those characters; constructs whose reach is hard to be sure of
// (verbs such as (*UTF), comments, callouts, conditionals, extended mode,
// POSIX classes) make the whole pattern demand nothing. So the answer may
// say less than the pattern demands, never more.
//
// Atoms are lower-case ASCII: a subject is folded the same way as it is
// scanned, which keeps them valid for caseless and case-sensitive patterns
// alike. Bytes above 0x7F are never part of an atom.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::rex {

// Atoms of which at least one occurs, folded, in every subject the pattern
// matches; nullopt when the pattern has no usable atom and must always run.
std::optional<std::vector<std::string>> RequiredAtoms(std::string_view pattern);

}  // namespace tarnwick::rex
