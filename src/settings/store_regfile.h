// POSIX settings store: one registry-format file per root (see RegFile.h).
// Every read goes to the file, so values other processes wrote are seen at
// once. Writes hold an advisory lock on "<file>.lock", re-read the file, and
// replace it by renaming a complete temporary file over it, so concurrent
// writers lose nothing and readers never see half a file.
//
// The current user's file is created on the first write. The local-machine
// file lives in a system folder: when that folder is missing or not writable,
// opening a key there for writing fails with kErrorAccessDenied.
#pragma once

#include <filesystem>
#include <memory>

#include "settings/SettingsStore.h"

namespace tarnwick {

std::unique_ptr<SettingsStore> MakeRegFileStore(const std::filesystem::path& currentUserFile,
                                                const std::filesystem::path& localMachineFile, Log& log);

}  // namespace tarnwick
