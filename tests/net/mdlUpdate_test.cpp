#include <cerrno>

#include "NetFixture.h"
#include "net/DownloadCheck.h"
#include "settings/mdlRegistry.h"
#include "support/Files.h"
#include "support/Signatures.h"
#include "support/SystemCalls.h"
#include "support/Text.h"
#include "support/Version.h"

namespace tarnwick::testing {
namespace {

using mdlRegistry::kSettingsKey;

struct UpdateTest : NetFixture {
  UpdateTest() {
    endpoints.server = endpoints.site = server.Base();
    const auto keyFile = dir / "update-signing.pub";
    WriteFile(log, keyFile, KeyToHex(publisher.publicKey) + "\n");
    mdlRegistry::SaveSetting(*store, kSettingsKey, kUpdatePublicKeyFileSetting, keyFile.string(), kRegSz);
  }
  ~UpdateTest() override { sys::ClearInjectedFailures(); }

  // What the server publishes at a path: a program at /check_update/ when
  // there is a newer one, "content of PATH" under /updates/.
  std::optional<std::string> Served(const std::string& target) {
    if (target.starts_with("/check_update/")) return newProgram.empty() ? std::nullopt : std::optional(newProgram);
    if (const auto it = served.find(target); it != served.end()) return it->second;
    return "content of " + target;
  }

  Reply Answer(const Request& request) {
    if (request.target.starts_with("/file_hashes")) return Reply::Http(200, "OK", hashReply);
    if (request.target == "/updates/gone.dat") return Reply::Http(404, "Not Found", "");
    if (request.target == "/updates/broken.dat") return Reply::Http(500, "Internal Server Error", "");
    if (request.target == "/updates/slow.dat") {
      Reply reply;
      reply.stall = true;
      return reply;
    }
    if (request.target.ends_with(".sig")) {
      const auto content = Served(request.target.substr(0, request.target.size() - 4));
      if (!content || !signing) return Reply::Http(404, "Not Found", "");
      return Reply::Http(200, "OK", SignDetached(*content, signing->secretKey));
    }
    const std::string since = request.Header("If-Modified-Since");
    if (!since.empty() && since == lastModified) return Reply::Http(304, "Not Modified", "");
    const auto content = Served(request.target);
    if (!content) return Reply::Http(404, "Not Found", "");
    return Reply::Http(200, "OK", *content, {"Last-Modified: " + lastModified});
  }

  // Puts the hash of what the server serves for `file` in the hash table,
  // as this start's hash list would.
  void Publish(const std::string& file) {
    updater.FileHashes[file] = ContentHash(*Served("/updates/" + file), HashedAsBytes(file));
  }
  std::int16_t Update(const std::string& file, std::int32_t interval, bool forced, const std::string& key = {}) {
    return updater.UpdateLocalFile(false, server.Base() + "/updates/" + file, file, "LastCheckedTest", interval,
                                   "agent", key, forced, "");
  }
  std::string Stored(std::string_view key, std::string_view name) {
    return ToText(mdlRegistry::GetSetting(*store, key, name, std::string("<absent>")));
  }
  std::string Program(const std::string& name) { return ReadFile(log, paths.program / name); }
  // A line of the event log itself, not of the debug log.
  bool InEventLog(const std::string& line) { return Logged(": " + line); }

  std::string hashReply;
  std::map<std::string, std::string> served;
  std::string lastModified = "Sun, 22 Nov 2026 10:00:00 GMT";
  std::string newProgram;
  KeyPair publisher = *MakeKeyPair();
  const KeyPair* signing = &publisher;  // null: nothing is signed
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

  Publish("localblock.dat");
  EXPECT_EQ(Update("localblock.dat", 86400, false), 200);  // missing, so fetched although not due
  EXPECT_EQ(Program("localblock.dat"), "content of /updates/localblock.dat");
  EXPECT_TRUE(Logged("Downloaded localblock.dat from " + server.Base() + "/updates/localblock.dat"));
}

TEST_F(UpdateTest, ConditionalRequestsUseTheStoredLastModifiedUnlessForced) {
  const std::string key = std::string(kSettingsKey) + "\\Menus";
  Publish("menu.xml");
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
  Publish("xss.dat");
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

  // A line without "=" ends the list in the routine's error line.
  updater.FileHashes.clear();
  hashReply = "localblock.dat=ABC\r\nno hash here\r\nxss.dat=DEF\r\n";
  updater.GetFileHashes("localblock.dat\r\nxss.dat");
  EXPECT_TRUE(updater.CheckServerMD5("ABC", "localblock.dat"));
  EXPECT_FALSE(updater.CheckServerMD5("DEF", "xss.dat"));
  EXPECT_TRUE(Logged("(GetFileHashes) Error: Subscript out of range (9)"));
}

TEST_F(UpdateTest, RefreshFetchesOnlyFilesWhoseHashDiffers) {
  WriteFile(log, paths.program / "localblock.dat", "\x80pattern");
  served["/updates/xss.dat"] = "\x80patterns";
  hashReply = "localblock.dat=" + ContentHash("\x80pattern", false) +
              "\r\nxss.dat=" + LowerAscii(ContentHash("\x80patterns", false)) +
              "\r\npagefetch.dll=" + ContentHash("content of /updates/pagefetch.dll", true) + "\r\n";
  updater.GetFileHashes("localblock.dat\r\nxss.dat\r\npagefetch.dll");
  const auto requests = server.Requests().size();
  EXPECT_EQ(updater.Refresh(StartupRefreshTable()[0], "agent"), std::nullopt);
  EXPECT_EQ(server.Requests().size(), requests);
  // A lower-case hash never matches: the file is fetched at every start, and
  // never installed.
  EXPECT_EQ(updater.Refresh(StartupRefreshTable()[1], "agent"), 0);
  EXPECT_FALSE(FileExists(paths.program / "xss.dat"));
  // A new component lands beside the loaded one.
  EXPECT_EQ(updater.Refresh(StartupRefreshTable()[2], "agent"), 200);
  EXPECT_EQ(Program("pagefetch.new"), "content of /updates/pagefetch.dll");
  EXPECT_EQ(Program("pagefetch.dll"), "component");
}

TEST_F(UpdateTest, AFileReplacesTheOldOneOnlyWithThePublishedHash) {
  WriteFile(log, paths.program / "xss.dat", "working patterns");
  served["/updates/xss.dat"] = "<html>Sign in to the hotel Wi-Fi</html>";  // a captive portal's 200
  updater.FileHashes["xss.dat"] = ContentHash("new patterns", false);
  EXPECT_EQ(Update("xss.dat", 0, false), 0);
  EXPECT_EQ(Program("xss.dat"), "working patterns");
  EXPECT_EQ(Stored(kSettingsKey, "LastCheckedTest"), "<absent>");  // the next start tries again
  EXPECT_TRUE(InEventLog("(UpdateLocalFile) Discarded xss.dat from " + server.Base() + "/updates/xss.dat: its MD5 " +
                         ContentHash(served["/updates/xss.dat"], false) + " is not the published " +
                         ContentHash("new patterns", false)));

  // Nothing published for it (the hash request failed): nothing installed.
  EXPECT_EQ(Update("localblock.dat", 0, false), 0);
  EXPECT_FALSE(FileExists(paths.program / "localblock.dat"));
  EXPECT_TRUE(Logged("Discarded localblock.dat from " + server.Base() +
                     "/updates/localblock.dat: the server published no hash for localblock.dat"));

  // Text hashes through the code page, components over their bytes.
  served["/updates/xss.dat"] = "new \x80 patterns";
  updater.FileHashes["xss.dat"] = ContentHash("new \x80 patterns", true);
  EXPECT_EQ(Update("xss.dat", 0, false), 0);
  Publish("xss.dat");
  EXPECT_EQ(Update("xss.dat", 0, false), 200);
  EXPECT_EQ(Program("xss.dat"), "new \x80 patterns");
}

TEST_F(UpdateTest, CodeIsInstalledOnlyWithTheUpdateKeysSignature) {
  WriteFile(log, paths.program / "tarnwickrex.dll", "working component");
  Publish("tarnwickrex.dll");
  const KeyPair rogue = *MakeKeyPair();
  const std::string url = server.Base() + "/updates/tarnwickrex.dll";
  const std::pair<const KeyPair*, std::string> refusals[] = {{nullptr, "no signature (404: Not Found)"},
                                                             {&rogue, "its signature does not verify"}};
  for (const auto& [key, why] : refusals) {
    signing = key;
    EXPECT_EQ(Update("tarnwickrex.dll", 0, true), 0) << why;
    EXPECT_EQ(Program("tarnwickrex.dll"), "working component");
    EXPECT_TRUE(InEventLog("(UpdateLocalFile) Discarded tarnwickrex.dll from " + url + ": " + why)) << why;
  }
  // Without the setting the built-in key counts, and this publisher's is not it.
  signing = &publisher;
  mdlRegistry::DeleteValue(*store, Root::CurrentUser, kSettingsKey, kUpdatePublicKeyFileSetting);
  EXPECT_EQ(Update("tarnwickrex.dll", 0, true), 0);
  // A key file that holds no key refuses everything.
  WriteFile(log, dir / "garbage.pub", "not a key");
  mdlRegistry::SaveSetting(*store, kSettingsKey, kUpdatePublicKeyFileSetting, (dir / "garbage.pub").string(), kRegSz);
  EXPECT_EQ(Update("tarnwickrex.dll", 0, true), 0);
  EXPECT_TRUE(Logged("the update key file " + (dir / "garbage.pub").string() + " holds no public key"));
  EXPECT_EQ(Program("tarnwickrex.dll"), "working component");

  mdlRegistry::SaveSetting(*store, kSettingsKey, kUpdatePublicKeyFileSetting, (dir / "update-signing.pub").string(),
                           kRegSz);
  EXPECT_EQ(Update("tarnwickrex.dll", 0, true), 200);
  EXPECT_EQ(Program("tarnwickrex.dll"), "content of /updates/tarnwickrex.dll");
}

TEST_F(UpdateTest, EachMenuFileKeepsItsOwnLastModified) {
  // Published together, the three files carry the same date.
  for (const RefreshEntry& entry : MenuRefreshTable()) Publish(std::string(entry.file));
  for (const RefreshEntry& entry : MenuRefreshTable()) {
    EXPECT_EQ(updater.Refresh(entry, "agent"), 200) << entry.file;
    EXPECT_EQ(Program(std::string(entry.file)), "content of /updates/" + std::string(entry.file));
    EXPECT_EQ(Stored(entry.lastModifiedKey, "LastModified"), lastModified);
  }
  std::set<std::string_view> keys;
  for (const RefreshEntry& entry : MenuRefreshTable()) keys.insert(entry.lastModifiedKey);
  EXPECT_EQ(keys.size(), 3u);
}

TEST_F(UpdateTest, EachFailingWriteKeepsTheOldFileAndTheNextStartInstallsIt) {
  WriteFile(log, paths.program / "xss.dat", "old patterns");
  served["/updates/xss.dat"] = std::string(200000, 'p');
  Publish("xss.dat");
  const std::vector<std::pair<sys::Call, int>> failures = {{sys::Call::Open, ENOSPC}, {sys::Call::Write, ENOSPC},
                                                           {sys::Call::Write, EIO},   {sys::Call::Fsync, EIO},
                                                           {sys::Call::Close, EIO},   {sys::Call::Rename, EACCES}};
  for (const auto& [call, error] : failures) {
    SCOPED_TRACE(std::to_string(static_cast<int>(call)) + "/" + std::to_string(error));
    sys::InjectFailure(call, error, 0, true);
    EXPECT_EQ(Update("xss.dat", 0, true), 0);
    EXPECT_EQ(Program("xss.dat"), "old patterns");
    EXPECT_FALSE(std::filesystem::exists(paths.program / (std::string("xss.dat") + kPartialSuffix)));
    sys::ClearInjectedFailures();
  }
  // A failed write whose clean-up fails too leaves a partial file behind: the
  // next start writes over it.
  sys::InjectFailure(sys::Call::Write, ENOSPC, 0, true);
  sys::InjectFailure(sys::Call::Unlink, EIO, 0, true);
  EXPECT_EQ(Update("xss.dat", 0, true), 0);
  EXPECT_EQ(Program("xss.dat"), "old patterns");
  sys::ClearInjectedFailures();
  EXPECT_EQ(Update("xss.dat", 0, true), 200);
  EXPECT_EQ(Program("xss.dat"), served["/updates/xss.dat"]);
  EXPECT_FALSE(std::filesystem::exists(paths.program / (std::string("xss.dat") + kPartialSuffix)));
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

TEST_F(UpdateTest, ASwapWhoseSecondRenameFailsPutsTheComponentBack) {
  WriteFile(log, paths.program / "pagefetch.new", "new");
  sys::InjectFailure(sys::Call::Rename, ENOSPC, 1);
  SwapPageFetch(ports);
  EXPECT_EQ(Program("pagefetch.dll"), "component");
  EXPECT_EQ(Program("pagefetch.new"), "new");
  EXPECT_TRUE(Logged("Renamed pagefetch.old to pagefetch.dll"));

  // The undo failing too: the next load of the form finishes the swap.
  sys::InjectFailure(sys::Call::Rename, EIO, 1, true);
  SwapPageFetch(ports);
  EXPECT_FALSE(FileExists(paths.program / "pagefetch.dll"));
  sys::ClearInjectedFailures();
  frmHTTP next{ports, dialog};
  next.Form_Load();
  EXPECT_TRUE(next.ComponentReady);
  EXPECT_TRUE(ui.shown.empty());  // not "too old"
  EXPECT_EQ(Program("pagefetch.dll"), "new");
  EXPECT_EQ(Program("pagefetch.old"), "component");
  EXPECT_TRUE(InEventLog("Repaired an interrupted swap of pagefetch.dll: Renamed pagefetch.new to pagefetch.dll"));
}

TEST_F(UpdateTest, ARefusedUpdateOfferKeepsTheDownloadedProgram) {
  mdlRegistry::SaveSetting(*store, kSettingsKey, "GUID", std::string("0123456789ABCDEF0123456789ABCDEF"), kRegSz);
  options.DLLUpdateInterval = 86400;
  EXPECT_FALSE(updater.UpdateToolbarDLL(false));
  EXPECT_EQ(server.Requests().back().target,
            "/check_update/127/" + VersionText() + "/0123456789ABCDEF0123456789ABCDEF");
  EXPECT_TRUE(Logged("(UpdateToolbarDLL) DLL update failed with status 404"));

  newProgram = "new program";
  Get(server.Base() + "/updates/xss.dat");  // leaves a 200 in the form
  const auto requests = server.Requests().size();
  EXPECT_FALSE(updater.UpdateToolbarDLL(false));  // the 404 stamped the check: not due again yet
  EXPECT_EQ(server.Requests().size(), requests);
  EXPECT_TRUE(Logged("(UpdateToolbarDLL) DLL update failed with status 200"));  // what the form holds

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

TEST_F(UpdateTest, AnUnsignedProgramIsNeitherKeptNorOffered) {
  newProgram = "new program";
  signing = nullptr;
  EXPECT_FALSE(updater.UpdateToolbarDLL(true));
  EXPECT_FALSE(FileExists(paths.program / "twtb.new"));
  EXPECT_TRUE(ui.shown.empty());
  EXPECT_TRUE(InEventLog("(UpdateLocalFile) Discarded twtb.new from " + server.Base() + "/check_update/"));
  EXPECT_TRUE(Logged("(UpdateToolbarDLL) DLL update failed with status 404"));  // the signature's
}

TEST_F(UpdateTest, TheFolderProbeCopiesAndRemovesTheUpdater) {
  EXPECT_FALSE(updater.ProbeProgramFolder());  // no updater.exe to copy
  std::ofstream(paths.program / "updater.exe") << "program";
  EXPECT_TRUE(updater.ProbeProgramFolder());
  EXPECT_FALSE(std::filesystem::exists(paths.program / "updater.exe.bak"));
}

}  // namespace
}  // namespace tarnwick::testing
