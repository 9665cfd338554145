// The band's life: start-up against the reference server, the window tree,
// the size it asks for, and the teardown.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "BandFixture.h"

namespace tarnwick::testing {
namespace {

using ::testing::ElementsAre;

using ToolBarTest = BandFixture;

TEST_F(ToolBarTest, StartUpBuildsTheWindowTreeInOrderAndLoadsTheServersBlockLists) {
  const StartUpRecord record = Start();

  EXPECT_TRUE(record.toolbarCreated);
  EXPECT_TRUE(record.failedComponent.empty());
  EXPECT_EQ(record.updateCheckStatus, 404);
  EXPECT_EQ(record.serverHashes, 5u);  // and the menu files
  // Every child is subclassed right after it is made; the message window
  // last, once all of them exist. The indent leaves room for the product
  // bitmap (24 pixels) and the client logo (48) beside it.
  EXPECT_THAT(windows.calls,
              ElementsAre("create 1 message", "create 2 toolbar in 1", "create 3 product menu in 2", "subclass 3",
                          "create 4 client menu at 24 in 2", "subclass 4", "indent 79", "icons", "buttons with labels",
                          "create 5 text at 54 width 1080 in 2", "subclass 5", "create 6 search box in 2",
                          "create 7 search edit in 6", "subclass 7", "subclass 1"));
  EXPECT_EQ(band.IOleWindow_GetWindow(), 2u);
  EXPECT_EQ(browser.calls.front(), "Connect");
  // The data files came from the server and the checker works from them.
  EXPECT_EQ(ReadFile(process.log, process.paths.ProgramFolder() / "xss.dat"),
            ReadFile(process.log, kSourceData / "xss.dat"));
  EXPECT_EQ(Setting("GUID").size(), 32u);
  EXPECT_TRUE(process.initialised);
  ASSERT_NE(band.checker(), nullptr);
  t.ui.answers = {vbNo};
  EXPECT_TRUE(Navigate("http://www.bank.example@account-check.example/login").cancel);  // a local pattern
}

TEST_F(ToolBarTest, TheInstallationKeepsItsIdentifierAndLabelsFollowTheSetting) {
  Set("GUID", "0123456789ABCDEF0123456789ABCDEF");
  Set("ShowLabels", "False");
  Start();
  EXPECT_EQ(Setting("GUID"), "0123456789ABCDEF0123456789ABCDEF");
  EXPECT_THAT(windows.calls, ::testing::Contains("buttons"));
}

TEST_F(ToolBarTest, WithoutTheRetrievalComponentStartUpStopsAndSendsThePersonToReinstall) {
  std::filesystem::remove(process.paths.ProgramFolder() / "pagefetch.dll");
  const StartUpRecord record = Start();

  EXPECT_EQ(record.failedComponent, "PageFetch");
  EXPECT_FALSE(record.toolbarCreated);
  EXPECT_TRUE(windows.calls.empty());
  EXPECT_EQ(band.checker(), nullptr);
  ASSERT_FALSE(t.ui.shown.empty());
  EXPECT_EQ(t.ui.shown.back().text,
            " You will now be redirected to the Tarnwick website, where you can reinstall the toolbar.");
  EXPECT_THAT(browser.calls, ElementsAre("Connect", "Stop", "Navigate " + server.Url("/install"), "Disconnect"));
  // Events of a band that did not start change nothing.
  bool cancel = false;
  EXPECT_EQ(band.guard().m_oIE_BeforeNavigate2(true, "http://phish.example/", 0, "", {}, "", cancel).notChecked,
            NotChecked::NotStarted);
  EXPECT_FALSE(cancel);
}

TEST_F(ToolBarTest, ABrokenRegularExpressionComponentIsFetchedOnceAndThenReported) {
  std::filesystem::remove(process.paths.ProgramFolder() / "tarnwickrex.dll");
  const StartUpRecord record = Start();

  EXPECT_EQ(record.failedComponent, "CheckURL");
  EXPECT_TRUE(windows.calls.empty());
  EXPECT_EQ(t.ui.shown.front().text, "Your Tarnwick Toolbar has become corrupted (CheckURL component).");
  const auto log = ProgramLog();
  // Two attempts, each with the factory's one re-registration.
  EXPECT_EQ(
      std::count(log.begin(), log.end(), "Failed to create Tarnwick.Rex object after re-registering DLL - giving up"),
      2);
}

TEST_F(ToolBarTest, TheRepairFetchesTheRegularExpressionComponentFromTheServer) {
  std::filesystem::copy_file(kBuiltRex, server.data / "tarnwickrex.dll");
  std::filesystem::remove(process.paths.ProgramFolder() / "tarnwickrex.dll");
  const StartUpRecord record = Start();

  EXPECT_TRUE(record.failedComponent.empty());
  EXPECT_TRUE(record.toolbarCreated);
  EXPECT_TRUE(FileExists(process.paths.ProgramFolder() / "tarnwickrex.dll"));
}

TEST_F(ToolBarTest, ANullSiteOnlyLetsTheBrowserGo) {
  Start();
  const auto windowCalls = windows.calls.size();
  band.IObjectWithSite_SetSite(nullptr);
  EXPECT_EQ(browser.calls.back(), "Disconnect");
  EXPECT_EQ(windows.calls.size(), windowCalls);
  EXPECT_EQ(band.browser(), nullptr);
  EXPECT_EQ(band.IObjectWithSite_GetSite(), nullptr);
}

TEST_F(ToolBarTest, CloseTearsTheWindowsDownInOrderWithALineForEach) {
  Start();
  windows.calls.clear();
  const auto lines = band.IDeskBand_CloseDW();

  EXPECT_THAT(
      lines,
      ElementsAre("(DestroyToolbar) Destroyed block list", "(DestroyToolbar) Unsubclassed and destroyed client menu",
                  "(DestroyToolbar) Unsubclassed and destroyed Google search box",
                  "(DestroyToolbar) Unsubclassed and destroyed Tarnwick menu",
                  "(DestroyToolbar) Unsubclassed and destroyed toolbar text window",
                  "(DestroyToolbar) Unsubclassed message window", "(DestroyToolbar) Destroyed toolbar window",
                  "(DestroyToolbar) Destroyed message window", "(DestroyToolbar) Destroyed MD5 object",
                  "(DestroyToolbar) Destroyed PageFetch object", "(IDeskBand_CloseDW) exiting"));
  EXPECT_THAT(windows.calls,
              ElementsAre("unsubclass 4", "destroy 4", "unsubclass 7", "destroy 6", "unsubclass 3", "destroy 3",
                          "unsubclass 5", "destroy 5", "unsubclass 1", "destroy 2", "destroy 1"));
  const auto log = ProgramLog();
  EXPECT_NE(std::search(log.begin(), log.end(), lines.begin(), lines.end(),
                        [](const std::string& logged, const std::string& line) { return logged == "(debug) " + line; }),
            log.end());
  EXPECT_EQ(process.http.pageFetch, nullptr);
  EXPECT_EQ(band.IOleWindow_GetWindow(), 0u);
}

TEST_F(ToolBarTest, ASecondBandOfTheProcessSharesItsStartUpAndItsRetrievalComponent) {
  EXPECT_TRUE(Start().processStartUp);
  const int questions = ServerQuestions();
  RecordingBrowser otherBrowser;
  RecordingWindows otherWindows;
  ToolBar other(process, otherWindows);
  const StartUpRecord record = other.IObjectWithSite_SetSite(&otherBrowser);
  EXPECT_FALSE(record.processStartUp);
  EXPECT_TRUE(record.toolbarCreated);
  EXPECT_EQ(record.updateCheckStatus, 0);

  // Closing one band leaves the other working.
  band.IDeskBand_CloseDW();
  EXPECT_NE(process.http.pageFetch, nullptr);
  t.ui.answers = {vbNo};
  bool cancel = false;
  EXPECT_TRUE(
      other.guard().m_oIE_BeforeNavigate2(true, "http://phish.example/", 0, "", {}, "", cancel).outcome.checked);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(ServerQuestions(), questions + 1);
  other.IDeskBand_CloseDW();
  EXPECT_EQ(process.http.pageFetch, nullptr);
}

TEST_F(ToolBarTest, WithoutAClientLogoThereIsNoClientMenuButton) {
  std::filesystem::remove(process.paths.ProgramFolder() / "logo.bmp");
  std::filesystem::remove(server.data / "logo.bmp");
  Start();
  EXPECT_THAT(windows.calls, ::testing::Contains("indent 31"));  // the product bitmap and 7
  EXPECT_THAT(windows.calls, ::testing::Not(::testing::Contains(::testing::HasSubstr("client menu"))));
  EXPECT_THAT(band.IDeskBand_CloseDW(), ::testing::Contains("(DestroyToolbar) Unsubclassed and destroyed client menu"));
}

TEST_F(ToolBarTest, ShowingAndRedrawingTouchOnlyTheirWindows) {
  Start();
  windows.calls.clear();
  band.IDeskBand_ShowDW(true);
  band.IDeskBand_ShowDW(false);
  band.RedrawToolbar();
  EXPECT_THAT(windows.calls, ElementsAre("show 2", "hide 2", "unsubclass 5", "destroy 5",
                                         "create 8 text at 54 width 1080 in 2", "subclass 8", "autosize 2"));
}

TEST_F(ToolBarTest, BandInfoFillsOnlyWhatTheMaskAsksFor) {
  Set("TextWindowWidth", "0");
  Start();
  BandInfo sizes;
  sizes.mask = DBIM_MINSIZE | DBIM_MAXSIZE | DBIM_INTEGRAL | DBIM_ACTUAL;
  band.IDeskBand_GetBandInfo(sizes);
  EXPECT_EQ(sizes.minSize, (BandInfo::Size{54, 22}));  // TextLeft alone: the width is 0
  EXPECT_EQ(sizes.actual, (BandInfo::Size{54, 22}));
  EXPECT_EQ(sizes.maxSize, (BandInfo::Size{-1, -1}));
  EXPECT_EQ(sizes.integral, (BandInfo::Size{1, 1}));
  EXPECT_FALSE(sizes.titleSet);

  BandInfo title;
  title.mask = DBIM_TITLE | DBIM_MODEFLAGS;
  title.minSize = title.actual = {123, 45};
  title.title = "old";
  title.modeFlags = 9;
  band.IDeskBand_GetBandInfo(title);
  EXPECT_TRUE(title.titleSet);
  EXPECT_EQ(title.title, "");
  EXPECT_EQ(title.modeFlags, 0u);
  EXPECT_EQ(title.minSize, (BandInfo::Size{123, 45}));
  EXPECT_EQ(title.actual, (BandInfo::Size{123, 45}));
}

TEST_F(ToolBarTest, PersistenceReadsAndWritesNothing) {
  Start();
  std::stringstream stream("saved by someone else");
  band.IPersistStream_Save(stream, true);
  band.IPersistStream_Load(stream);
  EXPECT_EQ(stream.str(), "saved by someone else");
  EXPECT_EQ(stream.tellg(), 0);
  EXPECT_EQ(stream.tellp(), 0);
  t.ui.answers = {vbNo};
  EXPECT_TRUE(Navigate("http://phish.example/").cancel);
}

TEST_F(ToolBarTest, AFailureWhileBuildingTheToolbarStopsThereAndIsLogged) {
  windows.refuseToolbar = true;
  const StartUpRecord record = Start();
  EXPECT_FALSE(record.toolbarCreated);
  EXPECT_THAT(ProgramLog(),
              ::testing::Contains("(debug) (CreateToolbar) Error: the toolbar window could not be created (0)"));
  EXPECT_THAT(windows.calls, ElementsAre("create 1 message"));  // what was made stays until close
}

TEST_F(ToolBarTest, ButtonImagesThatDoNotLoadAreLoggedAndTheToolbarIsBuiltAnyway) {
  windows.iconsError = "no image list";
  EXPECT_TRUE(Start().toolbarCreated);
  EXPECT_THAT(ProgramLog(), ::testing::Contains("(debug) AddToolbarIcons_Error: no image list"));
}

}  // namespace
}  // namespace tarnwick::testing
