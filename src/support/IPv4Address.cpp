#include "support/IPv4Address.h"

#include "support/Hex.h"

namespace tarnwick {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Reads one number at text[at] as strtoul does with base 0, leaving `at`
// after it. nullopt when it does not fit 32 bits.
std::optional<std::uint32_t> ReadNumber(std::string_view text, std::size_t& at) {
  unsigned base = 10;
  if (text[at] == '0') {
    base = 8;
    if (at + 2 < text.size() && (text[at + 1] | 0x20) == 'x' && HexDigitValue(text[at + 2]) >= 0) {
      base = 16;
      at += 2;
    }
  }
  std::uint64_t value = 0;
  bool overflow = false;
  for (; at < text.size(); ++at) {
    const int digit = HexDigitValue(text[at]);
    if (digit < 0 || static_cast<unsigned>(digit) >= base) break;
    value = value * base + static_cast<unsigned>(digit);
    overflow = overflow || value > 0xFFFFFFFFu;
    if (overflow) value = 0;
  }
  if (overflow) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

}  // namespace

std::optional<IPv4Bytes> ParseIPv4Address(std::string_view text) {
  IPv4Bytes bytes{};
  std::size_t parts = 0;  // numbers before the last, one byte each
  std::size_t at = 0;
  std::uint32_t last = 0;
  while (true) {
    if (at >= text.size() || !IsDigit(text[at])) return std::nullopt;
    const auto number = ReadNumber(text, at);
    if (!number) return std::nullopt;
    if (at < text.size() && text[at] == '.') {
      if (parts == 3 || *number > 0xFF) return std::nullopt;
      bytes[parts++] = static_cast<std::uint8_t>(*number);
      ++at;
      continue;
    }
    last = *number;
    break;
  }
  if (at < text.size() && text[at] != '\0' && !IsBlank(text[at])) return std::nullopt;
  // The last number fills the bytes left: 32 bits alone, 24 after one byte...
  if (parts > 0 && last >> (8 * (4 - parts)) != 0) return std::nullopt;
  for (std::size_t i = parts; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(last >> (8 * (3 - i)));
  return bytes;
}

std::string DottedAddress(const IPv4Bytes& address) {
  return std::to_string(address[0]) + "." + std::to_string(address[1]) + "." + std::to_string(address[2]) + "." +
         std::to_string(address[3]);
}

}  // namespace tarnwick
