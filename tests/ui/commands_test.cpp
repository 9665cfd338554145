// The product menu's handler and the toolbar commands, over a host that
// records what the browser and the toolbar were asked to do.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "common/TestSupport.h"
#include "ui/ToolbarCommands.h"
#include "ui/mdlXMLMenu.h"

namespace tarnwick {
namespace {

class RecordingHost final : public CommandHost {
 public:
  explicit RecordingHost(MenuState& menus) : menus_(menus) {}
  std::string LocationURL() override { return location; }
  bool Navigate(std::string_view url, std::string_view targetFrame) override {
    calls.push_back("navigate " + std::string(targetFrame) + " " + std::string(url));
    return browserWorks;
  }
  int Popup(const cPopupMenu&) override {
    calls.push_back(std::string("popup, pressed ") + (menus_.productButtonPressed ? "yes" : "no"));
    return chosen;
  }
  void RedrawProductButton() override {
    calls.push_back(std::string("redraw ") + (menus_.productButtonPressed ? "pressed" : "released"));
  }
  void OpenAbout() override { calls.emplace_back("about"); }
  void OpenOptions() override { calls.emplace_back("options"); }
  void Uninstall(std::string_view commandLine) override { calls.push_back("uninstall " + std::string(commandLine)); }

  std::string location;
  int chosen = 0;
  bool browserWorks = true;
  std::vector<std::string> calls;

 private:
  MenuState& menus_;
};

struct CommandsTest : ::testing::Test {
  CommandsTest() {
    process.endpoints.server = "http://server.test";
    process.options.Debug = true;
  }
  // Chooses `link` from a product menu that offers it as item 2.
  std::vector<std::string> Choose(const std::string& link) {
    process.menus.productMenu =
        ParseXMLMenu("<menu><i href='first'>First</i><i href='" + link + "'>Chosen</i></menu>").menu;
    host.chosen = 2;
    host.calls.clear();
    ShowProductMenu(host, ports);
    return host.calls;
  }
  std::string Navigated(const std::string& link) {
    const auto calls = Choose(link);
    return calls.size() == 4 ? calls[2] : "(no navigation)";
  }

  testing::TestProcess t;
  ToolbarProcess& process = t.process;
  RecordingHost host{process.menus};
  CommandPorts ports = process.Commands();
};

TEST_F(CommandsTest, TheButtonIsPressedWhileTheMenuIsDownAndReleasedAfter) {
  const std::vector<std::string> nothingChosen = {"redraw pressed", "popup, pressed yes", "redraw released"};
  process.menus.productMenu = ParseXMLMenu("<menu><i href='a'>A</i></menu>").menu;
  ShowProductMenu(host, ports);
  EXPECT_EQ(host.calls, nothingChosen);
  EXPECT_FALSE(process.menus.productButtonPressed);

  EXPECT_EQ(Choose("http://site.test/a b"),
            (std::vector<std::string>{"redraw pressed", "popup, pressed yes", "navigate _top http://site.test/a b",
                                      "redraw released"}));
}

TEST_F(CommandsTest, OnlyTheExactLowerCasePrefixMakesACommandAndTheCommandIsLowered) {
  EXPECT_EQ(Choose("tarnwicktoolbar:About")[2], "about");
  EXPECT_EQ(Choose("tarnwicktoolbar:OPTIONS")[2], "options");
  EXPECT_EQ(Navigated("TARNWICKTOOLBAR:about"), "navigate _top TARNWICKTOOLBAR:about");
  EXPECT_EQ(Navigated("tarnwicktoolbar"), "navigate _top tarnwicktoolbar");
  EXPECT_TRUE(t.ui.shown.empty());

  EXPECT_EQ(Choose("tarnwicktoolbar:Foo").size(), 3u);
  ASSERT_EQ(t.ui.shown.size(), 1u);
  EXPECT_EQ(t.ui.shown[0].text, "The foo command is not supported by this version of the Tarnwick Toolbar.");
  Choose("tarnwicktoolbar:");
  EXPECT_EQ(t.ui.shown.back().text, "The  command is not supported by this version of the Tarnwick Toolbar.");
}

TEST_F(CommandsTest, ReportUrlEscapesOnlyPercentAfterTheQueryAndAmpersandEverywhere) {
  host.location = "a.b/x?q=5%&r=1";
  EXPECT_EQ(Navigated("tarnwicktoolbar:report_url"),
            "navigate _top http://server.test/report_url?url=a.b/x?q=5%25%26r=1");
  host.location = "a.b/%7e";
  EXPECT_EQ(Navigated("tarnwicktoolbar:report_url"), "navigate _top http://server.test/report_url?url=a.b/%7e");
  EXPECT_EQ(ReportURLAddress("http://s.test", "h.test/a%20&b?c=%41?d#e f"),
            "http://s.test/report_url?url=h.test/a%20%26b?c=%2541?d#e f");
}

TEST_F(CommandsTest, TheReportPagesAndUninstall) {
  EXPECT_EQ(Navigated("tarnwicktoolbar:report_mistake"), "navigate _top http://server.test/report_mistake");
  EXPECT_EQ(Navigated("tarnwicktoolbar:report_bug"),
            "navigate _top http://server.test/bug_report?ua=Tarnwick Toolbar (v1.0.0)");
  const std::string uninstall = Choose("tarnwicktoolbar:uninstall")[2];
  EXPECT_TRUE(uninstall.starts_with("uninstall MsiExec.exe /I{")) << uninstall;
  EXPECT_EQ(uninstall.size(), std::string("uninstall MsiExec.exe /I{}").size() + 36);
}

TEST_F(CommandsTest, ARefusedNavigationIsLoggedAndTheButtonStillReleased) {
  host.browserWorks = false;
  const auto calls = Choose("http://site.test/");
  EXPECT_EQ(calls.back(), "redraw released");
  std::ifstream in(process.log.LogFilePath());
  const std::string log{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  EXPECT_NE(log.find("(ShowProductMenu) Error: the browser did not navigate to http://site.test/"), std::string::npos)
      << log;
}

TEST_F(CommandsTest, WithoutAProductMenuNothingDropsDown) {
  process.menus.productMenu.reset();
  ShowProductMenu(host, ports);
  EXPECT_EQ(host.calls, (std::vector<std::string>{"redraw pressed", "redraw released"}));
}

}  // namespace
}  // namespace tarnwick
