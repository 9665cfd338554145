// cPopupMenu: a pop-up menu as data, the way the menu files describe it. Each
// entry is an item with a caption, a number and a link, or a submenu with a
// caption, a number and entries of its own. A host shows it (TrackPopupMenu,
// a page, a terminal) and reports the number of the item chosen.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace tarnwick {

class cPopupMenu {
 public:
  struct Entry {
    std::string caption;
    int number = 0;
    std::string link;                     // items only
    std::unique_ptr<cPopupMenu> submenu;  // null for an item
  };

  void AddMenuItem(std::string caption, int number, std::string link);
  void AddSubMenu(std::string caption, int number, std::unique_ptr<cPopupMenu> submenu);

  // The link of the item carrying `number`, in this menu or any submenu; empty
  // when no item carries it (a submenu's number has no link of its own).
  std::string WebLink(int number) const;

  const std::vector<Entry>& Entries() const { return entries_; }

 private:
  const Entry* FindItem(int number) const;

  std::vector<Entry> entries_;
};

}  // namespace tarnwick
