#include "ui/cPopupMenu.h"

namespace tarnwick {

void cPopupMenu::AddMenuItem(std::string caption, int number, std::string link) {
  entries_.push_back({std::move(caption), number, std::move(link), nullptr});
}

void cPopupMenu::AddSubMenu(std::string caption, int number, std::unique_ptr<cPopupMenu> submenu) {
  entries_.push_back({std::move(caption), number, {}, std::move(submenu)});
}

std::string cPopupMenu::WebLink(int number) const {
  const Entry* item = FindItem(number);
  return item != nullptr ? item->link : std::string();
}

const cPopupMenu::Entry* cPopupMenu::FindItem(int number) const {
  for (const Entry& entry : entries_) {
    if (entry.submenu == nullptr) {
      if (entry.number == number) return &entry;
    } else if (const Entry* found = entry.submenu->FindItem(number)) {
      return found;
    }
  }
  return nullptr;
}

}  // namespace tarnwick
