// mdlBitmapMenu: the product menu (tarnwick.xml) and its button's bitmap.
#pragma once

#include <string_view>

#include "ui/MenuState.h"

namespace tarnwick {

// The product button's bitmap (productbutton.bmp) as built into the program.
std::string_view ProductButtonBitmap();

// Refreshes tarnwick.xml when the server's hash differs, replaces "<!SITE>" by
// the server's base address, builds ports.menus.productMenu and reads the
// product button bitmap's size.
void InitialiseBitmapMenu(MenuPorts& ports);

}  // namespace tarnwick
