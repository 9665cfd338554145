#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>

#include "common/TestSupport.h"
#include "settings/mdlRegistry.h"
#include "settings/store_regfile.h"
#include "support/SystemCalls.h"

namespace tarnwick {
namespace {

using mdlRegistry::kSettingsKey;

std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

struct RegFileStoreTest : ::testing::Test {
  testing::TempDir dir;
  testing::TestPaths paths{dir.path()};
  testing::FakeClock clock;
  bool debug = true;
  Log log{paths, clock, debug};
  std::filesystem::path userFile = dir / "config" / "tarnwick" / "settings.reg";
  std::filesystem::path machineFile = dir / "etc" / "local-machine.reg";
  std::unique_ptr<SettingsStore> store = MakeRegFileStore(userFile, machineFile, log);
};

TEST_F(RegFileStoreTest, AMissingFileIsAnEmptyRegistryAndTheFirstWriteCreatesIt) {
  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "Debug", 7), SettingValue(7));
  EXPECT_FALSE(std::filesystem::exists(userFile));
  mdlRegistry::SaveSetting(*store, kSettingsKey, "Debug", 1, kRegSz);
  EXPECT_EQ(Slurp(userFile),
            "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Tarnwick\\Toolbar\\Settings]\n\"Debug\"=\"1\"\n");
}

TEST_F(RegFileStoreTest, ACorruptFileKeepsItsGoodValuesAndReportsEachBadLineOnce) {
  std::filesystem::create_directories(userFile.parent_path());
  std::ofstream(userFile, std::ios::binary)
      << "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Tarnwick\\Toolbar\\Settings]\n"
         "\"BarHeight\"=\"44\"\n"
         "\"Broken\"=\"bad \\z escape\"\n"
         "not a value line\n";
  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "BarHeight", 0), SettingValue(std::string("44")));
  mdlRegistry::SaveSetting(*store, kSettingsKey, "ServerTimeout", std::string("9"), kRegSz);
  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "ServerTimeout", 0), SettingValue(std::string("9")));

  const std::string file = Slurp(userFile);
  EXPECT_NE(file.find("\"Broken\"=\"bad \\z escape\""), std::string::npos);
  EXPECT_NE(file.find("not a value line"), std::string::npos);
  const std::string logText = Slurp(log.LogFilePath());
  const std::string report = "(SettingsStore) Kept unreadable line of " + userFile.string() + ": not a value line";
  ASSERT_NE(logText.find(report), std::string::npos) << logText;
  EXPECT_EQ(logText.find(report), logText.rfind(report));
}

// A settings file that is there but cannot be read gives the defaults, is
// reported, and is never written over: a write would replace every value
// it holds with the one new value.
struct UnreadableFileTest : RegFileStoreTest {
  void SetUp() override {
    std::filesystem::create_directories(userFile.parent_path());
    mdlRegistry::SaveSetting(*store, kSettingsKey, "BarHeight", std::string("44"), kRegSz);
  }
  void TearDown() override { sys::ClearInjectedFailures(); }

  // The defaults come back, a write fails, and the debug log says why.
  void ExpectDefaultsAndNoWrite(const std::string& reason) {
    auto fresh = MakeRegFileStore(userFile, machineFile, log);
    EXPECT_EQ(mdlRegistry::GetSetting(*fresh, kSettingsKey, "BarHeight", 30), SettingValue(30));
    std::unique_ptr<RegistryKey> key;
    EXPECT_NE(fresh->CreateKey(Root::CurrentUser, kSettingsKey, key), kErrorSuccess);
    mdlRegistry::SaveSetting(*fresh, kSettingsKey, "Debug", std::string("1"), kRegSz);
    EXPECT_FALSE(mdlRegistry::DeleteValue(*fresh, Root::CurrentUser, kSettingsKey, "BarHeight"));
    const std::string logText = Slurp(log.LogFilePath());
    const std::string line = "(SettingsStore) Cannot read " + userFile.string() + ": " + reason;
    EXPECT_NE(logText.find(line), std::string::npos) << logText;
  }
};

TEST_F(UnreadableFileTest, ADirectoryInItsPlaceIsLeftAlone) {
  std::filesystem::remove(userFile);
  std::filesystem::create_directory(userFile);
  ExpectDefaultsAndNoWrite("it is a directory");
  EXPECT_TRUE(std::filesystem::is_empty(userFile));
}

TEST_F(UnreadableFileTest, ALinkToADeviceIsNeverReadOrWrittenThrough) {
  std::filesystem::remove(userFile);
  std::filesystem::create_symlink("/dev/zero", userFile);
  ExpectDefaultsAndNoWrite("it is not a regular file");
  EXPECT_EQ(std::filesystem::read_symlink(userFile), "/dev/zero");
}

TEST_F(UnreadableFileTest, AFileOverOneMebibyteIsRefusedAndKept) {
  std::string big = Slurp(userFile) + "; " + std::string(kMaxSettingsFileBytes, 'x') + "\n";
  std::ofstream(userFile, std::ios::binary) << big;
  ExpectDefaultsAndNoWrite("it is larger than 1 MiB");
  EXPECT_EQ(Slurp(userFile), big);
}

TEST_F(UnreadableFileTest, AReadErrorKeepsTheFile) {
  const std::string before = Slurp(userFile);
  sys::InjectFailure(sys::Call::Read, EIO, 0, true);
  ExpectDefaultsAndNoWrite("Input/output error");
  sys::ClearInjectedFailures();
  EXPECT_EQ(Slurp(userFile), before);
  EXPECT_EQ(mdlRegistry::GetSetting(*MakeRegFileStore(userFile, machineFile, log), kSettingsKey, "BarHeight", 30),
            SettingValue(std::string("44")));
}

TEST_F(UnreadableFileTest, AFileWithoutReadPermissionKeepsItsValues) {
  const std::string before = Slurp(userFile);
  ::chmod(userFile.c_str(), 0200);
  // Root reads every file: there the system-call table refuses instead.
  if (::geteuid() == 0) sys::InjectFailure(sys::Call::Open, EACCES, 0, true);
  ExpectDefaultsAndNoWrite("Permission denied");
  sys::ClearInjectedFailures();
  ::chmod(userFile.c_str(), 0600);
  EXPECT_EQ(Slurp(userFile), before);
}

TEST_F(UnreadableFileTest, TheProgramGoesOnWithTheDefaults) {
  std::filesystem::remove(userFile);
  std::filesystem::create_directory(userFile);
  testing::ScriptedUi ui;
  ToolbarOptions options;
  LoadOptions(*store, ui, 1000, options);
  EXPECT_EQ(options.BarHeight, 30);
  EXPECT_TRUE(options.BlockXSS);
  EXPECT_TRUE(ui.shown.empty());
  EXPECT_EQ(EnsureGUID(*store).size(), 32u);
  EXPECT_TRUE(std::filesystem::is_empty(userFile));
}

// Reading values does not read the file again while it stays as it was; a
// change another program makes is seen at the next read.
TEST_F(RegFileStoreTest, TheFileIsReadOnceWhileItDoesNotChange) {
  mdlRegistry::SaveSetting(*store, kSettingsKey, "BarHeight", std::string("44"), kRegSz);
  auto reader = MakeRegFileStore(userFile, machineFile, log);
  sys::ClearInjectedFailures();
  testing::ScriptedUi ui;
  ToolbarOptions options;
  LoadOptions(*reader, ui, 1000, options);
  LoadOptions(*reader, ui, 1000, options);
  EXPECT_EQ(options.BarHeight, 44);
  EXPECT_EQ(sys::CallCount(sys::Call::Open), 1);

  mdlRegistry::SaveSetting(*store, kSettingsKey, "BarHeight", std::string("45"), kRegSz);
  LoadOptions(*reader, ui, 1000, options);
  EXPECT_EQ(options.BarHeight, 45);
}

// A revision tells a reader that keeps values (the zone lists, asked for at
// every navigation) when to read them again: it moves with every change,
// whoever makes it and however, and stays while nothing changes.
TEST_F(RegFileStoreTest, TheRevisionMovesWithEveryChangeToTheFile) {
  const auto revision = [&] { return store->Revision(Root::CurrentUser); };
  const auto first = revision();
  ASSERT_TRUE(first);  // the folders do not exist yet: their creation is watched too
  EXPECT_EQ(revision(), first);

  auto other = MakeRegFileStore(userFile, machineFile, log);  // another program
  std::vector<std::optional<std::uint64_t>> seen{first};
  const auto changed = [&](const char* what) {
    const auto now = revision();
    EXPECT_TRUE(std::find(seen.begin(), seen.end(), now) == seen.end()) << what;
    EXPECT_EQ(revision(), now) << what;
    seen.push_back(now);
  };
  mdlRegistry::SaveSetting(*other, kSettingsKey, "TrustedSites", std::string("bank.example"), kRegSz);
  changed("created by another store");
  mdlRegistry::SaveSetting(*store, kSettingsKey, "TrustedSites", std::string("news.example"), kRegSz);
  changed("written by this store");
  std::ofstream(userFile, std::ios::app) << "\n";
  changed("written in place");
  ::chmod(userFile.c_str(), 0);
  ::chmod(userFile.c_str(), 0600);
  std::ofstream(dir / "replacement") << "Windows Registry Editor Version 5.00\n";
  std::filesystem::rename(dir / "replacement", userFile);
  changed("replaced by a rename");
  std::filesystem::rename(dir / "config", dir / "elsewhere");
  changed("its folder renamed away");
  std::filesystem::rename(dir / "elsewhere", dir / "config");
  changed("its folder back");
  std::filesystem::remove(userFile);
  changed("removed");
  std::filesystem::create_directory(userFile);
  changed("a directory in its place");
  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "TrustedSites", 0), SettingValue(0));
}

TEST_F(RegFileStoreTest, LocalMachineKeysCannotBeWrittenWithoutTheSystemFolder) {
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(store->CreateKey(Root::LocalMachine, "Software\\AboutURLs", key), kErrorAccessDenied);
  EXPECT_EQ(store->OpenKey(Root::LocalMachine, "Software", Access::Write, key), kErrorAccessDenied);
  EXPECT_EQ(store->OpenKey(Root::LocalMachine, "Software", Access::Read, key), kErrorFileNotFound);

  std::filesystem::create_directories(machineFile.parent_path());
  ASSERT_EQ(store->CreateKey(Root::LocalMachine, "Software\\AboutURLs", key), kErrorSuccess);
  EXPECT_EQ(key->SetValue("PhishingSite", kRegSz, "res://x"), kErrorSuccess);
  EXPECT_NE(Slurp(machineFile).find("[HKEY_LOCAL_MACHINE\\Software\\AboutURLs]"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(userFile));
}

TEST_F(RegFileStoreTest, AKeyOpenedForReadingCannotWrite) {
  mdlRegistry::SaveSetting(*store, kSettingsKey, "Debug", 1, kRegSz);
  std::unique_ptr<RegistryKey> key;
  ASSERT_EQ(store->OpenKey(Root::CurrentUser, kSettingsKey, Access::Read, key), kErrorSuccess);
  EXPECT_EQ(key->SetValue("Debug", kRegSz, "0"), kErrorAccessDenied);
  EXPECT_EQ(key->DeleteValue("Debug"), kErrorAccessDenied);
  std::vector<std::string> names;
  EXPECT_EQ(key->ValueNames(names), kErrorSuccess);
  EXPECT_EQ(names, std::vector<std::string>{"Debug"});
}

TEST_F(RegFileStoreTest, TwoProcessesWritingAtOnceLoseNothing) {
  constexpr int kWrites = 1000;
  std::vector<pid_t> children;
  for (const char* prefix : {"A", "B"}) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      bool quiet = false;
      Log childLog{paths, clock, quiet};
      auto own = MakeRegFileStore(userFile, machineFile, childLog);
      for (int i = 0; i < kWrites; ++i) {
        mdlRegistry::SaveSetting(*own, kSettingsKey, prefix + std::to_string(i), i, kRegSz);
      }
      _exit(0);
    }
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  std::unique_ptr<RegistryKey> key;
  ASSERT_EQ(store->OpenKey(Root::CurrentUser, kSettingsKey, Access::Read, key), kErrorSuccess);
  std::vector<std::string> names;
  key->ValueNames(names);
  EXPECT_EQ(names.size(), 2u * kWrites);
  for (int i = 0; i < kWrites; i += 97) {
    EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "B" + std::to_string(i), -1),
              SettingValue(std::to_string(i)));
  }
}

}  // namespace
}  // namespace tarnwick
