#include "band/StartUp.h"

#include "band/BlockPage.h"
#include "band/ComponentFactory.h"
#include "band/Components.h"
#include "support/Files.h"
#include "support/RoutineError.h"

namespace tarnwick {

void RunUpdaterHousekeeping(ToolbarProcess& process) {
  if (process.updates.ProbeProgramFolder()) return;
  const auto updater = process.paths.ProgramFolder() / "updater.exe";
  const bool started = process.shell.StartProgram(updater, {"/i"});
  process.log.WriteLog("(RunUpdaterHousekeeping) The program folder probe failed; " +
                       std::string(started ? "started " : "could not start ") + updater.string() + " /i");
}

void StartUpStep(Log& log, const std::function<void()>& step) {
  try {
    step();
  } catch (const std::exception& error) {
    log.DebugLog("(IObjectWithSite_SetSite) Passed over a failing step: " + DescribeError(error));
  }
}

bool StartTransfers(ToolbarProcess& process) {
  StartUpStep(process.log, [&] { EnsureGUID(*process.settings); });
  StartUpStep(process.log, [&] { RegisterAboutURL(process); });
  StartUpStep(process.log, [&] {
    process.LoadOptions();
    process.initialised = true;
  });
  StartUpStep(process.log, [&] { process.http.Form_Load(); });
  StartUpStep(process.log, [&] {
    process.http.pageFetch =
        NewObject(process, process.paths.ProgramFolder() / kPageFetchComponent.file, kPageFetchComponent.progId);
  });
  return process.http.pageFetch != nullptr;
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
