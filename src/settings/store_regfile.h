// POSIX settings store: one registry-format file per root (see RegFile.h).
// Every read asks the file system whether the file changed (one stat) and
// parses it again only when it did, so values other processes wrote are
// seen at once. Writes hold an advisory lock on "<file>.lock", read the file
// afresh, and replace it by renaming a complete temporary file over it, so
// concurrent writers lose nothing and readers never see half a file.
//
// A file that is there but cannot be used (no permission, a directory or a
// device in its place, an I/O error, more than kMaxSettingsFileBytes) reads
// as if it were empty and is never written over; the reason goes to the
// debug log and to the store's problem report.
//
// The current user's file is created on the first write. The local-machine
// file lives in a system folder: when that folder is missing or not writable,
// opening a key there for writing fails with kErrorAccessDenied.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "settings/SettingsStore.h"

namespace tarnwick {

inline constexpr std::uintmax_t kMaxSettingsFileBytes = 1 << 20;

std::unique_ptr<SettingsStore> MakeRegFileStore(const std::filesystem::path& currentUserFile,
                                                const std::filesystem::path& localMachineFile, Log& log);

}  // namespace tarnwick
