// The menus' share of the process-wide state, and what building them needs
// of the process.
#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "net/mdlUpdate.h"
#include "settings/Endpoints.h"
#include "support/Log.h"
#include "support/Paths.h"
#include "ui/BitmapHeader.h"
#include "ui/cPopupMenu.h"

namespace tarnwick {

struct MenuState {
  std::unique_ptr<cPopupMenu> productMenu;  // from tarnwick.xml; null when none
  std::unique_ptr<cPopupMenu> clientMenu;   // from menu.xml; null when none
  // The product button's bitmap (productbutton.bmp, built into the program).
  BitmapSize productBitmap;
  // logo.bmp in the program folder, once it loaded; empty path when there is
  // no usable logo (the band then has no client menu button).
  std::filesystem::path clientLogoFile;
  BitmapSize clientLogo;
  // True while the product menu drops down from its button.
  bool productButtonPressed = false;
};

struct MenuPorts {
  Log& log;
  Paths& paths;
  const Endpoints& endpoints;
  mdlUpdate& updates;
  std::string_view agent;  // AgentString, sent with every refresh
  MenuState& menus;
};

}  // namespace tarnwick
