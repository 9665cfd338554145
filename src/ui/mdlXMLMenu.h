// mdlXMLMenu: turns the text of a menu file into a cPopupMenu.
//
// The format: the document element is "menu"; each child element is an
// entry, in document order, whatever its name. An entry with child elements
// is a submenu captioned by its own text; an entry without is an item
// captioned by its text and linked to its "href" attribute. Captions lose
// leading and trailing blanks, line ends, tabs, backspaces and NULs.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/Log.h"
#include "ui/cPopupMenu.h"

namespace tarnwick {

// Bounds that keep a hostile file from exhausting the stack or the menu: a
// submenu deeper than this, or an entry past the total, is an error of the
// routine building it, which keeps what it built so far.
inline constexpr int kMaxMenuDepth = 64;
inline constexpr int kMaxMenuEntries = 10000;

struct XMLMenuResult {
  // Null when the text is no XML or its document element is not "menu".
  std::unique_ptr<cPopupMenu> menu;
  // "Error in XMLMenu: ..." and "Error in GenerateXMLMenu: ..." lines.
  std::vector<std::string> errors;
};

// Parses a menu file (Windows-1252 text) and numbers its entries from 1 as
// GenerateXMLMenu does. Never throws; a plain function of the text, so it can
// be fuzzed on its own.
XMLMenuResult ParseXMLMenu(std::string_view text);

// ParseXMLMenu, with its error lines written to the debug log.
std::unique_ptr<cPopupMenu> XMLMenu(std::string_view text, Log& log);

}  // namespace tarnwick
