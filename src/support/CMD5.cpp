#include "support/CMD5.h"

#include <algorithm>
#include <array>
#include <span>

#include "support/Text.h"

namespace tarnwick {
namespace {

using Digest = std::array<std::uint8_t, 16>;

constexpr std::array<std::uint32_t, 64> kSine = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr std::array<int, 64> kShift = {7, 12, 17, 22, 7, 12, 17, 22, 7, 12, 17, 22, 7, 12, 17, 22,
                                        5, 9,  14, 20, 5, 9,  14, 20, 5, 9,  14, 20, 5, 9,  14, 20,
                                        4, 11, 16, 23, 4, 11, 16, 23, 4, 11, 16, 23, 4, 11, 16, 23,
                                        6, 10, 15, 21, 6, 10, 15, 21, 6, 10, 15, 21, 6, 10, 15, 21};

std::uint32_t RotateLeft(std::uint32_t x, int n) { return (x << n) | (x >> (32 - n)); }

// Streaming MD5: whole 64-byte blocks are taken straight from the input,
// so a large component file hashes at the speed of the transform.
class Md5 {
 public:
  void Update(std::uint8_t byte) { Update(std::span<const std::uint8_t>(&byte, 1)); }

  void Update(std::span<const std::uint8_t> bytes) {
    length_ += bytes.size();
    while (!bytes.empty()) {
      if (fill_ == 0 && bytes.size() >= 64) {
        Transform(bytes.first<64>());
        bytes = bytes.subspan(64);
        continue;
      }
      const std::size_t take = std::min(bytes.size(), 64 - fill_);
      std::copy_n(bytes.begin(), take, block_.begin() + static_cast<std::ptrdiff_t>(fill_));
      fill_ += take;
      bytes = bytes.subspan(take);
      if (fill_ == 64) {
        Transform(block_);
        fill_ = 0;
      }
    }
  }

  Digest Finish() {
    const std::uint64_t bits = length_ * 8;
    Update(0x80);
    while (fill_ != 56) Update(0);
    for (int i = 0; i < 8; ++i) Update(static_cast<std::uint8_t>(bits >> (8 * i)));
    Digest digest{};
    for (int word = 0; word < 4; ++word) {
      for (int i = 0; i < 4; ++i) digest[word * 4 + i] = static_cast<std::uint8_t>(state_[word] >> (8 * i));
    }
    return digest;
  }

 private:
  void Transform(std::span<const std::uint8_t, 64> block) {
    std::array<std::uint32_t, 16> m{};
    for (int i = 0; i < 16; ++i) {
      m[i] = block[i * 4] | (block[i * 4 + 1] << 8) | (block[i * 4 + 2] << 16) |
             (static_cast<std::uint32_t>(block[i * 4 + 3]) << 24);
    }
    std::uint32_t a = state_[0], b = state_[1], c = state_[2], d = state_[3];
    for (int i = 0; i < 64; ++i) {
      std::uint32_t f = 0;
      int g = 0;
      if (i < 16) {
        f = (b & c) | (~b & d);
        g = i;
      } else if (i < 32) {
        f = (d & b) | (~d & c);
        g = (5 * i + 1) % 16;
      } else if (i < 48) {
        f = b ^ c ^ d;
        g = (3 * i + 5) % 16;
      } else {
        f = c ^ (b | ~d);
        g = (7 * i) % 16;
      }
      const std::uint32_t next = d;
      d = c;
      c = b;
      b = b + RotateLeft(a + f + kSine[i] + m[g], kShift[i]);
      a = next;
    }
    state_[0] += a;
    state_[1] += b;
    state_[2] += c;
    state_[3] += d;
  }

  std::array<std::uint32_t, 4> state_ = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  std::array<std::uint8_t, 64> block_{};
  std::size_t fill_ = 0;
  std::uint64_t length_ = 0;
};

Digest DigestOfText(std::string_view text) {
  Md5 md5;
  std::array<std::uint8_t, 4096> chunk{};
  while (!text.empty()) {
    const std::size_t size = std::min(text.size(), chunk.size());
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size), chunk.begin(),
                   [](char c) { return HashByteOfAnsi(static_cast<unsigned char>(c)); });
    md5.Update(std::span<const std::uint8_t>(chunk.data(), size));
    text.remove_prefix(size);
  }
  return md5.Finish();
}

std::string LowerHex(const Digest& digest) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  hex.reserve(32);
  for (std::uint8_t byte : digest) {
    hex += kDigits[byte >> 4];
    hex += kDigits[byte & 0xF];
  }
  return hex;
}

}  // namespace

std::string CMD5::MD5(std::string_view text) const { return LowerHex(DigestOfText(text)); }

std::string CMD5::MD5Byte(std::span<const std::uint8_t> bytes) const {
  Md5 md5;
  md5.Update(bytes);
  return LowerHex(md5.Finish());
}

std::vector<std::uint8_t> CMD5::RawMD5(std::string_view text) const {
  const Digest digest = DigestOfText(text);
  return {digest.begin(), digest.end()};
}

}  // namespace tarnwick
