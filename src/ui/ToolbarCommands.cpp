#include "ui/ToolbarCommands.h"

#include "ProductInfo.h"
#include "support/RoutineError.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

constexpr std::string_view kTopFrame = "_top";

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

void NavigateTop(CommandHost& host, const std::string& url) {
  if (!host.Navigate(url, kTopFrame)) {
    throw RoutineError(kErrInvalidProcedureCall, "the browser did not navigate to " + url);
  }
}

void RunCommand(const std::string& command, CommandHost& host, CommandPorts& ports) {
  const std::string& server = ports.endpoints.server;
  if (command == "about") {
    host.OpenAbout();
  } else if (command == "options") {
    host.OpenOptions();
  } else if (command == "report_url") {
    NavigateTop(host, ReportURLAddress(server, host.LocationURL()));
  } else if (command == "report_mistake") {
    NavigateTop(host, server + "/report_mistake");
  } else if (command == "report_bug") {
    NavigateTop(host, server + "/bug_report?ua=" + std::string(ports.agent));
  } else if (command == "check_update") {
    if (!ports.updates.UpdateToolbarDLL(true)) {
      ports.ui.MessageBox("There are no updates available for the " + std::string(ports.fileDescription) + ".",
                          ports.fileDescription, vbOKOnly);
    }
  } else if (command == "uninstall") {
    host.Uninstall(UninstallCommandLine());
  } else {
    ports.ui.MessageBox("The " + command + " command is not supported by this version of the Tarnwick Toolbar.",
                        ports.fileDescription, vbOKOnly);
  }
}

}  // namespace

std::optional<std::string> ToolbarCommand(std::string_view link) {
  if (!link.starts_with(kCommandProtocol)) return std::nullopt;
  return LowerAscii(link.substr(kCommandProtocol.size()));
}

std::string ReportURLAddress(std::string_view server, std::string_view location) {
  std::string address(location);
  if (const auto query = address.find('?'); query != std::string::npos) {
    address = address.substr(0, query) + ReplaceAll(address.substr(query), "%", "%25");
  }
  address = ReplaceAll(address, "&", "%26");
  return std::string(server) + "/report_url?url=" + address;
}

std::string UninstallCommandLine() { return "MsiExec.exe /I{" + std::string(product::kProductCode) + "}"; }

void OpenMenuLink(std::string_view link, CommandHost& host, CommandPorts& ports) {
  try {
    if (const auto command = ToolbarCommand(link)) {
      RunCommand(*command, host, ports);
    } else {
      NavigateTop(host, std::string(link));
    }
  } catch (const std::exception& error) {
    ports.log.DebugLog("(ShowProductMenu) Error: " + std::string(error.what()));
  }
}

void ShowProductMenu(CommandHost& host, CommandPorts& ports) {
  MenuState& menus = ports.menus;
  menus.productButtonPressed = true;
  host.RedrawProductButton();
  try {
    const int chosen = menus.productMenu != nullptr ? host.Popup(*menus.productMenu) : 0;
    if (chosen != 0) OpenMenuLink(menus.productMenu->WebLink(chosen), host, ports);
  } catch (const std::exception& error) {
    ports.log.DebugLog("(ShowProductMenu) Error: " + std::string(error.what()));
  }
  menus.productButtonPressed = false;
  host.RedrawProductButton();
}

}  // namespace tarnwick
