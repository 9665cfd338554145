// mdlClientBitmapMenu: the client menu (menu.xml) behind its logo (logo.bmp).
#pragma once

#include "ui/MenuState.h"

namespace tarnwick {

// Refreshes menu.xml and logo.bmp when the server's hashes differ, builds
// ports.menus.clientMenu (links stand as written) and, when logo.bmp is a
// bitmap a window can show, records its file and size.
void InitialiseClientBitmapMenu(MenuPorts& ports);

}  // namespace tarnwick
