// Whole-file reading and writing for the data files. Failures come back as
// return values; their texts go to the debug log.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/Log.h"

namespace tarnwick {

inline constexpr const char* kPartialSuffix = ".part";

// The file's bytes as text; empty when it is missing, empty or unreadable.
std::string ReadFile(Log& log, const std::filesystem::path& path);
// The file's bytes; empty when it is missing, empty or unreadable.
std::vector<std::uint8_t> ReadBinaryFile(Log& log, const std::filesystem::path& path);
// Replaces the file with `text` (no line end added); true when written. The
// text goes to "<path>.part" first and is renamed over the file, so the old
// content stays whole until the new is complete.
bool WriteFile(Log& log, const std::filesystem::path& path, std::string_view text);
// True for an existing file (not a folder).
bool FileExists(const std::filesystem::path& path);

}  // namespace tarnwick
