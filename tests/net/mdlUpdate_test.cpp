#include "NetFixture.h"
#include "settings/mdlRegistry.h"
#include "support/CMD5.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/Version.h"

namespace tarnwick::testing {
namespace {

using mdlRegistry::kSettingsKey;

struct UpdateTest : NetFixture {
  UpdateTest() { endpoints.server = endpoints.site = server.Base(); }

  Reply Answer(const Request& request) {
    if (request.target.starts_with("/file_hashes")) return Reply::Http(200, "OK", hashReply);
    if (request.target == "/updates/gone.dat") return Reply::Http(404, "Not Found", "");
    if (request.target == "/updates/broken.dat") return Reply::Http(500, "Internal Server Error", "");
    if (request.target == "/updates/slow.dat") {
      Reply reply;
      reply.stall = true;
      return reply;
    }
    if (!request.Header("If-Modified-Since").empty() && request.Header("If-Modified-Since") == lastModified) {
      return Reply::Http(304, "Not Modified", "");
    }
    if (request.target.starts_with("/check_update/")) return newVersion;
    return Reply::Http(200, "OK", "content of " + request.target, {"Last-Modified: " + lastModified});
  }

  std::int16_t Update(const std::string& file, std::int32_t interval, bool forced, const std::string& key = {}) {
    return updater.UpdateLocalFile(false, server.Base() + "/updates/" + file, file, "LastCheckedTest", interval,
                                   "agent", key, forced, "");
  }
  std::string Stored(std::string_view key, std::string_view name) {
    return ToText(mdlRegistry::GetSetting(*store, key, name, std::string("<absent>")));
  }
  std::string Program(const std::string& name) { return ReadFile(log, paths.program / name); }

  std::string hashReply;
  std::string lastModified = "Sun, 22 Nov 2026 10:00:00 GMT";
  Reply newVersion = Reply::Http(404, "Not Found", "");
  LoopbackServer server{[this](const Request& request) { return Answer(request); }};
  std::unique_ptr<Shell> shell = MakePlatformShell();
  mdlUpdate updater{ports, http, *shell};
};

TEST_F(UpdateTest, TheIntervalSkipsPresentFilesAndThePendingNamesOnly) {
  updater.SetLastChecked("LastCheckedTest");
  clock.offsetSeconds = 100;
  EXPECT_NEAR(updater.SecondsSinceLastChecked("LastCheckedTest"), 100, 1);

  WriteFile(log, paths.program / "xss.dat", "old");
  EXPECT_EQ(Update("xss.dat", 86400, false), 0);
  EXPECT_TRUE(Logged("(UpdateLocalFile) NOT updating"));
  EXPECT_EQ(Update("twtb.new", 86400, false), 0);
  EXPECT_TRUE(server.Requests().empty());

  EXPECT_EQ(Update("localblock.dat", 86400, false), 200);  // missing, so fetched although not due
  EXPECT_EQ(Program("localblock.dat"), "content of /updates/localblock.dat");
  EXPECT_TRUE(Logged("Downloaded localblock.dat from " + server.Base() + "/updates/localblock.dat"));
}

TEST_F(UpdateTest, ConditionalRequestsUseTheStoredLastModifiedUnlessForced) {
  const std::string key = std::string(kSettingsKey) + "\\Menus";
  EXPECT_EQ(Update("menu.xml", 0, false, key), 200);
  EXPECT_EQ(server.Requests().back().Header("If-Modified-Since"), "Thu, 1 Jan 1970 00:00:00 GMT");
  EXPECT_EQ(Stored(key, "LastModified"), lastModified);

  WriteFile(log, paths.program / "menu.xml", "kept");
  mdlRegistry::SaveSetting(*store, kSettingsKey, "LastCheckedTest", std::string("0"), kRegSz);
  EXPECT_EQ(Update("menu.xml", 0, false, key), 304);
  EXPECT_EQ(Program("menu.xml"), "kept");
  EXPECT_NE(Stored(kSettingsKey, "LastCheckedTest"), "0");  // a 304 is a completed check
  EXPECT_TRUE(Logged("Failed to download menu.xml (304: Not Modified)"));

  EXPECT_EQ(Update("menu.xml", 86400, true, key), 200);
  EXPECT_EQ(server.Requests().back().Header("If-Modified-Since"), "");
}

TEST_F(UpdateTest, OnlyCompletedChecksAreStamped) {
  options.ServerTimeout = 1;
  const std::pair<const char*, int> cases[] = {{"gone.dat", 404}, {"broken.dat", 500}, {"slow.dat", 504}};
  for (const auto& [file, status] : cases) {
    mdlRegistry::DeleteValue(*store, Root::CurrentUser, kSettingsKey, "LastCheckedTest");
    EXPECT_EQ(Update(file, 0, false), status) << file;
    EXPECT_EQ(Stored(kSettingsKey, "LastCheckedTest") != "<absent>", status == 404) << file;
    EXPECT_FALSE(FileExists(paths.program / file)) << file;
  }
}

TEST_F(UpdateTest, AFileThatCannotBeWrittenKeepsItsOldContent) {
  WriteFile(log, paths.program / "xss.dat", "old patterns");
  std::filesystem::create_directory(paths.program / (std::string("xss.dat") + kPartialSuffix));
  EXPECT_EQ(Update("xss.dat", 0, true), 0);
  EXPECT_EQ(Program("xss.dat"), "old patterns");
  EXPECT_TRUE(Logged("(UpdateLocalFile) Failed to write " + (paths.program / "xss.dat").string()));
}

TEST_F(UpdateTest, HashLinesCountOnlyWhenEndedByCrLf) {
  hashReply = "localblock.dat=ABC\r\nxss.dat=DEF=GHI\r\n";
  updater.GetFileHashes("localblock.dat\r\nxss.dat");
  EXPECT_EQ(server.Requests().back().target, "/file_hashes?file0=localblock.dat&file1=xss.dat");
  EXPECT_TRUE(updater.CheckServerMD5("ABC", "localblock.dat"));
  EXPECT_TRUE(updater.CheckServerMD5("DEF", "xss.dat"));  // a later "=" cuts the hash short
  EXPECT_FALSE(updater.CheckServerMD5("abc", "localblock.dat"));

  updater.FileHashes.clear();
  hashReply = "localblock.dat=ABC\r\nxss.dat=DEF";
  updater.GetFileHashes("localblock.dat\r\nxss.dat");
  EXPECT_TRUE(updater.CheckServerMD5("ABC", "localblock.dat"));
  EXPECT_FALSE(updater.CheckServerMD5("DEF", "xss.dat"));
}

TEST_F(UpdateTest, RefreshFetchesOnlyFilesWhoseHashDiffers) {
  WriteFile(log, paths.program / "localblock.dat", "\x80pattern");
  hashReply =
      "localblock.dat=" + UpperAscii(CMD5().MD5("\x80pattern")) + "\r\nxss.dat=" + LowerAscii(CMD5().MD5("")) + "\r\n";
  updater.GetFileHashes("localblock.dat\r\nxss.dat");
  const auto requests = server.Requests().size();
  EXPECT_EQ(updater.Refresh(StartupRefreshTable()[0], "agent"), std::nullopt);
  EXPECT_EQ(server.Requests().size(), requests);
  // A lower-case hash never matches: the file is fetched at every start.
  EXPECT_EQ(updater.Refresh(StartupRefreshTable()[1], "agent"), 200);
  // A new component lands beside the loaded one.
  EXPECT_EQ(updater.Refresh(StartupRefreshTable()[2], "agent"), 200);
  EXPECT_EQ(Program("pagefetch.new"), "content of /updates/pagefetch.dll");
  EXPECT_EQ(Program("pagefetch.dll"), "component");
}

TEST_F(UpdateTest, TheSwapMovesThePendingComponentIntoPlace) {
  WriteFile(log, paths.program / "pagefetch.new", "new");
  SwapPageFetch(ports);
  EXPECT_EQ(Program("pagefetch.dll"), "new");
  EXPECT_EQ(Program("pagefetch.old"), "component");
  EXPECT_FALSE(Logged("Deleted pagefetch.old"));
  EXPECT_TRUE(Logged("Renamed pagefetch.dll to pagefetch.old"));
  EXPECT_TRUE(Logged("Renamed pagefetch.new to pagefetch.dll"));

  WriteFile(log, paths.program / "pagefetch.new", "newer");
  std::filesystem::permissions(paths.program / "pagefetch.old", std::filesystem::perms::owner_read);
  SwapPageFetch(ports);
  EXPECT_TRUE(Logged("Deleted pagefetch.old"));
  EXPECT_EQ(Program("pagefetch.dll"), "newer");
  EXPECT_EQ(Program("pagefetch.old"), "new");
}

TEST_F(UpdateTest, ASwapThatFailsIsLoggedAndLeavesThePendingComponent) {
  std::filesystem::create_directories(paths.program / "pagefetch.old" / "busy");
  WriteFile(log, paths.program / "pagefetch.new", "new");
  SwapPageFetch(ports);
  EXPECT_TRUE(Logged("Unrecoverable error occurred while creating pagefetch object: "));
  EXPECT_EQ(Program("pagefetch.new"), "new");
  EXPECT_EQ(Program("pagefetch.dll"), "component");
}

TEST_F(UpdateTest, ARefusedUpdateOfferKeepsTheDownloadedProgram) {
  mdlRegistry::SaveSetting(*store, kSettingsKey, "GUID", std::string("0123456789ABCDEF0123456789ABCDEF"), kRegSz);
  options.DLLUpdateInterval = 86400;
  EXPECT_FALSE(updater.UpdateToolbarDLL(false));
  EXPECT_EQ(server.Requests().back().target,
            "/check_update/127/" + VersionText() + "/0123456789ABCDEF0123456789ABCDEF");
  EXPECT_TRUE(Logged("(UpdateToolbarDLL) DLL update failed with status 404"));

  newVersion = Reply::Http(200, "OK", "new program");
  Get(server.Base() + "/updates/xss.dat");  // leaves a 200 in the form
  const auto requests = server.Requests().size();
  EXPECT_FALSE(updater.UpdateToolbarDLL(false));  // the 404 stamped the check: not due again yet
  EXPECT_EQ(server.Requests().size(), requests);

  const auto marker = dir / "updater-ran";
  std::ofstream(paths.program / "updater.exe") << "#!/bin/sh\ntouch '" << marker.string() << "'\n";
  std::filesystem::permissions(paths.program / "updater.exe", std::filesystem::perms::owner_all);
  ui.answers = {vbNo};
  EXPECT_TRUE(updater.UpdateToolbarDLL(true));
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].title, "Update available");
  EXPECT_EQ(ui.shown[0].text,
            "There is a new version of Tarnwick Toolbar available. Would you like to install it now?");
  EXPECT_EQ(Program("twtb.new"), "new program");
  EXPECT_FALSE(Logged("(UpdateToolbarDLL) Updating DLL"));

  ui.answers = {vbYes};
  EXPECT_TRUE(updater.UpdateToolbarDLL(true));
  EXPECT_TRUE(Logged("(UpdateToolbarDLL) Updating DLL"));
  for (int i = 0; i < 200 && !std::filesystem::exists(marker); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(std::filesystem::exists(marker));
}

TEST_F(UpdateTest, TheFolderProbeCopiesAndRemovesTheUpdater) {
  EXPECT_FALSE(updater.ProbeProgramFolder());  // no updater.exe to copy
  std::ofstream(paths.program / "updater.exe") << "program";
  EXPECT_TRUE(updater.ProbeProgramFolder());
  EXPECT_FALSE(std::filesystem::exists(paths.program / "updater.exe.bak"));
}

}  // namespace
}  // namespace tarnwick::testing
