#include "ui/MenuJson.h"

#include "support/Text.h"

namespace tarnwick {

nlohmann::json MenuJson(const cPopupMenu& menu) {
  nlohmann::json entries = nlohmann::json::array();
  for (const cPopupMenu::Entry& entry : menu.Entries()) {
    nlohmann::json item = {{"number", entry.number}, {"caption", AnsiToUtf8(entry.caption)}};
    if (entry.submenu != nullptr) {
      item["items"] = MenuJson(*entry.submenu);
    } else {
      item["link"] = AnsiToUtf8(entry.link);
    }
    entries.push_back(std::move(item));
  }
  return entries;
}

}  // namespace tarnwick
