// Line-by-line reading of the server's own text files (configuration,
// popularity list) and of feed URLs.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::server {

// Without the spaces, TABs and CRs at either end.
std::string_view TrimBlanks(std::string_view text);

// Calls `visit` with each line (split at LF, the LF dropped) and its number
// from 1, until it returns false.
void ForEachLine(std::string_view text, const std::function<bool(std::size_t, std::string_view)>& visit);

// The whole file; nothing when it cannot be read.
std::optional<std::string> ReadTextFile(const std::filesystem::path& file);

}  // namespace tarnwick::server
