#include "support/Hex.h"

namespace tarnwick {

std::string PercentDecode(std::string_view text, bool plusIsSpace) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (const auto byte = c == '%' && i + 2 < text.size() ? HexByte(text[i + 1], text[i + 2]) : std::nullopt) {
      decoded += static_cast<char>(*byte);
      i += 2;
    } else {
      decoded += plusIsSpace && c == '+' ? ' ' : c;
    }
  }
  return decoded;
}

}  // namespace tarnwick
