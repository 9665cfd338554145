#include "band/StartUp.h"

#include "support/Files.h"

namespace tarnwick {

void RunUpdaterHousekeeping(ToolbarProcess& process) {
  if (process.updates.ProbeProgramFolder()) return;
  const auto updater = process.paths.ProgramFolder() / "updater.exe";
  const bool started = process.shell.StartProgram(updater, {"/i"});
  process.log.WriteLog("(RunUpdaterHousekeeping) The program folder probe failed; " +
                       std::string(started ? "started " : "could not start ") + updater.string() + " /i");
}

void RequestFileHashes(ToolbarProcess& process) {
  std::string list;
  for (const auto file : HashListFiles()) list += (list.empty() ? "" : "\r\n") + std::string(file);
  process.updates.GetFileHashes(list);
}

void LoadBlockLists(ToolbarProcess& process, CheckURL& checker) {
  for (const RefreshEntry& entry : StartupRefreshTable()) {
    if (entry.file == "localblock.dat" || entry.file == "xss.dat") process.updates.Refresh(entry, process.AgentString);
  }
  const auto folder = process.paths.ProgramFolder();
  checker.SetURLPatterns(ReadFile(process.log, folder / "localblock.dat"));
  process.XSS.SetXSSPatterns(ReadFile(process.log, folder / "xss.dat"));
}

}  // namespace tarnwick
