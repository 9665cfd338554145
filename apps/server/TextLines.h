// Line-by-line reading of the server's own text files (configuration,
// popularity list) and of feed URLs.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::server {

// Without the spaces, TABs and CRs at either end.
std::string_view TrimBlanks(std::string_view text);

// Calls `visit` with each line (split at LF, the LF dropped) and its number
// from 1, until it returns false.
void ForEachLine(std::string_view text, const std::function<bool(std::size_t, std::string_view)>& visit);

enum class LineRead { Line, TooLong, End };
// The next line of `in` into `line` (split at LF, the LF dropped). A line
// longer than `maxBytes` is read to its end but not kept: TooLong, with
// `line` empty. End when nothing is left.
LineRead ReadBoundedLine(std::istream& in, std::string& line, std::size_t maxBytes);

// The whole file; nothing when it cannot be read.
std::optional<std::string> ReadTextFile(const std::filesystem::path& file);

}  // namespace tarnwick::server
