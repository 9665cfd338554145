// Finds which of many atoms occur in a subject, in one pass over it, with
// ASCII letters compared without regard to case (the atoms are lower case).
//
// An atom of four bytes or more is looked for through windows of the
// subject, eight or four bytes wide, taken not at every position but at
// every `step`-th one: an occurrence of an atom of length L covers every
// window from its start to L - width further on, so with a step S of at most
// L - width + 1 one of the sampled windows lies wholly inside it, at one of
// S offsets from its start. The atom is filed under one window for each of
// those offsets, the window that the fewest other atoms share (so a piece
// every URL holds, such as "https://" or ".com/", is rarely chosen). Each
// atom gets the longest step its length allows (up to eight) and the wider
// window where that step is four or more; atoms of the same width and step
// form one pass, and a pass joins one of narrower windows or a shorter step
// where one pass costs less than two (a handful of atoms does not pay for a
// walk of its own over the subject). A pass reads its windows, asks a small
// blocked Bloom filter whether any atom is filed under each, and only then
// looks the window up and, for the atoms filed there whose last four bytes
// are in place, compares them in full. Atoms under four bytes are found by
// their first byte.
//
// For a URL of 80 bytes and atoms of the length of host names, that is ten
// windows, where nothing is filed a load, a multiplication and a bit test
// each.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "Fold.h"
#include "KeyedRuns.h"

namespace tarnwick::rex {

class AtomScanner {
 public:
  // The atoms must be non-empty and without upper-case ASCII letters; an
  // atom's number is its index here.
  explicit AtomScanner(const std::vector<std::string>& atoms);

  // Calls found(number) for every occurrence of an atom in `text` (an atom
  // that occurs twice is reported twice).
  template <typename Found>
  void Scan(std::string_view text, Found&& found) const;

  std::size_t MemoryBytes() const;

 private:
  struct Anchor {
    std::uint32_t atom;
    std::uint32_t offset;  // of the window in the atom
    std::uint32_t length;  // of the atom
    // The atom's last four bytes: most windows that match without the atom
    // differ there, which the subject's bytes near the window tell without
    // reading the atom itself.
    std::uint32_t tail;
  };
  // The atoms read through windows `width` bytes wide at every `step`-th
  // position of the subject, filed by window.
  struct Pass {
    unsigned width = 8;
    unsigned step = 1;
    KeyedRuns<Anchor> anchors;
  };

  // The bytes at `at`, folded to lower case.
  template <unsigned kWidth>
  static std::uint64_t Window(const char* at) {
    if constexpr (kWidth == 8) {
      std::uint64_t window;
      std::memcpy(&window, at, sizeof window);
      return FoldWord(window);
    } else {
      std::uint32_t window;
      std::memcpy(&window, at, sizeof window);
      return static_cast<std::uint32_t>(FoldWord(window));
    }
  }
  static std::uint64_t Window(const char* at, unsigned width) { return width == 8 ? Window<8>(at) : Window<4>(at); }
  bool OccursAt(std::string_view text, std::size_t start, std::uint32_t atom) const;
  template <unsigned kWidth, typename Found>
  void ScanPass(const Pass& pass, std::string_view text, Found& found) const;

  std::string text_;                   // every atom, one after the other
  std::vector<std::uint32_t> starts_;  // atom i is text_[starts_[i], starts_[i+1])
  std::vector<Pass> passes_;
  std::array<bool, 256> shortFirst_{};  // some atom under four bytes starts with this byte
  std::vector<std::uint32_t>
      shortStarts_;  // short atoms by first byte: shortAtoms_[shortStarts_[b], shortStarts_[b+1])
  std::vector<std::uint32_t> shortAtoms_;
};

template <unsigned kWidth, typename Found>
void AtomScanner::ScanPass(const Pass& pass, std::string_view text, Found& found) const {
  const char* data = text.data();
  const std::size_t step = pass.step;
  for (std::size_t at = 0; at + kWidth <= text.size(); at += step) {
    for (const Anchor& anchor : pass.anchors.Find(Window<kWidth>(data + at))) {
      if (anchor.offset > at || at - anchor.offset + anchor.length > text.size()) continue;
      const std::size_t start = at - anchor.offset;
      if (Window<4>(data + start + anchor.length - 4) == anchor.tail && OccursAt(text, start, anchor.atom)) {
        found(anchor.atom);
      }
    }
  }
}

template <typename Found>
void AtomScanner::Scan(std::string_view text, Found&& found) const {
  if (!shortAtoms_.empty()) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      const auto first = static_cast<unsigned char>(FoldByte(text[at]));
      if (!shortFirst_[first]) continue;
      for (std::uint32_t i = shortStarts_[first]; i < shortStarts_[first + 1u]; ++i) {
        const std::uint32_t atom = shortAtoms_[i];
        // The first byte is in place: the rest, at most two bytes, compared here.
        const std::size_t length = starts_[atom + 1] - starts_[atom];
        if (at + length > text.size()) continue;
        bool occurs = true;
        for (std::size_t k = 1; k < length && occurs; ++k) occurs = FoldByte(text[at + k]) == text_[starts_[atom] + k];
        if (occurs) found(atom);
      }
    }
  }
  for (const Pass& pass : passes_) {
    if (pass.width == 8) {
      ScanPass<8>(pass, text, found);
    } else {
      ScanPass<4>(pass, text, found);
    }
  }
}

}  // namespace tarnwick::rex
