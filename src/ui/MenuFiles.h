// The menu files and the logo in the program folder, kept current from the
// server by the rows of the updater's menu refresh table.
#pragma once

#include <string>
#include <string_view>

#include "ui/MenuState.h"

namespace tarnwick {

// Reads `file` (tarnwick.xml, menu.xml or logo.bmp) from the program folder.
// When it was read and its hash differs from the server's, refreshes it by its
// row of the menu refresh table and reads it again. A missing or empty file
// is left alone.
std::string ReadAndRefreshMenuFile(MenuPorts& ports, std::string_view file);

}  // namespace tarnwick
