// Query strings and form bodies of requests (their escapes are decoded by
// PercentDecode, support/Hex.h).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/Hex.h"

namespace tarnwick::server {

using Params = std::vector<std::pair<std::string, std::string>>;

// name=value pairs split at "&", in order. A query string keeps "+" as it is:
// the toolbar sends addresses unescaped apart from "%" and "&", so a "+" in
// them is a plus sign.
Params ParseQuery(std::string_view query);
// An application/x-www-form-urlencoded body, where "+" stands for a space.
Params ParseForm(std::string_view body);

// The value of the first pair of that name, or nothing.
std::optional<std::string> Param(const Params& params, std::string_view name);

}  // namespace tarnwick::server
