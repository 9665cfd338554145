#include "RequiredAtoms.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>

#include "Fold.h"

namespace tarnwick::rex {
namespace {

// An exact set stays exact up to this many strings of up to this length;
// beyond that it becomes a disjunction of atoms.
constexpr std::size_t kMaxExactStrings = 256;
constexpr std::size_t kMaxExactLength = 64;
// An optional run of characters is read past when it has at most this many.
constexpr std::size_t kMaxSkippable = 8;
// A disjunction of more atoms than this says too little to be worth keeping.
constexpr std::size_t kMaxAtoms = 256;
// Groups nested deeper than PCRE2's own default limit do not compile there.
constexpr int kMaxDepth = 250;

using Strings = std::vector<std::string>;

// Thrown inside the reader for anything it does not follow; the pattern then
// demands nothing.
struct GiveUp {};

// What a part of a pattern demands of the subject: exactly one of a few
// strings, or one atom of a disjunction, or nothing. A part that matches
// either nothing or a run of a few characters, such as "\s*", demands
// nothing by itself, but a sequence reads on past it as if it were empty
// and adds the characters to its own demand: where the part matched
// something, one of them occurs.
struct Demand {
  std::optional<Strings> exact;
  std::optional<Strings> atoms;  // when not exact; nullopt demands nothing
  Strings skippable = {};        // the characters of such a part
};

Demand Exact(Strings strings) { return {std::move(strings), std::nullopt}; }
Demand Nothing() { return {}; }
Demand Empty() { return Exact({std::string()}); }

// The characters that are not literal text outside a class (and NUL).
constexpr std::array<bool, 256> kSpecial = [] {
  std::array<bool, 256> special{};
  for (const char c : std::string_view(".^$|()[]{}*+?", 14)) special[static_cast<unsigned char>(c)] = true;
  return special;
}();

// The characters plain in URLs: letters, digits, "/.-_=&?%:+~,;" (and NUL).
constexpr std::array<bool, 256> kCommonInUrls = [] {
  std::array<bool, 256> common{};
  for (int c = 'a'; c <= 'z'; ++c)
    common[static_cast<std::size_t>(c)] = common[static_cast<std::size_t>(c - 32)] = true;
  for (int c = '0'; c <= '9'; ++c) common[static_cast<std::size_t>(c)] = true;
  for (const char c : std::string_view("/.-_=&?%:+~,;", 14)) common[static_cast<unsigned char>(c)] = true;
  return common;
}();

// How rare an atom is likely to be in a URL: plain URL characters count 1,
// others (quotes, angle brackets, parentheses, blanks) 3.
int Weight(const std::string& atom) {
  int weight = 0;
  for (const char c : atom) weight += kCommonInUrls[static_cast<unsigned char>(c)] ? 1 : 3;
  return weight;
}

// The strings as atoms: nothing when one of them is empty; a string that
// contains another is dropped, since the shorter one occurs wherever it does.
std::optional<Strings> Minimal(Strings strings) {
  std::sort(strings.begin(), strings.end(), [](const std::string& a, const std::string& b) {
    return a.size() != b.size() ? a.size() < b.size() : a < b;
  });
  Strings kept;
  for (auto& candidate : strings) {
    if (candidate.empty()) return std::nullopt;
    const bool covered = std::any_of(kept.begin(), kept.end(), [&](const std::string& shorter) {
      return candidate.find(shorter) != std::string::npos;
    });
    if (!covered) kept.push_back(std::move(candidate));
  }
  if (kept.size() > kMaxAtoms) return std::nullopt;
  return kept;
}

std::optional<Strings> AtomsOf(const Demand& demand) { return demand.exact ? Minimal(*demand.exact) : demand.atoms; }

// The more selective of two disjunctions: the one whose weakest atom is
// rarer, then the one with fewer atoms.
std::optional<Strings> Better(std::optional<Strings> a, std::optional<Strings> b) {
  if (!a) return b;
  if (!b) return a;
  const auto weakest = [](const Strings& atoms) {
    int least = 1 << 30;
    for (const auto& atom : atoms) least = std::min(least, Weight(atom));
    return least;
  };
  const int weightA = weakest(*a);
  const int weightB = weakest(*b);
  if (weightA != weightB) return weightA > weightB ? a : b;
  return a->size() <= b->size() ? a : b;
}

Demand Alternative(Demand first, Demand second) {
  if (first.exact && second.exact) {
    Strings both = std::move(*first.exact);
    for (auto& text : *second.exact) {
      if (std::find(both.begin(), both.end(), text) == both.end()) both.push_back(std::move(text));
    }
    if (both.size() <= kMaxExactStrings) return Exact(std::move(both));
    return {std::nullopt, Minimal(std::move(both))};
  }
  auto a = AtomsOf(first);
  auto b = AtomsOf(second);
  if (!a || !b) return Nothing();
  Strings both = std::move(*a);
  both.insert(both.end(), std::make_move_iterator(b->begin()), std::make_move_iterator(b->end()));
  return {std::nullopt, Minimal(std::move(both))};
}

// `part` repeated at least `least` times (`most` -1 for no bound).
Demand Repeated(Demand part, int least, int most) {
  if (least == 0) {
    if (most == 1 && part.exact) return Alternative(std::move(part), Empty());
    const bool characters =
        part.exact && part.exact->size() <= kMaxSkippable &&
        std::all_of(part.exact->begin(), part.exact->end(), [](const std::string& text) { return text.size() == 1; });
    if (characters) return {std::nullopt, std::nullopt, std::move(*part.exact)};
    return Nothing();
  }
  if (least == 1 && most == 1) return part;
  return {std::nullopt, AtomsOf(part)};
}

class Reader {
 public:
  explicit Reader(std::string_view pattern) : p_(pattern) {}

  Demand Run() {
    // Verbs such as (*UTF) or (*CR) change what the rest means.
    if (p_.find("(*") != std::string_view::npos) throw GiveUp{};
    Demand demand = Alternation();
    if (at_ != p_.size()) throw GiveUp{};  // an unmatched ')'
    return demand;
  }

 private:
  bool AtEnd() const { return at_ >= p_.size(); }
  char Peek(std::size_t ahead = 0) const { return at_ + ahead < p_.size() ? p_[at_ + ahead] : '\0'; }
  bool StartsWith(std::string_view text) const { return p_.substr(at_).starts_with(text); }

  Demand Alternation() {
    Demand demand = Branch();
    while (!AtEnd() && Peek() == '|') {
      ++at_;
      demand = Alternative(std::move(demand), Branch());
    }
    return demand;
  }

  // A run of exact text in a sequence, and the characters of the optional
  // runs it was read past.
  struct TextRun {
    Strings texts{std::string()};
    Strings skipped;

    bool Started() const { return texts.size() != 1 || !texts[0].empty(); }
    // One of its texts occurs, or one of the skipped characters; the run
    // is spent.
    std::optional<Strings> TakeAtoms() {
      texts.insert(texts.end(), skipped.begin(), skipped.end());
      return Minimal(std::move(texts));
    }
  };

  // A sequence keeps its exact text as long as it can (the cross product of
  // the exact parts in a row) and the most selective demand of the runs and
  // parts before; it is exact as a whole when every part was. Past an
  // optional run of a few characters, two runs go on: one from after it,
  // and one that reads on past it as if it were empty and adds its
  // characters to what it demands.
  Demand Branch() {
    TextRun plain;
    std::optional<TextRun> joined;  // once an optional run was read past
    bool exact = true;
    std::optional<Strings> best;
    const auto keep = [&](TextRun& run, Strings next) {
      best = Better(std::move(best), run.TakeAtoms());
      run = TextRun{std::move(next), {}};
      exact = false;
    };
    const auto endRuns = [&](Strings next) {
      if (joined) keep(*joined, {});
      joined.reset();
      keep(plain, std::move(next));
    };
    const auto append = [&](TextRun& run, const Strings& parts) {
      if (run.texts.size() * parts.size() > kMaxExactStrings) return keep(run, parts);
      if (run.texts.size() == 1 && parts.size() == 1) {
        run.texts[0] += parts[0];  // the common case: text grows in place
      } else {
        Strings texts;
        for (const auto& a : run.texts) {
          for (const auto& b : parts) texts.push_back(a + b);
        }
        run.texts = std::move(texts);
      }
      const auto tooLong = [](const std::string& text) { return text.size() > kMaxExactLength; };
      if (std::any_of(run.texts.begin(), run.texts.end(), tooLong)) keep(run, {std::string()});
    };
    for (;;) {
      SkipQuoteMarks();
      if (AtEnd() || (!quoting_ && (Peek() == '|' || Peek() == ')'))) break;
      if (const char c = !joined && plain.texts.size() == 1 ? PlainCharacter() : '\0'; c != '\0') {
        plain.texts[0] += FoldByte(c);  // the common case, without building a demand
        if (plain.texts[0].size() > kMaxExactLength) endRuns({std::string()});
        continue;
      }
      Demand item = Item();
      if (!item.skippable.empty()) {
        exact = false;
        if (!joined && plain.Started()) joined = plain;
        if (joined) {
          joined->skipped.insert(joined->skipped.end(), item.skippable.begin(), item.skippable.end());
          keep(plain, {std::string()});
        }
      } else if (!item.exact) {
        endRuns({std::string()});
        best = Better(std::move(best), std::move(item.atoms));
      } else {
        append(plain, *item.exact);
        if (joined) append(*joined, *item.exact);
      }
    }
    if (exact) return Exact(std::move(plain.texts));
    endRuns({});
    return {std::nullopt, std::move(best)};
  }

  // The next character when it is plain literal text, or an escaped
  // punctuation character, with no quantifier after it (then it is
  // consumed); '\0' otherwise.
  char PlainCharacter() {
    if (quoting_) return '\0';
    std::size_t length = 1;
    char c = Peek();
    if (c == '\\') {
      c = Peek(1);
      length = 2;
      if (std::isalnum(static_cast<unsigned char>(c)) || c == '\0') return '\0';
    } else if (kSpecial[static_cast<unsigned char>(c)]) {
      return '\0';
    }
    if (static_cast<unsigned char>(c) >= 0x80 || c == '\0') return '\0';
    const char next = Peek(length);
    if (next == '*' || next == '+' || next == '?' || next == '{' || next == '\\') return '\0';
    at_ += length;
    return c;
  }

  // \E ends quoting (and alone is ignored); an empty \Q\E is nothing.
  void SkipQuoteMarks() {
    for (;;) {
      if (StartsWith("\\E")) {
        quoting_ = false;
        at_ += 2;
      } else if (!quoting_ && StartsWith("\\Q\\E")) {
        at_ += 4;
      } else {
        return;
      }
    }
  }

  Demand Item() {
    Demand atom = Atom();
    SkipQuoteMarks();
    if (quoting_ || AtEnd()) return atom;
    int least = 0;
    int most = -1;
    switch (Peek()) {
      case '*': ++at_; break;
      case '+':
        least = 1;
        ++at_;
        break;
      case '?':
        most = 1;
        ++at_;
        break;
      case '{':
        if (!ReadCount(least, most)) return atom;
        break;
      default: return atom;
    }
    if (Peek() == '+' || Peek() == '?') ++at_;  // possessive or lazy
    if (Peek() == '*' || Peek() == '+' || Peek() == '?' || (Peek() == '{' && IsCount())) throw GiveUp{};
    return Repeated(std::move(atom), least, most);
  }

  // Whether a "{" here is a counted repetition rather than a literal brace.
  // Only {n}, {n,} and {n,m} are; other digits, commas or blanks after the
  // brace are read differently by PCRE2 releases, so they end the reading.
  bool IsCount() {
    const std::size_t mark = at_;
    int least = 0;
    int most = 0;
    const bool count = ReadCount(least, most);
    at_ = mark;
    return count;
  }

  bool ReadCount(int& least, int& most) {
    std::size_t at = at_ + 1;
    const auto number = [&](int& value) {
      const std::size_t from = at;
      value = 0;
      while (at < p_.size() && std::isdigit(static_cast<unsigned char>(p_[at])) && at - from < 6) {
        value = value * 10 + (p_[at++] - '0');
      }
      return at > from;
    };
    const std::size_t after = at;
    if (number(least)) {
      most = least;
      if (at < p_.size() && p_[at] == ',') {
        ++at;
        if (!number(most)) most = -1;
      }
      if (at < p_.size() && p_[at] == '}') {
        at_ = at + 1;
        return true;
      }
    }
    at = after;
    while (at < p_.size() && p_[at] == ' ') ++at;
    if (at < p_.size() && (std::isdigit(static_cast<unsigned char>(p_[at])) || p_[at] == ',')) throw GiveUp{};
    return false;
  }

  Demand Literal(char c) {
    if (static_cast<unsigned char>(c) >= 0x80) return Nothing();
    return Exact({std::string(1, FoldByte(c))});
  }

  Demand Character(unsigned long code) { return code < 0x80 ? Literal(static_cast<char>(code)) : Nothing(); }

  Demand Atom() {
    SkipQuoteMarks();
    if (AtEnd()) return Empty();
    if (quoting_) return Literal(p_[at_++]);
    if (StartsWith("\\Q")) {
      quoting_ = true;
      at_ += 2;
      return Atom();
    }
    const char c = Peek();
    switch (c) {
      case '(': return Group();
      case '[': SkipClass(); return Nothing();
      case '.': ++at_; return Nothing();
      case '^':
      case '$': ++at_; return Empty();
      case '\\': return Escape();
      case '*':
      case '+':
      case '?': throw GiveUp{};
      case '|':
      case ')': return Empty();
      case '{':
        if (IsCount()) throw GiveUp{};
        ++at_;
        return Literal(c);
      default: ++at_; return Literal(c);
    }
  }

  // Moves past the next `close`; gives up when there is none.
  void SkipPast(char close) {
    const std::size_t found = p_.find(close, at_);
    if (found == std::string_view::npos) throw GiveUp{};
    at_ = found + 1;
  }

  unsigned long Digits(int base, std::size_t most) {
    unsigned long value = 0;
    for (std::size_t read = 0; read < most && !AtEnd(); ++read) {
      const char d = Peek();
      const int digit = std::isdigit(static_cast<unsigned char>(d))    ? d - '0'
                        : std::isxdigit(static_cast<unsigned char>(d)) ? (FoldByte(d) - 'a' + 10)
                                                                       : 99;
      if (digit >= base) break;
      value = std::min(value * static_cast<unsigned long>(base) + static_cast<unsigned long>(digit), 0x110000ul);
      ++at_;
    }
    return value;
  }

  // \x{...} or \o{...}: digits up to the closing brace.
  unsigned long BracedDigits(int base) {
    ++at_;  // '{'
    const unsigned long value = Digits(base, 16);
    if (Peek() != '}') throw GiveUp{};
    ++at_;
    return value;
  }

  Demand Escape() {
    ++at_;
    if (AtEnd()) throw GiveUp{};
    const char e = p_[at_++];
    switch (e) {
      case 'b':
      case 'B':
      case 'A':
      case 'z':
      case 'Z':
      case 'G':
      case 'K': return Empty();
      // Without UTF or UCP, which take verbs the reader gives up on, these
      // are the white space of "\s".
      case 's': return Exact({" ", "\t", "\n", "\v", "\f", "\r"});
      case 'd':
      case 'D':
      case 'w':
      case 'W':
      case 'S':
      case 'h':
      case 'H':
      case 'v':
      case 'V':
      case 'R':
      case 'N':
      case 'X':
      case 'C': return Nothing();
      case 'p':
      case 'P':
        if (Peek() == '{') {
          SkipPast('}');
        } else if (AtEnd()) {
          throw GiveUp{};
        } else {
          ++at_;
        }
        return Nothing();
      case 'x': return Character(Peek() == '{' ? BracedDigits(16) : Digits(16, 2));
      case 'o':
        if (Peek() != '{') throw GiveUp{};
        return Character(BracedDigits(8));
      case 'c':
        if (AtEnd()) throw GiveUp{};
        ++at_;
        return Nothing();
      case '0': return Character(Digits(8, 2));
      case 'g': SkipReference(); return Nothing();
      case 'k': SkipName(); return Nothing();
      case 'a': return Literal('\a');
      case 'e': return Literal('\x1B');
      case 'f': return Literal('\f');
      case 'n': return Literal('\n');
      case 'r': return Literal('\r');
      case 't': return Literal('\t');
      default:
        // A back-reference, or a character in octal: either way nothing
        // is demanded, whatever the digits turn out to mean.
        if (e >= '1' && e <= '9') {
          while (std::isdigit(static_cast<unsigned char>(Peek()))) ++at_;
          return Nothing();
        }
        if (std::isalnum(static_cast<unsigned char>(e))) throw GiveUp{};  // not an escape PCRE2 knows
        return Literal(e);
    }
  }

  // \g{n}, \g<name>, \g'name', \gn, \g-n, \g+n.
  void SkipReference() {
    switch (Peek()) {
      case '{': SkipPast('}'); return;
      case '<': SkipPast('>'); return;
      case '\'':
        ++at_;
        SkipPast('\'');
        return;
      default:
        if (Peek() == '+' || Peek() == '-') ++at_;
        if (!std::isdigit(static_cast<unsigned char>(Peek()))) throw GiveUp{};
        while (std::isdigit(static_cast<unsigned char>(Peek()))) ++at_;
    }
  }

  // \k<name>, \k'name', \k{name}.
  void SkipName() {
    switch (Peek()) {
      case '<': SkipPast('>'); return;
      case '{': SkipPast('}'); return;
      case '\'':
        ++at_;
        SkipPast('\'');
        return;
      default: throw GiveUp{};
    }
  }

  // A character class: demands one character of a set, which is nothing
  // for the atoms; what matters is finding where it ends.
  void SkipClass() {
    ++at_;
    if (Peek() == '^') ++at_;
    bool first = true;
    for (;;) {
      if (AtEnd()) throw GiveUp{};
      const char c = p_[at_];
      if (c == ']' && !first) {
        ++at_;
        return;
      }
      first = false;
      if (c == '[' && (Peek(1) == ':' || Peek(1) == '.' || Peek(1) == '=')) throw GiveUp{};
      if (c != '\\') {
        ++at_;
        continue;
      }
      const char e = Peek(1);
      if (e == 'Q' || e == 'E' || e == '\0') throw GiveUp{};
      at_ += 2;
      if ((e == 'x' || e == 'o' || e == 'p' || e == 'P') && Peek() == '{') SkipPast('}');
      if (e == 'c') {
        if (AtEnd()) throw GiveUp{};
        ++at_;
      }
    }
  }

  Demand Group() {
    ++at_;
    if (++depth_ > kMaxDepth) throw GiveUp{};
    Demand inner = Empty();
    if (Peek() == '?') {
      ++at_;
      const char kind = Peek();
      if (kind == ':' || kind == '|' || kind == '>') {
        ++at_;
        inner = Alternation();
      } else if (kind == '=' || kind == '!' || (kind == '<' && (Peek(1) == '=' || Peek(1) == '!'))) {
        at_ += kind == '<' ? 2 : 1;
        Alternation();  // a lookaround consumes nothing
      } else if (kind == '<' || (kind == 'P' && Peek(1) == '<')) {
        SkipPast('>');
        inner = Alternation();
      } else if (kind == '\'') {
        ++at_;
        SkipPast('\'');
        inner = Alternation();
      } else if (kind == 'R' || kind == '&' || (kind == 'P' && (Peek(1) == '=' || Peek(1) == '>')) ||
                 std::isdigit(static_cast<unsigned char>(kind)) ||
                 ((kind == '+' || kind == '-') && std::isdigit(static_cast<unsigned char>(Peek(1))))) {
        // A recursion, a subroutine call or a back-reference by name.
        const std::size_t close = p_.find(')', at_);
        if (close == std::string_view::npos) throw GiveUp{};
        at_ = close;
        inner = Nothing();
      } else {
        // Option letters, alone ("(?i)") or for a group ("(?i:...)").
        while (!AtEnd() && std::strchr("imnsJU^-", Peek()) != nullptr) ++at_;
        if (Peek() == ')') {
          ++at_;
          --depth_;
          return Empty();
        }
        if (Peek() != ':') throw GiveUp{};  // extended mode, comments, callouts, conditionals, ...
        ++at_;
        inner = Alternation();
      }
    } else {
      inner = Alternation();
    }
    if (Peek() != ')' || AtEnd()) throw GiveUp{};
    ++at_;
    --depth_;
    return inner;
  }

  std::string_view p_;
  std::size_t at_ = 0;
  bool quoting_ = false;
  int depth_ = 0;
};

}  // namespace

std::optional<std::vector<std::string>> RequiredAtoms(std::string_view pattern) {
  try {
    return AtomsOf(Reader(pattern).Run());
  } catch (const GiveUp&) {
    return std::nullopt;
  }
}

}  // namespace tarnwick::rex
