#include <algorithm>
#include <iostream>

#include "Cli.h"
#include "PageFetchObject.h"
#include "settings/Endpoints.h"
#include "settings/mdlRegistry.h"

namespace tarnwick::cli {
namespace {

std::shared_ptr<ComponentObject> CreatePageFetch(ToolbarProcess& process) {
  SettingsStore& store = *process.settings;
  return std::make_shared<pagefetch::PageFetchObject>([&store] {
    const auto list = [&store](std::string_view name) {
      return ToText(mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, name, std::string()));
    };
    return pagefetch::ZoneLists{list("TrustedSites"), list("IntranetSites"), list("RestrictedSites")};
  });
}

}  // namespace

Host::Host(const std::string& serverFlag, int unattendedAnswer)
    : clock_(MakeSystemClock()), paths_(MakePlatformPaths()), shell_(MakePlatformShell()), ui_(unattendedAnswer) {
  process_ = std::make_unique<ToolbarProcess>(HostPorts{*paths_, *clock_, ui_, ui_.dialog, *shell_},
                                              MakePlatformSettingsStore, ResolveEndpoints(serverFlag));
}

bool Host::StartTransfers() {
  ToolbarProcess& process = *process_;
  EnsureGUID(*process.settings);
  process.LoadOptions();
  process.http.Form_Load();
  if (!process.http.ComponentReady) {
    std::cerr << "tarnwick: no retrieval component in " << process.paths.ProgramFolder().string() << '\n';
    return false;
  }
  process.http.pageFetch = CreatePageFetch(process);
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
