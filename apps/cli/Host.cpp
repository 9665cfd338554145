#include <algorithm>
#include <iostream>

#include "Cli.h"
#include "band/StartUp.h"
#include "settings/Endpoints.h"

namespace tarnwick::cli {

namespace {

// The platform's store, telling the person on standard error when its file
// cannot be read (the command goes on with the defaults).
std::unique_ptr<SettingsStore> MakeStoreThatReports(Log& log) {
  auto store = MakePlatformSettingsStore(log);
  store->ReportProblemsTo([](const std::string& problem) { std::cerr << "tarnwick: " << problem << '\n'; });
  return store;
}

}  // namespace

Host::Host(const std::string& serverFlag, int unattendedAnswer)
    : clock_(MakeSystemClock()), paths_(MakePlatformPaths()), shell_(MakePlatformShell()), ui_(unattendedAnswer) {
  process_ = std::make_unique<ToolbarProcess>(HostPorts{*paths_, *clock_, ui_, ui_.dialog, *shell_},
                                              MakeStoreThatReports, ResolveEndpoints(serverFlag));
}

bool Host::StartTransfers() {
  ToolbarProcess& process = *process_;
  RunUpdaterHousekeeping(process);
  if (tarnwick::StartTransfers(process)) return true;
  if (!process.http.ComponentReady) {
    std::cerr << "tarnwick: no retrieval component in " << process.paths.ProgramFolder().string() << '\n';
  } else {
    std::cerr << "tarnwick: the retrieval component could not be created (see the log)\n";
  }
  return false;
}

std::string TakeOption(std::vector<std::string>& args, const std::string& name) {
  const auto it = std::find(args.begin(), args.end(), name);
  if (it == args.end()) return {};
  if (it + 1 == args.end() || (it + 1)->starts_with("--")) throw MissingOptionValue(name);
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
