// A table from 64-bit keys to the runs of values filed under them, behind a
// small blocked Bloom filter: a key that holds nothing, the usual question,
// costs one read of a filter word small enough to stay in a cache, where
// the table itself would not.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <vector>

namespace tarnwick::rex {

// A key's bits spread over all 64, high ones too: slots and filter words
// are chosen by the top bits.
inline std::uint64_t MixKey(std::uint64_t key) { return (key ^ (key >> 29)) * 0x9E3779B97F4A7C15ull; }

// log2 of the least power of two that is at least `count` (and at least 2).
inline unsigned Log2Ceiling(std::size_t count) {
  return static_cast<unsigned>(std::bit_width(std::max<std::size_t>(count, 2) - 1));
}

// Filter bits per key: about one key in a hundred that holds nothing gets
// past the filter.
constexpr std::size_t kFilterBitsPerKey = 16;

// The filter's bytes for `keys` distinct keys: what decides whether a table
// stays in a cache.
constexpr std::size_t FilterBytes(std::size_t keys) { return keys * kFilterBitsPerKey / 8; }

template <typename Value>
class KeyedRuns {
 public:
  struct Entry {
    std::uint64_t key;
    Value value;
    std::uint64_t mixed = 0;  // MixKey(key), filled in by the table
  };

  KeyedRuns() : KeyedRuns(std::vector<Entry>{}) {}

  // Values under the same key come back in no particular order.
  explicit KeyedRuns(std::vector<Entry> entries) {
    for (Entry& entry : entries) entry.mixed = MixKey(entry.key);
    // In the order of their hash, which is that of their slots and filter
    // words: the tables fill front to back rather than at random.
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.mixed != b.mixed ? a.mixed < b.mixed : a.key < b.key; });
    std::size_t distinct = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) distinct += i == 0 || entries[i].key != entries[i - 1].key;
    // At most three slots in four taken.
    const unsigned slotBits = Log2Ceiling(distinct + distinct / 3 + 1);
    slotShift_ = 64 - slotBits;
    slots_.assign(std::size_t{1} << slotBits, Slot{});
    const unsigned bloomBits = std::max(6u, Log2Ceiling(FilterBytes(distinct) / 8));
    bloomShift_ = 64 - bloomBits;
    bloom_.assign(std::size_t{1} << bloomBits, 0);

    values_.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size();) {
      const std::uint64_t key = entries[i].key;
      const std::uint64_t mixed = entries[i].mixed;
      Slot slot{key, static_cast<std::uint32_t>(values_.size()), 0};
      for (; i < entries.size() && entries[i].key == key; ++i) {
        values_.push_back(entries[i].value);
        ++slot.count;
      }
      std::size_t at = mixed >> slotShift_;
      while (slots_[at].count != 0) at = (at + 1) & (slots_.size() - 1);
      slots_[at] = slot;
      bloom_[mixed >> bloomShift_] |= (1ull << ((mixed >> 20) & 63)) | (1ull << ((mixed >> 26) & 63));
    }
  }

  // The values filed under `key`; empty where there are none.
  std::span<const Value> Find(std::uint64_t key) const {
    const std::uint64_t mixed = MixKey(key);
    const std::uint64_t word = bloom_[mixed >> bloomShift_];
    if (((word >> ((mixed >> 20) & 63)) & (word >> ((mixed >> 26) & 63)) & 1) == 0) return {};
    for (std::size_t at = mixed >> slotShift_;; at = (at + 1) & (slots_.size() - 1)) {
      const Slot& slot = slots_[at];
      if (slot.count == 0) return {};
      if (slot.key == key) return {values_.data() + slot.first, slot.count};
    }
  }

  std::size_t size() const { return values_.size(); }
  std::size_t MemoryBytes() const {
    return values_.capacity() * sizeof(Value) + slots_.capacity() * sizeof(Slot) +
           bloom_.capacity() * sizeof(std::uint64_t);
  }

 private:
  struct Slot {
    std::uint64_t key = 0;
    std::uint32_t first = 0;  // into values_
    std::uint32_t count = 0;  // 0: an empty slot
  };
  std::vector<Value> values_;  // grouped by key
  std::vector<Slot> slots_;    // open addressing by key
  std::vector<std::uint64_t> bloom_;
  unsigned bloomShift_ = 64;
  unsigned slotShift_ = 64;
};

}  // namespace tarnwick::rex
