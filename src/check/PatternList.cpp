#include "check/PatternList.h"

namespace tarnwick {

std::vector<std::string> SplitAtCrLf(std::string_view text) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (;;) {
    const auto end = text.find("\r\n", start);
    if (end == std::string_view::npos) {
      parts.emplace_back(text.substr(start));
      return parts;
    }
    parts.emplace_back(text.substr(start, end - start));
    start = end + 2;
  }
}

}  // namespace tarnwick
