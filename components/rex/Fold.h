// ASCII letters folded to lower case, as atoms are read and subjects are
// scanned: a pattern set's prefilter ignores case even for case-sensitive
// patterns, which may only make it run a pattern that then does not match.
#pragma once

#include <cstdint>

namespace tarnwick::rex {

// ASCII letters to lower case, every other byte as it is.
constexpr char FoldByte(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte; }

// FoldByte over each byte of a word.
inline std::uint64_t FoldWord(std::uint64_t bytes) {
  // Per byte: its high bit clear, at least 'A' and at most 'Z'.
  constexpr std::uint64_t kHigh = 0x8080808080808080ull;
  const std::uint64_t low7 = bytes & ~kHigh;
  const std::uint64_t atLeastA = low7 + 0x3F3F3F3F3F3F3F3Full;
  const std::uint64_t aboveZ = low7 + 0x2525252525252525ull;
  const std::uint64_t upper = atLeastA & ~aboveZ & ~bytes & kHigh;
  return bytes | (upper >> 2);
}

}  // namespace tarnwick::rex
