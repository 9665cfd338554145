// Percent-decoding of request paths, query strings and form bodies.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick::server {

using Params = std::vector<std::pair<std::string, std::string>>;

// "%" and two hexadecimal digits (either case) become that byte; a "%" not
// followed by two digits stays as it is. With `plusIsSpace`, "+" becomes " ".
std::string PercentDecode(std::string_view text, bool plusIsSpace = false);

// name=value pairs split at "&", in order. A query string keeps "+" as it is:
// the toolbar sends addresses unescaped apart from "%" and "&", so a "+" in
// them is a plus sign.
Params ParseQuery(std::string_view query);
// An application/x-www-form-urlencoded body, where "+" stands for a space.
Params ParseForm(std::string_view body);

// The value of the first pair of that name, or nothing.
std::optional<std::string> Param(const Params& params, std::string_view name);

}  // namespace tarnwick::server
