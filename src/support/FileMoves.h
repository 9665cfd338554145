// Moving and deleting whole files, as the component swap and the updater do
// them: a move replaces the file at its destination in one step, and a delete
// also removes a read-only file. On POSIX both go through the system-call
// table, so tests can make them fail.
#pragma once

#include <filesystem>
#include <system_error>

namespace tarnwick {

// Renames `from` to `to`, replacing a file already at `to`. An empty error on
// success.
std::error_code MoveFileOver(const std::filesystem::path& from, const std::filesystem::path& to);
// Deletes the file, also when it is marked read-only. An empty error on
// success.
std::error_code RemoveFile(const std::filesystem::path& path);

}  // namespace tarnwick
