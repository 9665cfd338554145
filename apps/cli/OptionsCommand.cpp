// tarnwick options [set NAME VALUE | delete NAME | dialog]
#include <algorithm>
#include <iostream>

#include "Cli.h"
#include "TerminalOptionsForm.h"
#include "settings/mdlRegistry.h"
#include "support/Text.h"

namespace tarnwick::cli {
namespace {

// The zone lists the retrieval component reads: without the Windows zone
// settings this is the only way to set them.
constexpr const char* kZoneLists[] = {"TrustedSites", "IntranetSites", "RestrictedSites"};

// The settings a person may set here: the options table, the two values read
// outside it, and the zone lists.
std::vector<std::string> KnownNames() {
  std::vector<std::string> names;
  for (const auto& field : OptionTable()) names.emplace_back(field.name);
  names.emplace_back("ShowLabels");
  names.emplace_back("GUID");
  names.insert(names.end(), std::begin(kZoneLists), std::end(kZoneLists));
  return names;
}

const std::string* FindKnown(const std::vector<std::string>& names, const std::string& name) {
  const auto it =
      std::find_if(names.begin(), names.end(), [&](const std::string& known) { return EqualsIgnoreCase(known, name); });
  return it == names.end() ? nullptr : &*it;
}

int PrintOptions(ToolbarProcess& process) {
  process.LoadOptions();
  for (const auto& field : OptionTable()) {
    std::cout << field.name << " = " << AnsiToUtf8(OptionText(process.options, field)) << '\n';
  }
  std::cout << "ShowLabels = " << (ReadShowLabels(*process.settings) ? "True" : "False") << '\n';
  std::cout << "GUID = " << ReadGUID(*process.settings) << '\n';
  for (const char* name : kZoneLists) {
    const auto value = mdlRegistry::GetSetting(*process.settings, mdlRegistry::kSettingsKey, name, std::string());
    std::cout << name << " = " << AnsiToUtf8(ToText(value)) << '\n';
  }
  return kExitOk;
}

int RunDialog(ToolbarProcess& process) {
  process.LoadOptions();
  RunOptionsDialog(process, std::cin, std::cout);
  return kExitOk;
}

}  // namespace

int RunOptions(const std::vector<std::string>& args) {
  Host host;
  ToolbarProcess& process = host.process();
  if (args.empty()) return PrintOptions(process);
  if (args == std::vector<std::string>{"dialog"}) return RunDialog(process);

  const auto names = KnownNames();
  const bool set = args[0] == "set" && args.size() == 3;
  const bool remove = args[0] == "delete" && args.size() == 2;
  if (!set && !remove) {
    std::cerr << "usage: tarnwick options [set NAME VALUE | delete NAME | dialog]\n";
    return kExitError;
  }
  const std::string* name = FindKnown(names, args[1]);
  if (name == nullptr) {
    std::cerr << "tarnwick: unknown setting '" << args[1] << "'; known settings:";
    for (const auto& known : names) std::cerr << ' ' << known;
    std::cerr << '\n';
    return kExitError;
  }
  if (set) {
    mdlRegistry::SaveSetting(*process.settings, mdlRegistry::kSettingsKey, *name, Utf8ToAnsi(args[2]), kRegSz);
    const SettingValue stored = mdlRegistry::GetSetting(*process.settings, mdlRegistry::kSettingsKey, *name, -1);
    if (stored != SettingValue(Utf8ToAnsi(args[2]))) {
      std::cerr << "tarnwick: could not write " << *name << " to the settings store\n";
      return kExitError;
    }
    return kExitOk;
  }
  if (!mdlRegistry::DeleteValue(*process.settings, Root::CurrentUser, mdlRegistry::kSettingsKey, *name)) {
    std::cerr << "tarnwick: " << *name << " was not set\n";
    return kExitFound;
  }
  return kExitOk;
}

}  // namespace tarnwick::cli
