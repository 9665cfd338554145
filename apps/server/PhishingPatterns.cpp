#include "server/PhishingPatterns.h"

#include <cstring>

#include "support/Base64.h"
#include "support/Hex.h"

namespace tarnwick::server {
namespace {

void AppendLiteral(std::string& pattern, unsigned char byte) {
  if (byte < 0x20 || byte >= 0x7F) {
    pattern += "\\x";
    AppendHexByte(pattern, byte, HexLetters::Upper);
  } else {
    if (std::strchr("\\^$.|?*+()[]{}", byte) != nullptr) pattern += '\\';
    pattern += static_cast<char>(byte);
  }
}

// A hex digit of a percent escape, in either case.
void AppendHexDigit(std::string& pattern, char digit) {
  if (digit >= '0' && digit <= '9') {
    pattern += digit;
    return;
  }
  const char upper = static_cast<char>(digit & ~0x20);
  pattern += '[';
  pattern += upper;
  pattern += static_cast<char>(upper | 0x20);
  pattern += ']';
}

// What the decoded byte leaves in the toolbar's decoded URL: controls (apart
// from TAB to CR), bytes above 126 and backslashes are removed.
bool SurvivesDecoding(unsigned char byte) {
  return !(byte <= 0x08 || (byte >= 0x0E && byte <= 0x1F) || byte >= 0x7F || byte == '\\');
}

}  // namespace

std::string PatternForPage(std::string_view siteUrl) {
  std::string pattern = "^https?://";
  for (std::size_t i = 0; i < siteUrl.size(); ++i) {
    const char c = siteUrl[i];
    if (const auto decoded =
            c == '%' && i + 2 < siteUrl.size() ? HexByte(siteUrl[i + 1], siteUrl[i + 2]) : std::nullopt) {
      pattern += "(?:%";
      AppendHexDigit(pattern, siteUrl[i + 1]);
      AppendHexDigit(pattern, siteUrl[i + 2]);
      pattern += '|';
      if (SurvivesDecoding(*decoded)) AppendLiteral(pattern, *decoded);
      pattern += ')';
      i += 2;
    } else if (c == '+') {
      pattern += "(?:\\+| )";
    } else {
      AppendLiteral(pattern, static_cast<unsigned char>(c));
    }
  }
  pattern += siteUrl.find('?') == std::string_view::npos ? "(?:[?#]|$)" : "(?:#|$)";
  return pattern;
}

std::string PatternHeader(std::span<const std::string> siteUrls) {
  std::string joined;
  std::size_t count = 0;
  for (auto page = siteUrls.rbegin(); page != siteUrls.rend() && count < kMaxPatternsPerAnswer; ++page, ++count) {
    std::string pattern = PatternForPage(*page);
    if (joined.size() + pattern.size() + 1 > kMaxPatternTextBytes) break;
    if (!joined.empty()) joined += '\t';
    joined += pattern;
  }
  return EncodeBase64(joined);
}

}  // namespace tarnwick::server
