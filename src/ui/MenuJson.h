// A menu as JSON (UTF-8), for hosts that hand it to a page or print it:
// the command line's --json and the extension's native messages.
#pragma once

#include <nlohmann/json.hpp>

#include "ui/cPopupMenu.h"

namespace tarnwick {

// A nested array: {"number", "caption", "link"} per item, {"number",
// "caption", "items": [...]} per submenu.
nlohmann::json MenuJson(const cPopupMenu& menu);

}  // namespace tarnwick
