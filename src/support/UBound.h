// Upper bounds of arrays as the callers count them: the last index, or -1 for
// an array without elements.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

template <class T>
std::int32_t GetUBound(const std::vector<T>& items) {
  return static_cast<std::int32_t>(items.size()) - 1;
}

inline std::int32_t GetUBoundString(const std::vector<std::string>& items) { return GetUBound(items); }
inline std::int32_t GetUBoundByteArray(const std::vector<std::uint8_t>& items) { return GetUBound(items); }

}  // namespace tarnwick
