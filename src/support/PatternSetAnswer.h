// What the regular-expression component's FirstMatch answers when no index
// of a pattern: shared by the component and the core that calls it.
#pragma once

#include <cstdint>

namespace tarnwick {

// No pattern of the set matches.
inline constexpr std::int32_t kSetNoMatch = -1;
// The time allowed ran out before a pattern matched; the patterns not yet
// tried count as no match.
inline constexpr std::int32_t kSetOutOfTime = -2;
// The object holds no set of that name and tag: compile it first.
inline constexpr std::int32_t kSetUnknown = -3;

}  // namespace tarnwick
