#include "PatternCache.h"

namespace tarnwick::rex {

const PatternCache::Entry& PatternCache::Get(std::string_view pattern, std::uint32_t options) {
  if (const auto found = index_.find({pattern, options}); found != index_.end()) {
    entries_.splice(entries_.begin(), entries_, found->second);
    Entry& entry = found->second->entry;
    if (entry.pattern) entry.pattern->CompileToMachineCode();
    return entry;
  }
  Entry entry;
  entry.pattern = CompiledPattern::Compile(pattern, options, entry.error);
  entries_.push_front({std::string(pattern), options, std::move(entry)});
  index_.emplace(Key{entries_.front().pattern, options}, entries_.begin());
  if (entries_.size() > capacity_) {
    index_.erase({entries_.back().pattern, entries_.back().options});
    entries_.pop_back();
  }
  return entries_.front().entry;
}

}  // namespace tarnwick::rex
