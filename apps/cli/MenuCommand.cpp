// tarnwick menu [product|client] [--json] [--server URL]: builds the menus as
// a toolbar does when it is created (refreshing the menu files whose hashes
// differ from the server's) and prints them.
#include <iostream>

#include "Cli.h"
#include "band/StartUp.h"
#include "support/Text.h"
#include "ui/MenuJson.h"
#include "ui/mdlBitmapMenu.h"
#include "ui/mdlClientBitmapMenu.h"

namespace tarnwick::cli {
namespace {

constexpr const char* kUsage = "usage: tarnwick menu [product|client] [--json] [--server URL]\n";

void PrintEntries(const cPopupMenu& menu, int indent) {
  for (const cPopupMenu::Entry& entry : menu.Entries()) {
    std::cout << std::string(static_cast<std::size_t>(indent), ' ') << entry.number << "  "
              << AnsiToUtf8(entry.caption);
    if (entry.submenu != nullptr) {
      std::cout << " >\n";
      PrintEntries(*entry.submenu, indent + 4);
    } else {
      std::cout << "  -> " << AnsiToUtf8(entry.link) << '\n';
    }
  }
}

void PrintMenu(const char* heading, const cPopupMenu* menu) {
  std::cout << heading << ":";
  if (menu == nullptr) {
    std::cout << " none (the file is missing or no menu; see the debug log)\n";
    return;
  }
  std::cout << '\n';
  PrintEntries(*menu, 2);
}

std::string SizeText(const BitmapSize& size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

}  // namespace

int RunMenu(std::vector<std::string> args) {
  const bool json = TakeFlag(args, "--json");
  const std::string server = TakeOption(args, "--server");
  const std::string which = args.empty() ? "" : args[0];
  if (args.size() > 1 || (!which.empty() && which != "product" && which != "client")) {
    std::cerr << kUsage;
    return kExitError;
  }
  const bool product = which != "client";
  const bool client = which != "product";

  Host host(server);
  if (!host.StartTransfers()) return kExitError;
  ToolbarProcess& process = host.process();
  RequestFileHashes(process);
  MenuPorts ports = process.Menus();
  if (product) InitialiseBitmapMenu(ports);
  if (client) InitialiseClientBitmapMenu(ports);
  const MenuState& menus = process.menus;

  if (json) {
    nlohmann::json out = nlohmann::json::object();
    const auto menuJson = [](const auto& menu) { return menu ? MenuJson(*menu) : nlohmann::json(nullptr); };
    if (product) out["product"] = menuJson(menus.productMenu);
    if (client) out["client"] = menuJson(menus.clientMenu);
    std::cout << out.dump() << '\n';
  } else {
    if (product) {
      PrintMenu(("product menu (tarnwick.xml, button " + SizeText(menus.productBitmap) + ")").c_str(),
                menus.productMenu.get());
    }
    if (client) {
      const std::string logo = menus.clientLogoFile.empty() ? "no logo" : "logo.bmp " + SizeText(menus.clientLogo);
      PrintMenu(("client menu (menu.xml, " + logo + ")").c_str(), menus.clientMenu.get());
    }
  }
  const bool missing = (product && !menus.productMenu) || (client && !menus.clientMenu);
  return missing ? kExitFound : kExitOk;
}

}  // namespace tarnwick::cli
