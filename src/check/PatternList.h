// A block list as the data files hold it: text split at every CR LF (Split in
// support/Text.h), empty entries kept and skipped when tried; unset until a
// file was loaded.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarnwick {

using PatternList = std::optional<std::vector<std::string>>;

}  // namespace tarnwick
