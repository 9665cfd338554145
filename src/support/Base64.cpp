#include "support/Base64.h"

#include <cstdint>

namespace tarnwick {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::uint32_t Byte(std::string_view bytes, std::size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0u;
}

}  // namespace

std::string EncodeBase64(std::string_view bytes) {
  std::string encoded;
  encoded.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::uint32_t group = Byte(bytes, i) << 16 | Byte(bytes, i + 1) << 8 | Byte(bytes, i + 2);
    encoded += kAlphabet[group >> 18];
    encoded += kAlphabet[(group >> 12) & 63];
    encoded += i + 1 < bytes.size() ? kAlphabet[(group >> 6) & 63] : '=';
    encoded += i + 2 < bytes.size() ? kAlphabet[group & 63] : '=';
  }
  return encoded;
}

std::string DecodeB64(std::string_view text) {
  std::string decoded;
  std::uint32_t buffer = 0;
  int bits = 0;
  for (const char c : text) {
    if (c == '=') break;
    const auto value = kAlphabet.find(c);
    if (value == std::string_view::npos) continue;
    buffer = (buffer << 6 | static_cast<std::uint32_t>(value)) & 0xFFFFFF;
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      decoded += static_cast<char>((buffer >> bits) & 0xFF);
    }
  }
  return decoded;
}

}  // namespace tarnwick
