#include "ui/mdlXMLMenu.h"

#include <algorithm>
#include <pugixml.hpp>
#include <stdexcept>

#include "support/Text.h"

namespace tarnwick {
namespace {

constexpr std::string_view kCaptionBlanks{" \r\n\t\b\0", 6};

std::string Trim(std::string text) {
  const auto first = text.find_first_not_of(kCaptionBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kCaptionBlanks) - first + 1);
}

bool HasChildElements(const pugi::xml_node& entry) {
  return std::any_of(entry.children().begin(), entry.children().end(),
                     [](const pugi::xml_node& child) { return child.type() == pugi::node_element; });
}

// The element's own text: its text and CDATA children, not its descendants'.
std::string Caption(const pugi::xml_node& entry) {
  std::string text;
  for (const pugi::xml_node& child : entry.children()) {
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) text += child.value();
  }
  return Trim(Utf8ToAnsi(text));
}

class MenuGenerator {
 public:
  explicit MenuGenerator(std::vector<std::string>& errors) : errors_(errors) {}

  // Fills `menu` from the entry elements below `parent`. A submenu takes the
  // next number before its contents and, once filled, the number its next
  // sibling will carry: links are looked up by these numbers, so they must
  // stay exactly so.
  cPopupMenu& GenerateXMLMenu(const pugi::xml_node& parent, cPopupMenu& menu, int& ItemNumber, int depth) {
    try {
      for (const pugi::xml_node& entry : parent.children()) {
        if (entry.type() != pugi::node_element) continue;
        if (++entries_ > kMaxMenuEntries) {
          throw std::length_error("more than " + std::to_string(kMaxMenuEntries) + " menu entries");
        }
        if (HasChildElements(entry)) {
          if (depth >= kMaxMenuDepth) {
            throw std::length_error("submenus nested more than " + std::to_string(kMaxMenuDepth) + " deep");
          }
          ++ItemNumber;
          auto submenu = std::make_unique<cPopupMenu>();
          GenerateXMLMenu(entry, *submenu, ItemNumber, depth + 1);
          menu.AddSubMenu(Caption(entry), ItemNumber, std::move(submenu));
        } else {
          menu.AddMenuItem(Caption(entry), ItemNumber, Utf8ToAnsi(entry.attribute("href").value()));
          ++ItemNumber;
        }
      }
    } catch (const std::exception& error) {
      errors_.push_back("Error in GenerateXMLMenu: " + std::string(error.what()));
    }
    return menu;
  }

 private:
  std::vector<std::string>& errors_;
  int entries_ = 0;
};

}  // namespace

XMLMenuResult ParseXMLMenu(std::string_view text) {
  XMLMenuResult result;
  try {
    // The parser reads UTF-8; the file is Windows-1252, and so are the
    // captions and links that come back.
    const std::string utf8 = AnsiToUtf8(text);
    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer(utf8.data(), utf8.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed) {
      const auto line =
          1 + std::count(utf8.begin(), utf8.begin() + std::min<std::ptrdiff_t>(parsed.offset, utf8.size()), '\n');
      throw std::runtime_error(std::string(parsed.description()) + " (line " + std::to_string(line) + ")");
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "menu") return result;
    result.menu = std::make_unique<cPopupMenu>();
    int ItemNumber = 1;
    MenuGenerator(result.errors).GenerateXMLMenu(root, *result.menu, ItemNumber, 0);
  } catch (const std::exception& error) {
    result.errors.push_back("Error in XMLMenu: " + std::string(error.what()));
  }
  return result;
}

std::unique_ptr<cPopupMenu> XMLMenu(std::string_view text, Log& log) {
  XMLMenuResult result = ParseXMLMenu(text);
  for (const std::string& line : result.errors) log.DebugLog(line);
  return std::move(result.menu);
}

}  // namespace tarnwick
