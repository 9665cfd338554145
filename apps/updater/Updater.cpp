#include "Updater.h"

#include <chrono>
#include <system_error>
#include <thread>

#include "support/Files.h"

namespace tarnwick::updater {

int InstallNewVersion(const std::filesystem::path& folder, Log& log,
                      const std::function<bool(const std::filesystem::path&)>& inUse, UpdaterOptions options) {
  const auto program = folder / "twtb.dll";
  const auto fresh = folder / "twtb.new";
  const auto old = folder / "twtb.old";
  log.WriteLog("(Updater) Installing " + fresh.string());
  if (!FileExists(fresh)) {
    log.WriteLog("(Updater) Nothing to install: " + fresh.string() + " is missing");
    return 1;
  }
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(options.waitSeconds);
  while (FileExists(program) && inUse(program)) {
    if (std::chrono::steady_clock::now() >= deadline) {
      log.WriteLog("(Updater) Gave up: " + program.string() + " is still in use");
      return 1;
    }
    std::this_thread::sleep_for(std::chrono::duration<double>(options.pollSeconds));
  }
  std::error_code error;
  if (FileExists(program)) {
    std::filesystem::rename(program, old, error);
    if (error) {
      log.WriteLog("(Updater) Could not move " + program.string() + " aside: " + error.message());
      return 1;
    }
    log.WriteLog("(Updater) Moved " + program.string() + " to " + old.string());
  }
  std::filesystem::rename(fresh, program, error);
  if (error) {
    log.WriteLog("(Updater) Could not move " + fresh.string() + " into place: " + error.message());
    std::error_code restore;
    if (FileExists(old)) std::filesystem::rename(old, program, restore);
    return 1;
  }
  log.WriteLog("(Updater) Moved " + fresh.string() + " to " + program.string());
  return 0;
}

}  // namespace tarnwick::updater
