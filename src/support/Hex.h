// Hexadecimal digits, as escapes in URLs (%4F), settings files (\x4f, hex:)
// and patterns use them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

// The value of a hexadecimal digit of either case; -1 for any other character.
constexpr int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The byte two hexadecimal digits stand for ('4', 'f' -> 0x4F), or nullopt.
constexpr std::optional<unsigned char> HexByte(char high, char low) {
  const int h = HexDigitValue(high);
  const int l = HexDigitValue(low);
  if (h < 0 || l < 0) return std::nullopt;
  return static_cast<unsigned char>(h * 16 + l);
}

enum class HexLetters { Lower, Upper };

// Appends `byte` as two hexadecimal digits.
inline void AppendHexByte(std::string& out, unsigned char byte, HexLetters letters) {
  const char* digits = letters == HexLetters::Upper ? "0123456789ABCDEF" : "0123456789abcdef";
  out += digits[byte >> 4];
  out += digits[byte & 15];
}

// "%" and two hexadecimal digits (either case) become that byte; a "%" not
// followed by two digits stays as it is. With `plusIsSpace` (form bodies),
// "+" becomes " ".
std::string PercentDecode(std::string_view text, bool plusIsSpace = false);

}  // namespace tarnwick
