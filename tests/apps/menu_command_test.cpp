// `tarnwick menu`, `tarnwick open` and `tarnwick options` end to end: the
// real program in a fresh program folder, against the reference server.
#include <fstream>

#include "CliFixture.h"

namespace tarnwick::testing {
namespace {

class MenuCommandTest : public CliFixture {
 protected:
  // The server publishes the bundled data with a client menu of its own.
  void SetUp() override {
    std::filesystem::create_directories(dir / "data");
    for (const char* file : {"tarnwick.xml", "logo.bmp", "localblock.dat", "xss.dat"}) {
      std::filesystem::copy_file(std::filesystem::path(TARNWICK_DATA) / file, dir / "data" / file);
    }
    std::ofstream(dir / "data" / "menu.xml")
        << "<menu><i href='https://bank.test/'>Bank Home</i><s>Help<i href='https://bank.test/help'>Help</i></s>"
           "</menu>";
    StartServer(dir / "data");
  }
};

TEST_F(MenuCommandTest, AFreshProgramFolderShowsBothMenus) {
  const CliRun run = Run("menu --server " + server);
  EXPECT_EQ(run.status, 0) << run.err;
  // The product menu as installed (the server has the same file) with the
  // server's address in its links; the client menu as the server now has it.
  const std::string expected[] = {
      "product menu (tarnwick.xml, button 24x16):\n  1  Report Phishing Site  -> tarnwicktoolbar:report_url\n",
      "      5  Frequently Asked Questions  -> " + server + "/help/faq/index.html\n",
      "  11  Uninstall  -> tarnwicktoolbar:uninstall\n",
      "client menu (menu.xml, logo.bmp 48x16):\n  1  Bank Home  -> https://bank.test/\n  4  Help >\n"
      "      3  Help  -> https://bank.test/help\n",
  };
  for (const auto& part : expected) EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;

  const CliRun json = Run("menu client --json --server " + server);
  EXPECT_EQ(json.out,
            R"({"client":[{"caption":"Bank Home","link":"https://bank.test/","number":1},)"
            R"({"caption":"Help","items":[{"caption":"Help","link":"https://bank.test/help","number":3}],"number":4}]})"
            "\n");
}

TEST_F(MenuCommandTest, MenuFilesMissingFromTheFolderStayMissing) {
  std::filesystem::remove(program / "tarnwick.xml");
  const CliRun run = Run("menu product --server " + server);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out,
            "product menu (tarnwick.xml, button 24x16): none (the file is missing or no menu; see the debug log)\n");
  EXPECT_FALSE(std::filesystem::exists(program / "tarnwick.xml"));
  EXPECT_EQ(Run("menu both").status, 2);
}

TEST_F(MenuCommandTest, OpenActsOnLinksAsTheProductMenuDoes) {
  CliRun run = Run("open tarnwicktoolbar:Report_URL --current-url 'a.b/x?q=5%&r=1' --server " + server);
  EXPECT_EQ(run.out, "navigate _top " + server + "/report_url?url=a.b/x?q=5%25%26r=1\n");
  run = Run("open https://bank.test/");
  EXPECT_EQ(run.out, "navigate _top https://bank.test/\n");
  run = Run("open tarnwicktoolbar:about");
  EXPECT_NE(run.out.find("About Tarnwick Toolbar\nTarnwick Toolbar\nVersion 1.0.0 (20070813)\n"), std::string::npos);
  run = Run("open tarnwicktoolbar:uninstall");
  EXPECT_TRUE(run.out.starts_with("uninstall: would run MsiExec.exe /I{")) << run.out;
  run = Run("open tarnwicktoolbar:Foo");
  EXPECT_EQ(run.err, "Tarnwick Toolbar: The foo command is not supported by this version of the Tarnwick Toolbar.\n");
  run = Run("open tarnwicktoolbar:check_update --server " + server);
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.err.find("There are no updates available for the Tarnwick Toolbar."), std::string::npos) << run.err;
  EXPECT_EQ(Run("open").status, 2);
}

TEST_F(MenuCommandTest, TheOptionsDialogOnATerminal) {
  // Interval slider to two hours, the auto-fill box on, a name, then Enter.
  CliRun run = Run("open tarnwicktoolbar:options", "13 120\ncbAutoFillReportForm 1\n8 Ada Lovelace\n\n");
  EXPECT_NE(run.out.find("  13 Check for a newer version of the toolbar every: 2   hours"), std::string::npos)
      << run.out;
  EXPECT_TRUE(run.out.ends_with("Options saved.\n")) << run.out;
  run = Run("options");
  EXPECT_NE(run.out.find("DLLUpdateInterval = 7200\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("AutoFillName = Ada Lovelace\n"), std::string::npos) << run.out;

  run = Run("options dialog", "reset\n3 0\n99 1\n");
  EXPECT_NE(run.out.find("tarnwick: no control 99"), std::string::npos) << run.out;
  EXPECT_TRUE(run.out.ends_with("Cancelled: nothing written.\n"));  // the input ended: Escape
  EXPECT_NE(Run("options").out.find("DLLUpdateInterval = 7200\n"), std::string::npos);

  run = Run("options dialog", "1\n3 1\nesc\n");
  EXPECT_NE(run.out.find("tarnwick: cbMenubar is disabled"), std::string::npos) << run.out;
}

TEST_F(MenuCommandTest, TheZoneListsCanBeSet) {
  EXPECT_EQ(Run("options set TrustedSites 'bank.test; shop.test'").status, 0);
  EXPECT_EQ(Run("options set restrictedsites evil.test").status, 0);
  const CliRun run = Run("options");
  EXPECT_NE(run.out.find("TrustedSites = bank.test; shop.test\nIntranetSites = \nRestrictedSites = evil.test\n"),
            std::string::npos)
      << run.out;
  EXPECT_EQ(Run("options delete IntranetSites").status, 1);
}

}  // namespace
}  // namespace tarnwick::testing
