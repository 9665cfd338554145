#include "check/HostsFile.h"

#include "support/Text.h"

namespace tarnwick {
namespace {

constexpr std::string_view kBlanks = " \t\r";

// Four decimal parts of at most three digits each, every one up to 255:
// the hosts format writes addresses so, and nothing looser is taken.
std::optional<IPv4Bytes> ParseDotted(std::string_view text) {
  IPv4Bytes bytes{};
  std::size_t part = 0;
  int value = -1;
  int digits = 0;
  for (const char c : text) {
    if (c >= '0' && c <= '9' && digits < 3) {
      value = (value < 0 ? 0 : value * 10) + (c - '0');
      ++digits;
    } else if (c == '.' && value >= 0 && part < 3) {
      if (value > 255) return std::nullopt;
      bytes[part++] = static_cast<std::uint8_t>(value);
      value = -1;
      digits = 0;
    } else {
      return std::nullopt;
    }
  }
  if (part != 3 || value < 0 || value > 255) return std::nullopt;
  bytes[3] = static_cast<std::uint8_t>(value);
  return bytes;
}

}  // namespace

std::optional<IPv4Bytes> LookUpHostsText(std::string_view text, std::string_view name) {
  const std::string wanted = LowerAscii(name);
  while (!text.empty()) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    line = line.substr(0, line.find('#'));
    std::optional<IPv4Bytes> address;
    bool first = true;
    while (true) {
      const auto start = line.find_first_not_of(kBlanks);
      if (start == std::string_view::npos) break;
      line = line.substr(start);
      const auto wordEnd = std::min(line.find_first_of(kBlanks), line.size());
      const std::string_view word = line.substr(0, wordEnd);
      line = line.substr(wordEnd);
      if (first) {
        address = ParseDotted(word);
        first = false;
        if (!address) break;
      } else if (LowerAscii(word) == wanted) {
        return address;
      }
    }
  }
  return std::nullopt;
}

}  // namespace tarnwick
