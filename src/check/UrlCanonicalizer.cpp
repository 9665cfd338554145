#include "check/UrlCanonicalizer.h"

#include "support/Hex.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

bool IsUnsafe(unsigned char c) {
  if (c < 0x20 || c >= 0x7F) return true;
  switch (c) {
    case ' ':
    case '"':
    case '<':
    case '>':
    case '[':
    case ']':
    case '^':
    case '`':
    case '{':
    case '|':
    case '}':
    case '\\': return true;
    default: return false;
  }
}

void AppendEscaped(std::string& out, unsigned char c) {
  out += '%';
  AppendHexByte(out, c, HexLetters::Upper);
}

// How one part of a URL is written out.
struct PartRules {
  bool escapeUnsafe = true;
  std::string_view alsoUnsafe;   // escaped besides the unsafe characters
  std::string_view keptDecoded;  // never escaped when they came out of an escape
};

constexpr PartRules kHierarchicalPart{true, "", "#%\\"};
constexpr PartRules kQueryAndFragment{false, "", ""};
constexpr PartRules kOpaquePart{true, "/?#", "%"};

// Decodes escapes in `part` and escapes what the rules say. Returns false
// when a decoded NUL ended the URL.
bool Transcribe(std::string_view part, const PartRules& rules, std::string& out) {
  for (std::size_t i = 0; i < part.size(); ++i) {
    auto c = static_cast<unsigned char>(part[i]);
    bool decoded = false;
    if (const auto escaped = c == '%' && i + 2 < part.size() ? HexByte(part[i + 1], part[i + 2]) : std::nullopt) {
      c = *escaped;
      i += 2;
      decoded = true;
      if (c == 0) return false;
    }
    const bool kept = decoded && rules.keptDecoded.find(static_cast<char>(c)) != std::string_view::npos;
    const bool unsafe = IsUnsafe(c) || rules.alsoUnsafe.find(static_cast<char>(c)) != std::string_view::npos;
    if (rules.escapeUnsafe && !kept && unsafe) {
      AppendEscaped(out, c);
    } else {
      out += static_cast<char>(c);
    }
  }
  return true;
}

std::size_t SchemeLength(std::string_view url) {
  if (url.empty() || !((url[0] | 0x20) >= 'a' && (url[0] | 0x20) <= 'z')) return 0;
  for (std::size_t i = 1; i < url.size(); ++i) {
    const char c = url[i];
    if (c == ':') return i;
    const bool letter = (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
    if (!letter && !(c >= '0' && c <= '9') && c != '+' && c != '-' && c != '.') return 0;
  }
  return 0;
}

}  // namespace

std::optional<std::string> CanonicalizeUrl(std::string_view input) {
  std::string url;
  for (char c : input.substr(0, input.find('\0'))) {
    if (c != '\t' && c != '\r' && c != '\n') url += c;
  }
  const std::size_t scheme = SchemeLength(url);
  const bool hierarchical = scheme > 0 && url.compare(scheme, 3, "://") == 0;
  const std::string schemeName = LowerAscii(std::string_view(url).substr(0, scheme));
  const bool slashes = schemeName == "http" || schemeName == "https" || schemeName == "file";
  std::size_t pathStart = scheme > 0 ? scheme + 1 : 0;
  std::string out = url.substr(0, pathStart);
  if (hierarchical) {
    const std::size_t authorityStart = scheme + 3;
    const std::size_t authorityEnd = std::min(url.find_first_of("/\\?#", authorityStart), url.size());
    out += "//";
    if (!Transcribe(std::string_view(url).substr(authorityStart, authorityEnd - authorityStart), kHierarchicalPart,
                    out)) {
      return out;
    }
    pathStart = authorityEnd;
    const std::string_view authority = std::string_view(url).substr(authorityStart, authorityEnd - authorityStart);
    if (pathStart == url.size() && !authority.empty() && authority.find('@') == std::string_view::npos) out += '/';
  }

  if (scheme > 0 && !hierarchical) {
    // "scheme:rest": one opaque part, its separators escaped too.
    Transcribe(std::string_view(url).substr(pathStart), kOpaquePart, out);
  } else {
    const std::size_t tailStart = std::min(url.find_first_of("?#", pathStart), url.size());
    std::string path = url.substr(pathStart, tailStart - pathStart);
    if (hierarchical && slashes) {
      for (char& c : path) {
        if (c == '\\') c = '/';
      }
    }
    if (Transcribe(path, kHierarchicalPart, out)) {
      Transcribe(std::string_view(url).substr(tailStart), kQueryAndFragment, out);
    }
  }
  if (out.size() >= kCanonicalBufferSize) return std::nullopt;
  return out;
}

}  // namespace tarnwick
