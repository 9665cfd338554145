// Compiled patterns by pattern text and compile options, the least recently
// used dropped past a fixed number. The same block lists are tried on every
// navigation, so each line is compiled once, and to machine code when it is
// used a second time: a line tried once (a header's pattern, a list read for
// the first time) is not worth the JIT's cost. A pattern that does not
// compile is kept too, with its reason, so a bad line is not compiled again
// each time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "CompiledPattern.h"

namespace tarnwick::rex {

class PatternCache {
 public:
  struct Entry {
    std::shared_ptr<CompiledPattern> pattern;  // nullptr when it does not compile
    std::string error;                         // why not
  };

  explicit PatternCache(std::size_t capacity) : capacity_(capacity > 0 ? capacity : 1) {}

  // The entry for the pattern, compiling it on first use. The reference is
  // good until the next call.
  const Entry& Get(std::string_view pattern, std::uint32_t options);
  std::size_t size() const { return entries_.size(); }

 private:
  struct Key {
    std::string_view pattern;  // points into the list node that owns the text
    std::uint32_t options;
    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const {
      return std::hash<std::string_view>()(key.pattern) ^ (static_cast<std::size_t>(key.options) * 0x9E3779B97F4A7C15u);
    }
  };
  struct Node {
    std::string pattern;
    std::uint32_t options;
    Entry entry;
  };

  std::size_t capacity_;
  std::list<Node> entries_;  // most recently used first
  std::unordered_map<Key, std::list<Node>::iterator, KeyHash> index_;
};

}  // namespace tarnwick::rex
