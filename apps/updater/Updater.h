// updater.exe: installs a downloaded new version of the program, and repairs
// the program folder when the band's start-up finds it cannot be written.
// The program folder is the folder updater.exe runs from.
//
//   updater.exe     waits until twtb.dll is no longer in use, then deletes
//                   twtb.old, moves twtb.dll to twtb.old and twtb.new into its
//                   place; when that last move fails the old version is put
//                   back.
//   updater.exe /i  repairs the folder: finishes an install that was cut
//                   short between its two moves (or puts twtb.old back when
//                   there is nothing to finish it with), deletes the folder
//                   probe's scratch copy updater.exe.bak, and checks that the
//                   folder can be written again.
//
// Every step and finding goes to the event log (blocked.log). The component
// swap (pagefetch.new) is not the updater's: the program repairs that one
// itself each time it loads its download form.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/Log.h"

namespace tarnwick::updater {

struct UpdaterOptions {
  // How long to wait for the program file to be released.
  double waitSeconds = 120;
  double pollSeconds = 0.5;
  // Told once, when the program file is first found in use: the person is
  // asked to close the browser that holds it. The wait goes on meanwhile.
  std::function<void()> onHeld;
};

using InUse = std::function<bool(const std::filesystem::path&)>;

// 0 when the new version is in place, 1 otherwise.
int InstallNewVersion(const std::filesystem::path& folder, Log& log, const InUse& inUse, UpdaterOptions options = {});

// 0 when the folder is in order afterwards, 1 when a problem is left.
int RepairProgramFolder(const std::filesystem::path& folder, Log& log);

// What the command line asks for: nothing (install) or "/i" (repair, any
// case). Anything else is logged and ends with 2.
int RunUpdater(const std::vector<std::string>& args, const std::filesystem::path& folder, Log& log, const InUse& inUse,
               UpdaterOptions options = {});

// Whether another process still has the program file open for running it
// (backend per platform).
bool ProgramFileInUse(const std::filesystem::path& file);
// Asks the person to close the browser, without waiting for an answer: a
// message box of its own on Windows, a line on standard error elsewhere.
void AskToCloseBrowser();

}  // namespace tarnwick::updater
