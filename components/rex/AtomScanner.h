// Finds which of many atoms occur in a subject, in one pass over it.
//
// An atom of four bytes or more is filed under one four-byte piece of it,
// the piece that the fewest other atoms share (so a piece every URL holds,
// such as "http" or ".com", is rarely chosen). The scan reads the subject's
// four-byte window at each position, asks a small blocked Bloom filter
// whether any atom is filed under it, and only then looks the window up and
// compares the atoms filed there in full. Shorter atoms are found by their
// first byte. Where nothing is filed the cost is a load, a multiplication
// and a bit test per position.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::rex {

class AtomScanner {
 public:
  // The atoms must be non-empty; an atom's number is its index here.
  explicit AtomScanner(const std::vector<std::string>& atoms);

  // Calls found(number) for every occurrence of an atom in `text` (an atom
  // that occurs twice is reported twice).
  template <typename Found>
  void Scan(std::string_view text, Found&& found) const;

  std::size_t MemoryBytes() const;

 private:
  struct Anchor {
    std::uint32_t atom;
    std::uint32_t offset;  // of the piece in the atom
  };
  struct Slot {
    std::uint32_t piece = 0;
    std::uint32_t first = 0;  // into anchors_
    std::uint32_t count = 0;  // 0: an empty slot
  };

  static std::uint32_t Piece(const char* at) {
    std::uint32_t piece;
    std::memcpy(&piece, at, sizeof piece);
    return piece;
  }
  static std::uint64_t Mix(std::uint32_t piece) { return piece * 0x9E3779B97F4A7C15ull; }
  const Slot* Find(std::uint32_t piece) const;
  bool OccursAt(std::string_view text, std::size_t start, std::uint32_t atom) const {
    const std::size_t length = starts_[atom + 1] - starts_[atom];
    return start + length <= text.size() && std::memcmp(text.data() + start, text_.data() + starts_[atom], length) == 0;
  }

  std::string text_;                   // every atom, one after the other
  std::vector<std::uint32_t> starts_;  // atom i is text_[starts_[i], starts_[i+1])
  std::vector<Anchor> anchors_;        // grouped by piece
  std::vector<Slot> slots_;            // open addressing by piece
  std::vector<std::uint64_t> bloom_;
  unsigned bloomShift_ = 64;
  unsigned slotShift_ = 64;
  std::array<bool, 256> shortFirst_{};  // some atom under four bytes starts with this byte
  std::vector<std::uint32_t>
      shortStarts_;  // short atoms by first byte: shortAtoms_[shortStarts_[b], shortStarts_[b+1])
  std::vector<std::uint32_t> shortAtoms_;
};

template <typename Found>
void AtomScanner::Scan(std::string_view text, Found&& found) const {
  const char* data = text.data();
  const std::size_t size = text.size();
  if (!shortAtoms_.empty()) {
    for (std::size_t at = 0; at < size; ++at) {
      const auto first = static_cast<unsigned char>(data[at]);
      if (!shortFirst_[first]) continue;
      for (std::uint32_t i = shortStarts_[first]; i < shortStarts_[first + 1u]; ++i) {
        if (OccursAt(text, at, shortAtoms_[i])) found(shortAtoms_[i]);
      }
    }
  }
  if (anchors_.empty() || size < 4) return;
  const std::uint64_t* bloom = bloom_.data();
  const unsigned shift = bloomShift_;
  for (std::size_t at = 0; at + 4 <= size; ++at) {
    const std::uint32_t piece = Piece(data + at);
    const std::uint64_t mixed = Mix(piece);
    const std::uint64_t word = bloom[mixed >> shift];
    if (((word >> ((mixed >> 20) & 63)) & (word >> ((mixed >> 26) & 63)) & 1) == 0) continue;
    const Slot* slot = Find(piece);
    if (slot == nullptr) continue;
    for (std::uint32_t i = slot->first; i < slot->first + slot->count; ++i) {
      const Anchor& anchor = anchors_[i];
      if (anchor.offset <= at && OccursAt(text, at - anchor.offset, anchor.atom)) found(anchor.atom);
    }
  }
}

}  // namespace tarnwick::rex
