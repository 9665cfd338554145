// The product menu's handler and the commands of the toolbar's own
// pseudo-protocol, "tarnwicktoolbar:<command>".
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "net/mdlUpdate.h"
#include "settings/Endpoints.h"
#include "support/Log.h"
#include "ui/CommandHost.h"
#include "ui/MenuState.h"
#include "ui/Ui.h"

namespace tarnwick {

inline constexpr std::string_view kCommandProtocol = "tarnwicktoolbar:";

// What the commands need of the process.
struct CommandPorts {
  Log& log;
  Ui& ui;
  mdlUpdate& updates;  // the forced self-update check
  const Endpoints& endpoints;
  std::string_view agent;            // AgentString, for the bug report
  std::string_view fileDescription;  // "Tarnwick Toolbar"
  MenuState& menus;
};

// The command a link names, lower-cased, when it starts with exactly
// "tarnwicktoolbar:" (case matters there); nullopt for an ordinary link.
std::optional<std::string> ToolbarCommand(std::string_view link);

// The address report_url sends the browser to for the page at `location`.
// Its escaping is deliberately partial, as the server's form expects: "%"
// becomes "%25" only from the first "?" on, "&" becomes "%26" everywhere,
// nothing else changes.
std::string ReportURLAddress(std::string_view server, std::string_view location);

// "MsiExec.exe /I{<product code>}": the installer's maintenance of the toolbar.
std::string UninstallCommandLine();

// Acts on a menu link: a command runs, anything else opens in the top frame.
// A browser that refuses to navigate is logged as an error of the handler.
void OpenMenuLink(std::string_view link, CommandHost& host, CommandPorts& ports);

// Drops the product menu down from its pressed button and acts on the item
// chosen, then releases the button.
void ShowProductMenu(CommandHost& host, CommandPorts& ports);

}  // namespace tarnwick
