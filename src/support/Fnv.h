// FNV-1a, 64 bits: a quick hash of a few bytes, one byte at a time, for
// telling lists apart and filing hosts. Not for anything an adversary
// could profit from colliding.
#pragma once

#include <cstdint>

namespace tarnwick {

inline constexpr std::uint64_t kFnvOffset = 0xCBF29CE484222325ull;

// The hash so far, with one more byte.
constexpr std::uint64_t FnvStep(std::uint64_t hash, unsigned char byte) { return (hash ^ byte) * 0x100000001B3ull; }

}  // namespace tarnwick
