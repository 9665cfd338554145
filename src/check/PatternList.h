// A block list as the data files hold it: text split at every CR LF, empty
// entries kept (and skipped when tried); unset until a file was loaded.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

using PatternList = std::optional<std::vector<std::string>>;

std::vector<std::string> SplitAtCrLf(std::string_view text);

}  // namespace tarnwick
