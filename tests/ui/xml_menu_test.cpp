// The menu file format: numbering, captions, links, and files that are not
// what they claim to be.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

#include "ui/mdlXMLMenu.h"

namespace tarnwick {
namespace {

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// "caption=number" for each entry, submenus' entries in brackets after them.
std::string Outline(const cPopupMenu& menu) {
  std::string text;
  for (const auto& entry : menu.Entries()) {
    if (!text.empty()) text += " ";
    text += entry.caption + "=" + std::to_string(entry.number);
    if (entry.submenu) text += "[" + Outline(*entry.submenu) + "]";
  }
  return text;
}

void CollectLinks(const cPopupMenu& menu, std::set<std::string>& links) {
  for (const auto& entry : menu.Entries()) {
    if (entry.submenu) {
      CollectLinks(*entry.submenu, links);
    } else {
      links.insert(entry.link);
    }
  }
}

TEST(XMLMenuTest, ASubmenuSkipsANumberAndSharesItsOwnWithTheEntryAfterIt) {
  auto result =
      ParseXMLMenu("<menu><i href='a'>A</i><i href='b'>B</i><s>S<i href='c'>C</i></s><i href='d'>D</i></menu>");
  ASSERT_TRUE(result.menu);
  EXPECT_EQ(Outline(*result.menu), "A=1 B=2 S=5[C=4] D=5");
  EXPECT_EQ(result.menu->WebLink(4), "c");
  EXPECT_EQ(result.menu->WebLink(5), "d");  // the item, never the submenu
  EXPECT_EQ(result.menu->WebLink(3), "");
  EXPECT_TRUE(result.errors.empty());

  result = ParseXMLMenu("<menu><s>S<i href='a'>A</i></s><i href='b'>B</i></menu>");
  EXPECT_EQ(Outline(*result.menu), "S=3[A=2] B=3");
  EXPECT_EQ(result.menu->WebLink(1), "");
  EXPECT_EQ(result.menu->WebLink(3), "b");
}

TEST(XMLMenuTest, CaptionsLoseSurroundingWhiteSpaceAndEntriesMayBeAnyElement) {
  const auto result = ParseXMLMenu(
      "<?xml version='1.0'?>\r\n<menu>\r\n  <whatever href='x'>\r\n\t  Two words\r\n  </whatever>\r\n"
      "  <group>\n    Group <!-- note --><![CDATA[ & more ]]>\n    <item>No link</item>\n  </group>\n"
      "  <e href='caf&#233;'>Caf\xe9 &amp; &#8364;5</e>\n</menu>");
  ASSERT_TRUE(result.menu);
  const auto& entries = result.menu->Entries();
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].caption, "Two words");
  EXPECT_EQ(entries[1].caption, "Group  & more");
  EXPECT_EQ(entries[1].submenu->Entries()[0].link, "");
  // Windows-1252 text in and out; characters it lacks become '?'.
  EXPECT_EQ(entries[2].caption,
            "Caf\xe9 & \x80"
            "5");
  EXPECT_EQ(entries[2].link, "caf\xe9");
  EXPECT_EQ(ParseXMLMenu("<menu><i>&#x4e2d;</i></menu>").menu->Entries()[0].caption, "?");
}

TEST(XMLMenuTest, TextThatIsNoMenuGivesNoMenu) {
  auto result = ParseXMLMenu("this is not XML");
  EXPECT_FALSE(result.menu);
  ASSERT_EQ(result.errors.size(), 1u);
  EXPECT_TRUE(result.errors[0].starts_with("Error in XMLMenu: ")) << result.errors[0];

  result = ParseXMLMenu("<menu>\n<i href='a'>A</i>\n<i>unclosed\n</menu>");
  EXPECT_FALSE(result.menu);
  ASSERT_EQ(result.errors.size(), 1u);
  EXPECT_NE(result.errors[0].find("(line 4)"), std::string::npos) << result.errors[0];

  EXPECT_FALSE(ParseXMLMenu("").menu);
  result = ParseXMLMenu("<Menu><i href='a'>A</i></Menu>");  // names are case-sensitive
  EXPECT_FALSE(result.menu);
  EXPECT_TRUE(result.errors.empty());
  EXPECT_FALSE(ParseXMLMenu("<html><menu><i>A</i></menu></html>").menu);
}

TEST(XMLMenuTest, DeepNestingKeepsTheMenuBuiltSoFar) {
  constexpr int kLevels = 100000;
  std::string text = "<menu><i href='first'>First</i>";
  for (int i = 0; i < kLevels; ++i) text += "<s>S";
  text += "<i href='deep'>Deep</i>";
  for (int i = 0; i < kLevels; ++i) text += "</s>";
  text += "<i href='last'>Last</i></menu>";

  const auto result = ParseXMLMenu(text);
  ASSERT_TRUE(result.menu);
  ASSERT_EQ(result.errors.size(), 1u);
  EXPECT_EQ(result.errors[0], "Error in GenerateXMLMenu: submenus nested more than 64 deep");
  const auto& entries = result.menu->Entries();
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[2].caption, "Last");
  int depth = 0;
  for (const cPopupMenu* menu = entries[1].submenu.get(); menu != nullptr;
       menu = menu->Entries().empty() ? nullptr : menu->Entries()[0].submenu.get()) {
    ++depth;
  }
  EXPECT_EQ(depth, kMaxMenuDepth);
  EXPECT_EQ(result.menu->WebLink(entries[2].number), "last");
}

TEST(XMLMenuTest, AHugeFileStopsAtTheEntryLimit) {
  std::string text = "<menu>";
  while (text.size() < 8 * 1024 * 1024) text += "<item href='http://site.example/page'>A page of the site</item>\n";
  text += "</menu>";
  const auto result = ParseXMLMenu(text);
  ASSERT_TRUE(result.menu);
  EXPECT_EQ(result.menu->Entries().size(), static_cast<std::size_t>(kMaxMenuEntries));
  ASSERT_EQ(result.errors.size(), 1u);
  EXPECT_EQ(result.errors[0], "Error in GenerateXMLMenu: more than 10000 menu entries");
}

TEST(XMLMenuTest, TheBundledProductMenuOffersEveryCommandAndTheReportPages) {
  std::string text = Slurp(TARNWICK_DATA "/tarnwick.xml");
  for (auto at = text.find("<!SITE>"); at != std::string::npos; at = text.find("<!SITE>")) {
    text.replace(at, 7, "http://server.test");
  }
  const auto result = ParseXMLMenu(text);
  ASSERT_TRUE(result.menu) << (result.errors.empty() ? "" : result.errors[0]);
  std::set<std::string> links;
  CollectLinks(*result.menu, links);
  for (const char* command :
       {"about", "options", "report_url", "report_mistake", "report_bug", "check_update", "uninstall"}) {
    EXPECT_TRUE(links.contains(std::string("tarnwicktoolbar:") + command)) << command;
  }
  EXPECT_TRUE(links.contains("http://server.test/help/faq/index.html#riskrating"));
  EXPECT_TRUE(ParseXMLMenu(Slurp(TARNWICK_DATA "/menu.xml")).menu);
}

}  // namespace
}  // namespace tarnwick
