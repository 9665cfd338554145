#include "Matcher.h"

#include <new>

namespace tarnwick::rex {
namespace {

// Enough for any pattern the program ships and for long URLs; a pattern that
// needs more is broken for our purposes. The match limit bounds the time of
// one attempt to a few milliseconds.
constexpr std::uint32_t kMatchLimit = 1'000'000;
constexpr std::uint32_t kDepthLimit = 10'000;
constexpr std::uint32_t kHeapLimitKiB = 16 * 1024;
constexpr std::size_t kJitStackStart = 32 * 1024;
constexpr std::size_t kJitStackMax = 1024 * 1024;

}  // namespace

std::optional<std::string_view> MatchView::Group(std::uint32_t number) const {
  if (number > groups_ || offsets_[2 * number] == PCRE2_UNSET) return std::nullopt;
  return subject_.substr(offsets_[2 * number], offsets_[2 * number + 1] - offsets_[2 * number]);
}

Matcher::Matcher()
    : context_(pcre2_match_context_create(nullptr)),
      jitStack_(pcre2_jit_stack_create(kJitStackStart, kJitStackMax, nullptr)) {
  if (context_ == nullptr) throw std::bad_alloc();
  pcre2_set_match_limit(context_, kMatchLimit);
  pcre2_set_depth_limit(context_, kDepthLimit);
  pcre2_set_heap_limit(context_, kHeapLimitKiB);
  if (jitStack_ != nullptr) pcre2_jit_stack_assign(context_, nullptr, jitStack_);
}

Matcher::~Matcher() {
  pcre2_match_data_free(data_);
  pcre2_jit_stack_free(jitStack_);
  pcre2_match_context_free(context_);
}

int Matcher::Attempt(const CompiledPattern& pattern, std::string_view subject, std::size_t offset,
                     std::uint32_t options) {
  if (data_ == nullptr || dataPairs_ < pattern.groups() + 1) {
    pcre2_match_data_free(data_);
    dataPairs_ = pattern.groups() + 1;
    data_ = pcre2_match_data_create(dataPairs_, nullptr);
    if (data_ == nullptr) throw std::bad_alloc();
  }
  return pcre2_match(pattern.code(), reinterpret_cast<PCRE2_SPTR>(subject.data()), subject.size(), offset, options,
                     data_, context_);
}

MatchOutcome Matcher::ForEachMatch(const CompiledPattern& pattern, std::string_view subject, bool global,
                                   const std::function<void(const MatchView&)>& onMatch, std::string& error) {
  bool matched = false;
  std::size_t offset = 0;
  std::uint32_t options = 0;
  while (offset <= subject.size()) {
    const int result = Attempt(pattern, subject, offset, options);
    if (result == PCRE2_ERROR_NOMATCH) {
      if (options == 0) break;
      // No non-empty match where the empty one was: step past one character.
      options = 0;
      ++offset;
      continue;
    }
    if (result < 0) {
      error = PcreMessage(result);
      return MatchOutcome::Failed;
    }
    const PCRE2_SIZE* offsets = pcre2_get_ovector_pointer(data_);
    matched = true;
    onMatch(MatchView(subject, offsets, pattern.groups()));
    if (!global) break;
    const bool empty = offsets[0] == offsets[1];
    offset = offsets[1];
    options = empty ? PCRE2_NOTEMPTY_ATSTART | PCRE2_ANCHORED : 0;
  }
  return matched ? MatchOutcome::Matched : MatchOutcome::NoMatch;
}

}  // namespace tarnwick::rex
