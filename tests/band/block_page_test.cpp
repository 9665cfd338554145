// The block page and its logo as the program carries them, and registering
// the page as about:PhishingSite.
#include <gtest/gtest.h>

#include "band/BlockPage.h"
#include "common/TestSupport.h"
#include "settings/mdlRegistry.h"
#include "support/Files.h"

namespace tarnwick::testing {
namespace {

TEST(BlockPageTest, ThePageHasEveryPartInOrder) {
  const auto page = BandResource({"http://server.example", "https://site.example"}, "PhishingSite.htm");
  ASSERT_TRUE(page);
  const char* parts[] = {
      R"(<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 3.2 Final//EN">)",
      R"(charset=windows-1252)",
      R"(<title>Phishing Site Blocked</title>)",
      R"(a:link {font:8pt/11pt Verdana; color:red})",
      R"(a:visited {font:8pt/11pt Verdana; color:#4e4e4e})",
      R"(<body bgcolor="white">)",
      R"(<table width="500" cellpadding="3" cellspacing="5">)",
      R"(<td id="tableProps")",
      R"(<img id="logoImg" src="logo.gif" align="middle")",
      R"(<span id="errortype" style="font:13pt/15pt Verdana; color:black">&nbsp;&nbsp;Phishing Site Blocked</span>)",
      R"(<td id="tablePropsWidth" colspan="2"><font style="font:8pt/11pt Verdana; color:black">)"
      R"(This phishing site has been blocked by the Tarnwick Toolbar.</font>)",
      R"(<td id="tablePropsWidth2" colspan="2">)",
      R"(<font id="LID1")",
      R"(<hr color="#C0C0C0" noshade>)",
      R"(<p id="LID2">Please try the following:</p>)",
      R"(<ul>)",
      R"(<li id="list1">If you believe this site has been blocked in error, please )"
      R"(<a href="https://site.example/report_mistake">report it</a>.</li>)",
      R"(<p></p>)",
      R"(<h2 id="ietext" style="font:8pt/11pt Verdana; color:black">Phishing Site Blocked<br>Tarnwick Toolbar</h2>)",
  };
  std::size_t at = 0;
  for (const char* part : parts) {
    const auto found = page->find(part, at);
    ASSERT_NE(found, std::string::npos) << "missing, or out of order: " << part;
    at = found;
  }
  EXPECT_EQ(page->find("<script"), std::string::npos);
  EXPECT_EQ(page->find("{{"), std::string::npos);
}

TEST(BlockPageTest, TheLogoIsAGifBesideThePage) {
  const auto logo = BandResource({}, "LOGO.GIF");
  ASSERT_TRUE(logo);
  EXPECT_EQ(logo->substr(0, 6), "GIF89a");
  EXPECT_EQ(logo->back(), ';') << "a GIF ends with its trailer";
  EXPECT_EQ(BandResource({}, "logo.bmp"), std::nullopt);
}

TEST(BlockPageTest, RegisterAboutURLPointsAboutPhishingSiteAtThePage) {
  TestProcess t;
  std::unique_ptr<RegistryKey> key;
  ASSERT_EQ(t.process.settings->CreateKey(Root::LocalMachine, kAboutURLsKey, key), kErrorSuccess);  // the browser's
  RegisterAboutURL(t.process);
  ASSERT_EQ(t.process.settings->OpenKey(Root::LocalMachine, kAboutURLsKey, Access::Read, key), kErrorSuccess);
  SettingValue value;
  ASSERT_EQ(mdlRegistry::ReadValue(*key, "PhishingSite", value), kErrorSuccess);
  EXPECT_EQ(value, SettingValue(std::string("res://twtb.dll/phishingsite.htm")));
  EXPECT_TRUE(t.ui.shown.empty());
  mdlRegistry::DeleteValue(*t.process.settings, Root::LocalMachine, kAboutURLsKey, "PhishingSite");
}

}  // namespace
}  // namespace tarnwick::testing
