// The registry backend against the real registry of the Wine prefix.
#include <gtest/gtest.h>
#include <windows.h>

#include "common/TestSupport.h"
#include "settings/mdlRegistry.h"

namespace tarnwick {
namespace {

using mdlRegistry::kSettingsKey;

struct RegistryTest : ::testing::Test {
  testing::TempDir dir;
  testing::TestPaths paths{dir.path()};
  testing::FakeClock clock;
  bool debug = false;
  Log log{paths, clock, debug};
  std::unique_ptr<SettingsStore> store = testing::MakeCleanTestStore(dir.path(), log);

  HKEY RawKey() {
    HKEY key = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Tarnwick\\Toolbar\\Settings", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    &key, nullptr);
    return key;
  }
};

TEST_F(RegistryTest, TypesWrittenByOtherProgramsReadAsTheyShould) {
  HKEY key = RawKey();
  const DWORD forty = 40;
  RegSetValueExA(key, "Number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&forty), sizeof forty);
  RegSetValueExA(key, "Terminated", 0, REG_SZ, reinterpret_cast<const BYTE*>("abc"), 4);
  RegSetValueExA(key, "Blob", 0, REG_BINARY, reinterpret_cast<const BYTE*>("abc"), 3);
  RegCloseKey(key);

  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "Number", 0), SettingValue(40));
  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "Terminated", 0), SettingValue(std::string("abc")));
  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "Blob", 5), SettingValue(5));
}

TEST_F(RegistryTest, OurTextValuesAreStoredWithoutTerminatorAndReadBackWhole) {
  mdlRegistry::SaveSetting(*store, kSettingsKey, "ServerTimeout", std::string("5"), kRegSz);
  HKEY key = RawKey();
  DWORD type = 0;
  DWORD size = 0;
  ASSERT_EQ(RegQueryValueExA(key, "ServerTimeout", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(mdlRegistry::GetSetting(*store, kSettingsKey, "ServerTimeout", 0), SettingValue(std::string("5")));
}

TEST_F(RegistryTest, AMissingKeyGivesTheDefaultAndCannotBeDeletedFrom) {
  EXPECT_EQ(mdlRegistry::GetSetting(*store, "Software\\Tarnwick\\Nowhere", "X", 3), SettingValue(3));
  EXPECT_FALSE(mdlRegistry::DeleteValue(*store, Root::CurrentUser, "Software\\Tarnwick\\Nowhere", "X"));
}

}  // namespace
}  // namespace tarnwick
