// The about dialog: its texts, the look-ups in the machine's settings and
// starting the system information tool.
#include <gtest/gtest.h>

#include <fstream>

#include "common/TestSupport.h"
#include "settings/mdlRegistry.h"
#include "ui/frmAbout.h"

namespace tarnwick {
namespace {

constexpr std::string_view kMsInfo = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr std::string_view kMsInfoLocation = "SOFTWARE\\Microsoft\\Shared Tools Location";
constexpr std::string_view kTestKey = "Software\\Tarnwick\\AboutTest";

// Records what would be started: there is no system information tool here.
class RecordingShell final : public Shell {
 public:
  bool StartProgram(const std::filesystem::path& program, const std::vector<std::string>&, WindowState state) override {
    started.push_back(program.string() + (state == WindowState::Normal ? " (normal)" : " (minimized)"));
    return starts;
  }
  std::vector<std::string> started;
  bool starts = true;
};

struct AboutTest : ::testing::Test {
  ~AboutTest() override {
    for (const auto& [key, name] : written) mdlRegistry::DeleteValue(store, Root::LocalMachine, key, name);
  }
  void Write(std::string_view key, std::string_view name, std::uint32_t type, std::string_view data) {
    std::unique_ptr<RegistryKey> handle;
    ASSERT_EQ(store.CreateKey(Root::LocalMachine, key, handle), kErrorSuccess);
    ASSERT_EQ(handle->SetValue(name, type, data), kErrorSuccess);
    written.emplace_back(key, name);
  }
  std::vector<std::string> Messages() {
    std::vector<std::string> texts;
    for (const auto& shown : t.ui.shown) texts.push_back(shown.text);
    return texts;
  }

  testing::TestProcess t;
  SettingsStore& store = *t.process.settings;
  RecordingShell shell;
  frmAbout form{store, t.ui, shell};
  std::vector<std::pair<std::string, std::string>> written;
};

TEST_F(AboutTest, CaptionTitleAndVersion) {
  form.Form_Load();
  EXPECT_EQ(form.Caption, "About Tarnwick Toolbar");
  EXPECT_EQ(form.lblTitle, "Tarnwick Toolbar");
  EXPECT_EQ(form.lblVersion, "Version 1.0.0 (20070813)");
  EXPECT_EQ(form.lblDisclaimer, "This software is provided 'as is' with no explicit or implied warranties.");
  EXPECT_EQ(form.cmdSysInfo, "&System Info...");
}

TEST_F(AboutTest, GetKeyValueConvertsTextsAndNumbers) {
  Write(kTestKey, "Text", kRegSz, std::string_view("C:\\Tools\0", 9));
  Write(kTestKey, "Number", kRegDword, std::string_view("\x05\x01\x00\x00", 4));
  Write(kTestKey, "Zero", kRegDword, std::string_view("\0\0\0\0", 4));
  Write(kTestKey, "Long", kRegSz, std::string(1100, 'x'));
  std::string value = "unchanged";
  EXPECT_TRUE(form.GetKeyValue(Root::LocalMachine, kTestKey, "Text", value));
  EXPECT_EQ(value, "C:\\Tools");
  EXPECT_TRUE(form.GetKeyValue(Root::LocalMachine, kTestKey, "Number", value));
  EXPECT_EQ(value, "&h105");
  EXPECT_TRUE(form.GetKeyValue(Root::LocalMachine, kTestKey, "Zero", value));
  EXPECT_EQ(value, "&h0");
  value = "unchanged";
  EXPECT_FALSE(form.GetKeyValue(Root::LocalMachine, kTestKey, "Long", value));  // over the 1,024-byte buffer
  EXPECT_FALSE(form.GetKeyValue(Root::LocalMachine, kTestKey, "Missing", value));
  EXPECT_FALSE(form.GetKeyValue(Root::LocalMachine, "Software\\Tarnwick\\NoSuchKey", "Text", value));
  EXPECT_EQ(value, "unchanged");
}

TEST_F(AboutTest, SystemInfoStartsTheToolTheSettingsName) {
  Write(kMsInfo, "PATH", kRegSz, std::string_view("C:\\msinfo32.exe\0", 16));
  form.cmdSysInfo_Click();
  EXPECT_EQ(shell.started, std::vector<std::string>{"C:\\msinfo32.exe (normal)"});
  EXPECT_TRUE(Messages().empty());

  shell.starts = false;
  form.StartSysInfo();
  EXPECT_EQ(Messages(), std::vector<std::string>{"System Information Is Unavailable At This Time"});
}

TEST_F(AboutTest, SystemInfoFallsBackToTheToolsFolderWhenTheToolIsThere) {
  const auto folder = t.dir.path() / "shared tools";
  std::filesystem::create_directories(folder);
  Write(kMsInfoLocation, "MSINFO", kRegSz, folder.string() + '\0');
  std::string path;
  if (form.GetKeyValue(Root::LocalMachine, kMsInfo, "PATH", path)) GTEST_SKIP() << "this machine names " << path;

  form.StartSysInfo();
  EXPECT_TRUE(shell.started.empty());
  EXPECT_EQ(Messages(), std::vector<std::string>{"System Information Is Unavailable At This Time"});

  std::ofstream(folder / "MSINFO32.EXE") << "tool";
  form.StartSysInfo();
  EXPECT_EQ(shell.started, std::vector<std::string>{(folder / "MSINFO32.EXE").string() + " (normal)"});
}

}  // namespace
}  // namespace tarnwick
