// Building the menus as a toolbar does: the menu files and the logo compared
// with the server's hashes, refreshed when they differ, and read again.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>

#include "NetFixture.h"
#include "settings/mdlRegistry.h"
#include "support/CMD5.h"
#include "support/Files.h"
#include "support/Signatures.h"
#include "support/Text.h"
#include "ui/ToolbarCommands.h"
#include "ui/mdlBitmapMenu.h"
#include "ui/mdlClientBitmapMenu.h"

namespace tarnwick::testing {
namespace {

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

const RefreshEntry& Row(std::string_view file) {
  for (const auto& row : MenuRefreshTable()) {
    if (row.file == file) return row;
  }
  throw std::logic_error("no row for " + std::string(file));
}

struct MenuRefreshTest : NetFixture {
  MenuRefreshTest() {
    endpoints.server = endpoints.site = server.Base();
    served = {{"tarnwick.xml", "<menu><i href='<!SITE>/help/'>Help</i></menu>"},
              {"menu.xml", "<menu><i href='<!SITE>/x'>Client</i></menu>"},
              {"logo.bmp", Slurp(TARNWICK_DATA "/logo.bmp")}};
  }

  Reply Answer(const Request& request) {
    if (request.target.starts_with("/file_hashes")) {
      std::string reply;
      for (const auto& [name, content] : served) reply += name + "=" + UpperAscii(CMD5().MD5(content)) + "\r\n";
      return Reply::Http(200, "OK", reply);
    }
    if (request.target.starts_with("/check_update/")) {
      return request.target.ends_with(".sig") ? checkUpdateSignature : checkUpdate;
    }
    const auto file = served.find(request.target.substr(std::string("/updates/").size()));
    if (!request.target.starts_with("/updates/") || file == served.end()) return Reply::Http(404, "Not Found", "");
    return Reply::Http(200, "OK", file->second, {"Last-Modified: " + lastModified});
  }

  // A toolbar being built: the hash request, then both menus.
  void Build() {
    std::string list;
    for (const auto file : HashListFiles()) list += (list.empty() ? "" : "\r\n") + std::string(file);
    updater.GetFileHashes(list);
    InitialiseBitmapMenu(menuPorts);
    InitialiseClientBitmapMenu(menuPorts);
  }
  void Local(const std::string& name, const std::string& content) { WriteFile(log, paths.program / name, content); }
  void LocalAsServed() {
    for (const auto& [name, content] : served) Local(name, content);
  }
  std::vector<std::string> Fetched() {
    std::vector<std::string> targets;
    for (const auto& request : server.Requests()) {
      if (request.target.starts_with("/updates/")) targets.push_back(request.target.substr(9));
    }
    return targets;
  }
  std::string Stored(std::string_view key, std::string_view name) {
    return ToText(mdlRegistry::GetSetting(*store, key, name, std::string("<absent>")));
  }

  std::map<std::string, std::string> served;
  std::string lastModified = "Sun, 22 Nov 2026 10:00:00 GMT";
  Reply checkUpdate = Reply::Http(404, "Not Found", "");
  Reply checkUpdateSignature = Reply::Http(404, "Not Found", "");
  LoopbackServer server{[this](const Request& request) { return Answer(request); }};
  std::unique_ptr<Shell> shell = MakePlatformShell();
  mdlUpdate updater{ports, http, *shell};
  MenuState menus;
  MenuPorts menuPorts{log, paths, endpoints, updater, "agent", menus};
};

TEST_F(MenuRefreshTest, CurrentFilesAreUsedAsTheyAreAndOnlyTheProductMenuGetsTheServer) {
  LocalAsServed();
  Build();
  EXPECT_TRUE(Fetched().empty());
  ASSERT_TRUE(menus.productMenu && menus.clientMenu);
  EXPECT_EQ(menus.productMenu->WebLink(1), server.Base() + "/help/");
  EXPECT_EQ(menus.clientMenu->WebLink(1), "<!SITE>/x");
  EXPECT_EQ(menus.productBitmap.width, 24);
  EXPECT_EQ(menus.clientLogoFile, paths.program / "logo.bmp");
  EXPECT_EQ(menus.clientLogo.width, 48);
  EXPECT_EQ(menus.clientLogo.height, 16);
}

TEST_F(MenuRefreshTest, AFileThatDiffersIsFetchedUnderItsOwnRowAndReadAgain) {
  LocalAsServed();
  Local("tarnwick.xml", "<menu><i href='old'>Old</i></menu>");
  Local("logo.bmp", "not the logo");
  Build();
  EXPECT_EQ(Fetched(), (std::vector<std::string>{"tarnwick.xml", "logo.bmp"}));
  EXPECT_EQ(menus.productMenu->Entries()[0].caption, "Help");
  EXPECT_EQ(menus.clientLogo.width, 48);
  for (const char* file : {"tarnwick.xml", "logo.bmp"}) {
    const RefreshEntry& row = Row(file);
    EXPECT_NE(Stored(mdlRegistry::kSettingsKey, row.lastCheckedName), "<absent>") << file;
    if (!row.lastModifiedKey.empty()) {
      EXPECT_EQ(Stored(row.lastModifiedKey, "LastModified"), lastModified) << file;
    }
  }
  EXPECT_EQ(Stored(mdlRegistry::kSettingsKey, Row("menu.xml").lastCheckedName), "<absent>");
  const auto requests = server.Requests();
  const auto logoRequest =
      std::find_if(requests.begin(), requests.end(), [](const Request& r) { return r.target == "/updates/logo.bmp"; });
  EXPECT_EQ(logoRequest->Header("User-Agent"), "agent");
}

TEST_F(MenuRefreshTest, MissingFilesAreNotFetchedAndGiveNoMenu) {
  Build();
  EXPECT_TRUE(Fetched().empty());
  EXPECT_FALSE(menus.productMenu);
  EXPECT_FALSE(menus.clientMenu);
  EXPECT_TRUE(menus.clientLogoFile.empty());
  EXPECT_TRUE(Logged("Error in XMLMenu: "));
  EXPECT_FALSE(Logged("(InitialiseClientBitmapMenu) Error"));
  EXPECT_EQ(menus.productBitmap.height, 16);  // the button has its bitmap all the same
}

TEST_F(MenuRefreshTest, ABrokenLogoGivesNoLogoButTheMenuStays) {
  served["logo.bmp"] = served["logo.bmp"].substr(0, 300);
  LocalAsServed();
  Local("logo.bmp", "stale");
  Build();
  EXPECT_TRUE(menus.clientMenu);
  EXPECT_TRUE(menus.clientLogoFile.empty());
  EXPECT_TRUE(Logged("(InitialiseClientBitmapMenu) Error: logo.bmp cannot be shown: truncated pixel data"));
}

TEST_F(MenuRefreshTest, AFailingServerLeavesTheLocalFilesInUse) {
  Local("tarnwick.xml", "<menu><i href='<!SITE>/kept'>Kept</i></menu>");
  served.clear();  // lists no hashes and serves nothing
  Build();
  EXPECT_EQ(Fetched(), std::vector<std::string>{"tarnwick.xml"});
  ASSERT_TRUE(menus.productMenu);
  EXPECT_EQ(menus.productMenu->WebLink(1), server.Base() + "/kept");
}

TEST_F(MenuRefreshTest, CheckUpdateSaysSoWhenThereIsNoUpdate) {
  struct NoBrowser final : CommandHost {
    std::string LocationURL() override { return {}; }
    bool Navigate(std::string_view, std::string_view) override { return false; }
    int Popup(const cPopupMenu&) override { return 0; }
    void RedrawProductButton() override {}
    void OpenAbout() override {}
    void OpenOptions() override {}
    void Uninstall(std::string_view) override {}
  } host;
  CommandPorts commands{log, ui, updater, endpoints, "agent", "Tarnwick Toolbar", menus};
  OpenMenuLink("tarnwicktoolbar:check_update", host, commands);
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].text, "There are no updates available for the Tarnwick Toolbar.");

  // A newer program, signed with a key the toolbar is told to trust.
  const auto keys = MakeKeyPair();
  ASSERT_TRUE(keys);
  std::ofstream(dir / "update.pub") << KeyToHex(keys->publicKey);
  mdlRegistry::SaveSetting(*store, mdlRegistry::kSettingsKey, "UpdatePublicKeyFile", (dir / "update.pub").string(),
                           kRegSz);
  checkUpdate = Reply::Http(200, "OK", "new program");
  checkUpdateSignature = Reply::Http(200, "OK", SignDetached("new program", keys->secretKey));
  ui.answers = {vbNo};
  OpenMenuLink("tarnwicktoolbar:check_update", host, commands);  // forced: the interval does not hold it back
  ASSERT_EQ(ui.shown.size(), 2u);
  EXPECT_EQ(ui.shown[1].title, "Update available");
}

}  // namespace
}  // namespace tarnwick::testing
