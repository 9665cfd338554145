#include <algorithm>
#include <iostream>

#include "Cli.h"
#include "band/ComponentFactory.h"
#include "band/Components.h"
#include "band/StartUp.h"
#include "settings/Endpoints.h"

namespace tarnwick::cli {

Host::Host(const std::string& serverFlag, int unattendedAnswer)
    : clock_(MakeSystemClock()), paths_(MakePlatformPaths()), shell_(MakePlatformShell()), ui_(unattendedAnswer) {
  process_ = std::make_unique<ToolbarProcess>(HostPorts{*paths_, *clock_, ui_, ui_.dialog, *shell_},
                                              MakePlatformSettingsStore, ResolveEndpoints(serverFlag));
}

bool Host::StartTransfers() {
  ToolbarProcess& process = *process_;
  RunUpdaterHousekeeping(process);
  EnsureGUID(*process.settings);
  process.LoadOptions();
  process.http.Form_Load();
  if (!process.http.ComponentReady) {
    std::cerr << "tarnwick: no retrieval component in " << process.paths.ProgramFolder().string() << '\n';
    return false;
  }
  process.http.pageFetch =
      NewObject(process, process.paths.ProgramFolder() / kPageFetchComponent.file, kPageFetchComponent.progId);
  if (!process.http.pageFetch) {
    std::cerr << "tarnwick: the retrieval component could not be created (see the log)\n";
    return false;
  }
  return true;
}

std::string TakeOption(std::vector<std::string>& args, const std::string& name) {
  const auto it = std::find(args.begin(), args.end(), name);
  if (it == args.end() || it + 1 == args.end()) return {};
  std::string value = *(it + 1);
  args.erase(it, it + 2);
  return value;
}

bool TakeFlag(std::vector<std::string>& args, const std::string& name) {
  const auto it = std::find(args.begin(), args.end(), name);
  if (it == args.end()) return false;
  args.erase(it);
  return true;
}

}  // namespace tarnwick::cli
