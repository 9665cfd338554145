#include "server/Base64.h"

#include <cstdint>

namespace tarnwick::server {

std::string EncodeBase64(std::string_view bytes) {
  static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string encoded;
  encoded.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 3 <= bytes.size(); i += 3) {
    const std::uint32_t group = static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << 16 |
                                static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8 |
                                static_cast<unsigned char>(bytes[i + 2]);
    encoded += kAlphabet[group >> 18];
    encoded += kAlphabet[(group >> 12) & 63];
    encoded += kAlphabet[(group >> 6) & 63];
    encoded += kAlphabet[group & 63];
  }
  const std::size_t rest = bytes.size() - i;
  if (rest == 0) return encoded;
  std::uint32_t group = static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << 16;
  if (rest == 2) group |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8;
  encoded += kAlphabet[group >> 18];
  encoded += kAlphabet[(group >> 12) & 63];
  encoded += rest == 2 ? kAlphabet[(group >> 6) & 63] : '=';
  encoded += '=';
  return encoded;
}

}  // namespace tarnwick::server
