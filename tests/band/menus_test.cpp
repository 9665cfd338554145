// The band's menus: dropped from their buttons, an item opened in the top
// frame, a toolbar command run through the band's browser and dialogs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BandFixture.h"

namespace tarnwick::testing {
namespace {

using ::testing::ElementsAre;

class BandMenusTest : public BandFixture {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Start().toolbarCreated);
    windows.calls.clear();
    browser.calls.clear();
  }
  // The number of the product menu's item with that link.
  int ProductItem(const std::string& link) {
    for (int number = 1; number < 100; ++number) {
      if (process.menus.productMenu->WebLink(number) == link) return number;
    }
    return 0;
  }
};

TEST_F(BandMenusTest, TheProductMenuDropsFromItsPressedButtonAndOpensTheItemChosen) {
  windows.choice = ProductItem(server.Url("/help/faq/index.html"));
  band.ProductMenuClicked();
  EXPECT_THAT(windows.calls, ElementsAre("redraw 3 pressed", "popup from 3", "redraw 3"));
  EXPECT_EQ(windows.popped, process.menus.productMenu.get());
  EXPECT_THAT(browser.calls, ElementsAre("Navigate " + server.Url("/help/faq/index.html") + " target _top"));
}

TEST_F(BandMenusTest, NothingChosenChangesNothing) {
  band.ProductMenuClicked();
  band.ClientMenuClicked();
  EXPECT_TRUE(browser.calls.empty());
  EXPECT_THAT(windows.calls, ElementsAre("redraw 3 pressed", "popup from 3", "redraw 3", "popup from 4"));
}

TEST_F(BandMenusTest, CommandsReachTheBandsBrowserAndDialogs) {
  browser.location = "http://shop.example/cart?id=5%&x=1";
  windows.choice = ProductItem("tarnwicktoolbar:report_url");
  band.ProductMenuClicked();
  EXPECT_THAT(
      browser.calls,
      ElementsAre("Navigate " + server.Url("/report_url?url=http://shop.example/cart?id=5%25%26x=1") + " target _top"));

  windows.choice = ProductItem("tarnwicktoolbar:about");
  band.ProductMenuClicked();
  EXPECT_EQ(windows.aboutVersion, "Version 1.0.0 (20070813)");

  windows.choice = ProductItem("tarnwicktoolbar:uninstall");
  band.ProductMenuClicked();
  EXPECT_THAT(windows.calls, ::testing::Contains(::testing::StartsWith("uninstall MsiExec.exe /I{")));
}

TEST_F(BandMenusTest, TheOptionsDialogWritesTheSettingsAndTheBandUsesThemAtOnce) {
  windows.optionsAction = [](frmOptions& form) {
    form.SetValue("cbBlockPopups", 0);
    form.Press("cbOK");
  };
  windows.choice = ProductItem("tarnwicktoolbar:options");
  band.ProductMenuClicked();
  EXPECT_EQ(Setting("BlockPopups"), "0");
  EXPECT_FALSE(process.options.BlockPopups);
  bool cancel = false;
  EXPECT_EQ(band.guard().m_oIE_NewWindow2(cancel).decision, PopupDecision::Allowed);
}

TEST_F(BandMenusTest, TheClientMenuOpensItsLinksAsWritten) {
  windows.choice = 1;
  band.ClientMenuClicked();
  EXPECT_EQ(windows.popped, process.menus.clientMenu.get());
  ASSERT_EQ(browser.navigations.size(), 1u);
  EXPECT_EQ(browser.navigations[0].url, process.menus.clientMenu->WebLink(1));
}

}  // namespace
}  // namespace tarnwick::testing
