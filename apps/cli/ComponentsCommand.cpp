// tarnwick components [register|unregister FILE]
// Lists the companion components with the files registered for them, or
// calls a component library's own registration entry point.
#include <iostream>

#include "Cli.h"
#include "band/ClassRegistry.h"
#include "band/ComponentFactory.h"
#include "band/Components.h"

namespace tarnwick::cli {

int RunComponents(const std::vector<std::string>& args) {
  const bool registration = args.size() == 2 && (args[0] == "register" || args[0] == "unregister");
  if (!args.empty() && !registration) {
    std::cerr << "usage: tarnwick components [register|unregister FILE]\n";
    return kExitError;
  }
  Host host;
  ToolbarProcess& process = host.process();
  if (registration) {
    const auto file = std::filesystem::absolute(args[1]);
    if (RegisterDLL(process, file, args[0] == "register")) return kExitOk;
    std::cerr << "tarnwick: " << file.string() << " is no component library, or its " << args[0]
              << " entry point failed (see the log)\n";
    return kExitError;
  }
  for (const auto& component : kKnownComponents) {
    const auto file = RegisteredServerFile(*process.settings, component.progId);
    std::cout << component.progId << '\t' << (file ? file->string() : "(not registered)") << '\n';
  }
  return kExitOk;
}

}  // namespace tarnwick::cli
