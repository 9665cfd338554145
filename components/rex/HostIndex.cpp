#include "HostIndex.h"

#include "Pcre.h"

namespace tarnwick::rex {
namespace {

// Reads the pattern's text from the front; each Take... consumes what it
// recognises and says whether it did.
class ShapeReader {
 public:
  explicit ShapeReader(std::string_view pattern) : rest_(pattern) {}

  bool Take(std::string_view text) {
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }
  bool TakeAny(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
      if (Take(text)) return true;
    }
    return false;
  }

  // "([^/]*\.)?" and its like: any run without "/" that ends in a dot, in a
  // group or not, as often as the group may be repeated.
  void TakeSubdomains() {
    const std::string_view before = rest_;
    const bool grouped = TakeAny({"(?:", "("});
    if (Take("[^/]") && TakeAny({"*", "+"})) {
      Take("?");
      if (Take("\\.") && (!grouped || Take(")"))) {
        if (grouped) TakeAny({"?", "*", "+"});
        return;
      }
    }
    rest_ = before;
  }

  // The host's bytes, folded; empty where there are none.
  std::string TakeHost() {
    std::string host;
    for (;;) {
      if (rest_.size() >= 2 && rest_[0] == '\\' && (rest_[1] == '.' || rest_[1] == '-')) {
        host += rest_[1];
        rest_.remove_prefix(2);
      } else if (!rest_.empty() && rest_[0] != '.' && HostIndex::HostByte(rest_[0]) != 0) {
        host += HostIndex::HostByte(rest_[0]);
        rest_.remove_prefix(1);
      } else {
        return host;
      }
    }
  }

  // "(:\d+)?" and its like.
  void TakePort() {
    const std::string_view before = rest_;
    if (TakeAny({"(?::", "(:"}) && TakeAny({"\\d", "[0-9]"}) && TakeAny({"+", "*"}) && Take(")?")) return;
    rest_ = before;
  }

  // A part that matches no host byte and cannot match nothing: the end, a
  // character that no host holds, a class of them, or a group of such
  // alternatives.
  bool TakeBoundary() {
    if (TakeOneBoundary()) return !Optional();
    if (!TakeAny({"(?:", "("})) return false;
    do {
      if (!TakeOneBoundary()) return false;
    } while (Take("|"));
    return Take(")") && !Optional();
  }

  // Nothing further may stand beside the shape as an alternative to it.
  bool NoAlternatives() const { return rest_.find('|') == std::string_view::npos; }

 private:
  bool Optional() const { return !rest_.empty() && (rest_[0] == '?' || rest_[0] == '*' || rest_[0] == '{'); }

  bool TakeOneBoundary() {
    if (TakeAny({"$", "/", ":"})) return true;
    if (TakeEscapedPunctuation()) return true;
    if (!Take("[") || rest_.starts_with("^") || rest_.starts_with("]")) return false;
    do {
      if (!TakeEscapedPunctuation() && !TakeClassMember()) return false;
    } while (!Take("]"));
    return true;
  }

  // A backslash before punctuation that no host holds: that character.
  bool TakeEscapedPunctuation() {
    if (rest_.size() < 2 || rest_[0] != '\\' || !IsOtherPunctuation(rest_[1])) return false;
    rest_.remove_prefix(2);
    return true;
  }

  // A plain character inside a class that no host holds and that means
  // nothing special there.
  bool TakeClassMember() {
    if (rest_.empty() || !IsOtherPunctuation(rest_[0]) || rest_[0] == '\\' || rest_[0] == ']' || rest_[0] == '[' ||
        rest_[0] == '^') {
      return false;
    }
    rest_.remove_prefix(1);
    return true;
  }

  static bool IsOtherPunctuation(char byte) { return byte > ' ' && byte < 0x7F && HostIndex::HostByte(byte) == 0; }

  std::string_view rest_;
};

}  // namespace

std::optional<std::string> HostOfPattern(std::string_view pattern, std::uint32_t options) {
  // Extended mode would read white space and "#" otherwise; the other
  // options would change what "^" or a letter matches.
  if ((options & ~std::uint32_t{PCRE2_CASELESS | PCRE2_DOTALL}) != 0) return std::nullopt;
  ShapeReader reader(pattern);
  if (!reader.Take("^http")) return std::nullopt;
  reader.TakeAny({"s?", "s"});
  if (!reader.TakeAny({"://", ":\\/\\/"})) return std::nullopt;
  reader.TakeSubdomains();
  std::string host = reader.TakeHost();
  if (host.empty()) return std::nullopt;
  reader.TakePort();
  if (!reader.TakeBoundary() || !reader.NoAlternatives()) return std::nullopt;
  return host;
}

HostIndex::HostIndex(const std::vector<std::pair<std::string, std::uint32_t>>& hosts) {
  std::vector<KeyedRuns<std::uint32_t>::Entry> entries;
  entries.reserve(hosts.size());
  for (const auto& [host, pattern] : hosts) {
    std::uint64_t hash = kEmptyHash;
    for (auto byte = host.rbegin(); byte != host.rend(); ++byte) hash = HashBefore(hash, *byte);
    entries.push_back({hash, pattern});
  }
  patterns_ = KeyedRuns<std::uint32_t>(std::move(entries));
}

}  // namespace tarnwick::rex
