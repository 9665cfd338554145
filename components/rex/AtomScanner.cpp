#include "AtomScanner.h"

#include <algorithm>
#include <bit>

namespace tarnwick::rex {
namespace {

constexpr std::size_t kPiece = 4;
// Filter bits per piece: about one window in a hundred that holds no atom
// gets past the filter.
constexpr std::size_t kBloomBitsPerPiece = 16;

// log2 of the least power of two that is at least `count` (and at least 2).
unsigned Log2Ceiling(std::size_t count) {
  return static_cast<unsigned>(std::bit_width(std::max<std::size_t>(count, 2) - 1));
}

}  // namespace

AtomScanner::AtomScanner(const std::vector<std::string>& atoms) {
  starts_.reserve(atoms.size() + 1);
  for (const auto& atom : atoms) {
    starts_.push_back(static_cast<std::uint32_t>(text_.size()));
    text_ += atom;
  }
  starts_.push_back(static_cast<std::uint32_t>(text_.size()));
  const auto atomCount = static_cast<std::uint32_t>(atoms.size());

  // Atoms under four bytes, by their first byte.
  shortStarts_.assign(257, 0);
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() < kPiece) ++shortStarts_[static_cast<unsigned char>(atoms[atom][0]) + 1u];
  }
  for (std::size_t b = 0; b < 256; ++b) shortStarts_[b + 1] += shortStarts_[b];
  shortAtoms_.resize(shortStarts_[256]);
  std::vector<std::uint32_t> next(shortStarts_.begin(), shortStarts_.end() - 1);
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() >= kPiece) continue;
    const auto first = static_cast<unsigned char>(atoms[atom][0]);
    shortFirst_[first] = true;
    shortAtoms_[next[first]++] = atom;
  }

  // About how many atoms hold each piece (counted in hashed buckets, so a
  // collision only makes a piece look more shared); each longer atom is
  // filed under its least shared one.
  const unsigned countBits = std::clamp(Log2Ceiling(text_.size()), 12u, 22u);
  std::vector<std::uint32_t> sharing(std::size_t{1} << countBits, 0);
  const auto bucket = [&](std::uint32_t piece) -> std::uint32_t& { return sharing[Mix(piece) >> (64 - countBits)]; };
  std::vector<std::uint32_t> pieces;
  const auto piecesOf = [&](std::uint32_t atom) {
    pieces.clear();
    const std::string& text = atoms[atom];
    for (std::size_t at = 0; at + kPiece <= text.size(); ++at) pieces.push_back(Piece(text.data() + at));
  };
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() < kPiece) continue;
    piecesOf(atom);
    std::sort(pieces.begin(), pieces.end());
    pieces.erase(std::unique(pieces.begin(), pieces.end()), pieces.end());
    for (const std::uint32_t piece : pieces) ++bucket(piece);
  }
  struct Filed {
    std::uint32_t piece;
    Anchor anchor;
  };
  std::vector<Filed> filed;
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() < kPiece) continue;
    piecesOf(atom);
    std::size_t best = 0;
    for (std::size_t at = 1; at < pieces.size(); ++at) {
      if (bucket(pieces[at]) < bucket(pieces[best])) best = at;
    }
    filed.push_back({pieces[best], {atom, static_cast<std::uint32_t>(best)}});
  }
  sharing = {};
  std::sort(filed.begin(), filed.end(), [](const Filed& a, const Filed& b) { return a.piece < b.piece; });

  std::size_t distinct = 0;
  for (std::size_t i = 0; i < filed.size(); ++i) distinct += i == 0 || filed[i].piece != filed[i - 1].piece;
  const unsigned slotBits = Log2Ceiling(2 * distinct);
  slotShift_ = 64 - slotBits;
  slots_.assign(std::size_t{1} << slotBits, Slot{});
  const unsigned bloomBits = std::max(6u, Log2Ceiling(distinct * kBloomBitsPerPiece / 64));
  bloomShift_ = 64 - bloomBits;
  bloom_.assign(std::size_t{1} << bloomBits, 0);

  anchors_.reserve(filed.size());
  for (std::size_t i = 0; i < filed.size();) {
    const std::uint32_t piece = filed[i].piece;
    Slot slot{piece, static_cast<std::uint32_t>(anchors_.size()), 0};
    for (; i < filed.size() && filed[i].piece == piece; ++i) {
      anchors_.push_back(filed[i].anchor);
      ++slot.count;
    }
    std::size_t at = Mix(piece) >> slotShift_;
    while (slots_[at].count != 0) at = (at + 1) & (slots_.size() - 1);
    slots_[at] = slot;
    const std::uint64_t mixed = Mix(piece);
    bloom_[mixed >> bloomShift_] |= (1ull << ((mixed >> 20) & 63)) | (1ull << ((mixed >> 26) & 63));
  }
}

const AtomScanner::Slot* AtomScanner::Find(std::uint32_t piece) const {
  for (std::size_t at = Mix(piece) >> slotShift_;; at = (at + 1) & (slots_.size() - 1)) {
    const Slot& slot = slots_[at];
    if (slot.count == 0) return nullptr;
    if (slot.piece == piece) return &slot;
  }
}

std::size_t AtomScanner::MemoryBytes() const {
  return sizeof *this + text_.capacity() + starts_.capacity() * sizeof(std::uint32_t) +
         anchors_.capacity() * sizeof(Anchor) + slots_.capacity() * sizeof(Slot) +
         bloom_.capacity() * sizeof(std::uint64_t) +
         (shortStarts_.capacity() + shortAtoms_.capacity()) * sizeof(std::uint32_t);
}

}  // namespace tarnwick::rex
