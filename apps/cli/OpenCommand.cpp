// tarnwick open LINK [--current-url URL] [--server URL]: acts on a menu link
// as the product menu does when its item is chosen.
#include <iostream>

#include "Cli.h"
#include "TerminalCommandHost.h"
#include "support/Text.h"
#include "ui/ToolbarCommands.h"

namespace tarnwick::cli {

int RunOpen(std::vector<std::string> args) {
  const std::string currentUrl = TakeOption(args, "--current-url");
  const std::string server = TakeOption(args, "--server");
  if (args.size() != 1 || args[0].starts_with("--")) {
    std::cerr << "usage: tarnwick open LINK [--current-url URL] [--server URL]\n";
    return kExitError;
  }
  const std::string link = Utf8ToAnsi(args[0]);
  Host host(server);
  ToolbarProcess& process = host.process();
  // Only the update check talks to the server; the other links need nothing
  // but the options.
  if (ToolbarCommand(link) == "check_update") {
    if (!host.StartTransfers()) return kExitError;
  } else {
    process.LoadOptions();
  }
  TerminalCommandHost commandHost(process, Utf8ToAnsi(currentUrl));
  CommandPorts ports = process.Commands();
  OpenMenuLink(link, commandHost, ports);
  return kExitOk;
}

}  // namespace tarnwick::cli
