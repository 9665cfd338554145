#include "Updater.h"

#include <chrono>
#include <system_error>
#include <thread>

#include "support/FileMoves.h"
#include "support/Files.h"
#include "support/SwapFiles.h"
#include "support/Text.h"

namespace tarnwick::updater {
namespace {

constexpr const char* kProgramFile = "twtb.dll";

SwapObserver LogSteps(Log& log, const std::string& prefix) {
  return [&log, prefix](const SwapStep& step) {
    log.WriteLog(prefix + (step.to.empty() ? "Deleted " + step.from.string()
                                           : "Moved " + step.from.string() + " to " + step.to.string()));
  };
}

std::string Describe(const SwapFailure& failure) {
  if (failure.step.to.empty()) return "Could not delete " + failure.step.from.string() + ": " + failure.error.message();
  return "Could not move " + failure.step.from.string() + " to " + failure.step.to.string() + ": " +
         failure.error.message();
}

// The band's folder probe, run again: copy updater.exe beside itself and
// delete the copy. An empty error when both worked.
std::error_code ProbeFolder(const std::filesystem::path& folder) {
  const auto copy = folder / "updater.exe.bak";
  std::error_code error;
  std::filesystem::copy_file(folder / "updater.exe", copy, std::filesystem::copy_options::overwrite_existing, error);
  if (error) return error;
  return RemoveFile(copy);
}

}  // namespace

int InstallNewVersion(const std::filesystem::path& folder, Log& log, const InUse& inUse, UpdaterOptions options) {
  const VersionedFile program = VersionedFile::In(folder, kProgramFile);
  log.WriteLog("(Updater) Installing " + program.pending.string());
  if (const auto failure = RecoverSwap(program, LogSteps(log, "(Updater) Repaired an interrupted install: "))) {
    log.WriteLog("(Updater) " + Describe(*failure));
  }
  if (!FileExists(program.pending)) {
    log.WriteLog("(Updater) Nothing to install: " + program.pending.string() + " is missing");
    return 1;
  }
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(options.waitSeconds);
  bool told = false;
  while (FileExists(program.current) && inUse(program.current)) {
    if (!told) {
      log.WriteLog("(Updater) Waiting for the browser to let go of " + program.current.string());
      if (options.onHeld) options.onHeld();
      told = true;
    }
    if (std::chrono::steady_clock::now() >= deadline) {
      log.WriteLog("(Updater) Gave up: " + program.current.string() + " is still in use");
      return 1;
    }
    std::this_thread::sleep_for(std::chrono::duration<double>(options.pollSeconds));
  }
  if (const auto failure = SwapInPending(program, LogSteps(log, "(Updater) "))) {
    log.WriteLog("(Updater) " + Describe(*failure));
    return 1;
  }
  return 0;
}

int RepairProgramFolder(const std::filesystem::path& folder, Log& log) {
  log.WriteLog("(Updater) Repairing the program folder " + folder.string());
  int changes = 0;
  int problems = 0;
  const auto count = [&](const SwapStep& step) {
    LogSteps(log, "(Updater) Repaired an interrupted install: ")(step);
    ++changes;
  };
  const VersionedFile program = VersionedFile::In(folder, kProgramFile);
  if (const auto failure = RecoverSwap(program, count)) {
    log.WriteLog("(Updater) " + Describe(*failure));
    ++problems;
  }
  if (!FileExists(program.current)) {
    log.WriteLog("(Updater) " + program.current.string() + " is missing and nothing can replace it");
    ++problems;
  }
  if (FileExists(program.pending)) log.WriteLog("(Updater) " + program.pending.string() + " waits to be installed");

  const auto scratch = folder / "updater.exe.bak";
  std::error_code error;
  if (const auto status = std::filesystem::symlink_status(scratch, error); std::filesystem::exists(status)) {
    if (std::filesystem::is_directory(status)) {
      std::filesystem::remove(scratch, error);  // only an empty folder goes
    } else {
      error = RemoveFile(scratch);
    }
    if (error) {
      log.WriteLog("(Updater) Could not delete " + scratch.string() + ": " + error.message());
      ++problems;
    } else {
      log.WriteLog("(Updater) Deleted " + scratch.string());
      ++changes;
    }
  }
  if (const auto probe = ProbeFolder(folder)) {
    log.WriteLog("(Updater) The program folder cannot be written (" + probe.message() +
                 "): updates cannot be installed until its permissions are repaired");
    ++problems;
  }
  log.WriteLog("(Updater) Repair finished: " + std::to_string(changes) + " change(s), " + std::to_string(problems) +
               " problem(s) left");
  return problems == 0 ? 0 : 1;
}

int RunUpdater(const std::vector<std::string>& args, const std::filesystem::path& folder, Log& log, const InUse& inUse,
               UpdaterOptions options) {
  if (args.empty()) return InstallNewVersion(folder, log, inUse, options);
  if (args.size() == 1 && EqualsIgnoreCase(args[0], "/i")) return RepairProgramFolder(folder, log);
  std::string text;
  for (const auto& arg : args) text += " " + arg;
  log.WriteLog("(Updater) Unknown arguments:" + text + " (none installs twtb.new, /i repairs the folder)");
  return 2;
}

}  // namespace tarnwick::updater
