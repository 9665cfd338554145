// Patterns that name the host a URL must be on, the shape block lists are
// mostly made of:
//
//   ^https?://([^/]*\.)?paypa1\.example(:\d+)?(/|$)
//   ^https?://([^/]*\.)?stone-garden\.com/wp-admin/login\.php
//
// found by looking the URL's host, and each domain it lies in, up in a
// table: a few look-ups however many such patterns a list holds, where
// scanning the whole URL for every host as an atom costs more the more
// there are.
//
// A pattern is read as naming host H when it is, in this order: "^", the
// scheme "http", "https" or "https?", "://" (or ":\/\/"), optionally a
// group of anything but "/" ending in a dot ("([^/]*\.)?", "(?:[^/]+\.)?"),
// H as letters, digits, "-", "_" and escaped dots, optionally a port group
// ("(:\d+)?"), and then a part that cannot match a host byte: "/", ":",
// "$", an escaped "?" or "#", a class of such characters, or a group of
// such alternatives, not made optional; what follows is free but may hold
// no "|". Every subject such a pattern matches begins with "http://" or
// "https://" (letters in either case) and, before the next "/", holds H
// (folded) at the end of a run of host bytes, starting right after the
// scheme or after a dot. The index reports every pattern whose host is
// such a piece of the subject, and may report others: the patterns still
// run, and decide.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Fold.h"
#include "KeyedRuns.h"
#include "support/Fnv.h"

namespace tarnwick::rex {

// The host, in lower case, that `pattern` compiled with `options` names in
// the shape above; nullopt for any other pattern. Only the shape is read:
// the caller makes sure the pattern is one it can read whole.
std::optional<std::string> HostOfPattern(std::string_view pattern, std::uint32_t options);

class HostIndex {
 public:
  HostIndex() = default;
  // (host in lower case, pattern number) pairs.
  explicit HostIndex(const std::vector<std::pair<std::string, std::uint32_t>>& hosts);

  // Calls found(pattern) for the patterns whose host is a piece of
  // `subject` as described above, and perhaps a few others.
  template <typename Found>
  void Find(std::string_view subject, Found&& found) const;

  // What it holds beyond its own object.
  std::size_t MemoryBytes() const { return patterns_.MemoryBytes(); }

  // What may appear in a host, folded: a run of these bytes is what a host
  // is looked up in. Zero for every other byte.
  static char HostByte(char byte) { return kHostBytes[static_cast<unsigned char>(byte)]; }

 private:
  // The hash a host is filed under: of its bytes from the last to the
  // first, so that a subject's pieces that end together are hashed in one
  // walk backwards.
  static constexpr std::uint64_t kEmptyHash = kFnvOffset;
  static std::uint64_t HashBefore(std::uint64_t hash, char folded) {
    return FnvStep(hash, static_cast<unsigned char>(folded));
  }

  // The bytes of `text` (at most eight) as a word read from memory holds them.
  static constexpr std::uint64_t Word(std::string_view text) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < text.size(); ++i) word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
    return word;
  }
  static constexpr std::array<char, 256> kHostBytes = [] {
    std::array<char, 256> bytes{};
    for (int byte = 0; byte < 256; ++byte) {
      const char folded = FoldByte(static_cast<char>(byte));
      if ((folded >= 'a' && folded <= 'z') || (folded >= '0' && folded <= '9') || folded == '.' || folded == '-' ||
          folded == '_') {
        bytes[byte] = folded;
      }
    }
    return bytes;
  }();

  KeyedRuns<std::uint32_t> patterns_;
};

template <typename Found>
void HostIndex::Find(std::string_view subject, Found&& found) const {
  if (patterns_.size() == 0) return;
  // "http://" or "https://", folded, then at least a byte of host.
  static_assert(std::endian::native == std::endian::little, "the scheme is read as a little-endian word");
  if (subject.size() < 8) return;
  std::uint64_t scheme;
  std::memcpy(&scheme, subject.data(), sizeof scheme);
  scheme = FoldWord(scheme);
  std::size_t start;
  if (scheme == Word("https://")) {
    start = 8;
  } else if ((scheme & 0x00FFFFFFFFFFFFFFull) == Word("http://")) {
    start = 7;
  } else {
    return;
  }
  const std::size_t end = std::min(subject.find('/', start), subject.size());
  std::uint64_t hash = kEmptyHash;
  for (std::size_t at = end; at-- > start;) {
    const char byte = HostByte(subject[at]);
    if (byte == 0) {
      hash = kEmptyHash;
      continue;
    }
    hash = HashBefore(hash, byte);
    if (at != start && subject[at - 1] != '.') continue;
    for (const std::uint32_t pattern : patterns_.Find(hash)) found(pattern);
  }
}

}  // namespace tarnwick::rex
