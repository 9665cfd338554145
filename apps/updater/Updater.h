// updater.exe: installs a downloaded new version of the program. The band
// only starts it; it waits until the program file is no longer in use, moves
// twtb.dll aside to twtb.old, moves twtb.new into its place and logs each
// step. When the new file cannot be moved into place the old one is put back.
#pragma once

#include <filesystem>
#include <functional>

#include "support/Log.h"

namespace tarnwick::updater {

struct UpdaterOptions {
  // How long to wait for the program file to be released.
  double waitSeconds = 120;
  double pollSeconds = 0.5;
};

// 0 when the new version is in place, 1 otherwise.
int InstallNewVersion(const std::filesystem::path& folder, Log& log,
                      const std::function<bool(const std::filesystem::path&)>& inUse, UpdaterOptions options = {});

// Whether another process still has the program file open for running it
// (backend per platform).
bool ProgramFileInUse(const std::filesystem::path& file);

}  // namespace tarnwick::updater
