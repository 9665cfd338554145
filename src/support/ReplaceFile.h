// Replacing a file so that at every moment one whole version is on disk: the
// new content is written to a temporary file beside the old one, flushed, and
// renamed over it. Settings, data files and downloaded components are all
// replaced this way.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

namespace tarnwick {

// Where a replacement failed: while the new content was written out, or when
// it was to take the old file's place.
struct ReplaceFailure {
  enum class Stage { Writing, Renaming } stage;
  std::error_code error;
};

// Writes `content` to `path` + `temporarySuffix`, then renames it over
// `path`. The new file keeps the permissions of the file it replaces
// (`newFilePermissions` when there was none). On failure the old file is
// untouched, the temporary file is gone, and what failed comes back.
std::optional<ReplaceFailure> ReplaceFile(const std::filesystem::path& path, std::string_view content,
                                          std::string_view temporarySuffix,
                                          std::filesystem::perms newFilePermissions =
                                              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write |
                                              std::filesystem::perms::group_read | std::filesystem::perms::others_read);

}  // namespace tarnwick
