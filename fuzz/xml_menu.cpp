// A menu file (tarnwick.xml, menu.xml) as the server sends it.
#include "FuzzSupport.h"
#include "ui/mdlXMLMenu.h"

namespace {

struct Walk {
  int entries = 0;
  int lastItem = 0;
  int deepest = 0;
};

// Items are numbered in document order, each after the one before it, and
// found by their number.
void Check(const tarnwick::cPopupMenu& root, const tarnwick::cPopupMenu& menu, int depth, Walk& walk) {
  walk.deepest = std::max(walk.deepest, depth);
  for (const auto& entry : menu.Entries()) {
    ++walk.entries;
    if (entry.submenu) {
      Check(root, *entry.submenu, depth + 1, walk);
      continue;
    }
    if (entry.number <= walk.lastItem) tarnwick::fuzz::Broken("items are numbered in order", entry.caption);
    walk.lastItem = entry.number;
    if (root.WebLink(entry.number) != entry.link) tarnwick::fuzz::Broken("an item's number finds its link");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const XMLMenuResult result = ParseXMLMenu(fuzz::AsText(data, size));
  if (!result.menu) return 0;
  Walk walk;
  Check(*result.menu, *result.menu, 0, walk);
  if (walk.entries > kMaxMenuEntries || walk.deepest > kMaxMenuDepth) fuzz::Broken("menus stay within bounds");
  return 0;
}
