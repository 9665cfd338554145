// MapZone on Windows answers from the system's security zones: the zone map
// the person (or a policy) set in the registry, as the browser reads it.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "ComponentContext.h"
#include "ZoneMapper.h"

namespace tarnwick {
namespace {

constexpr const char* kDomains = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\ZoneMap\\Domains\\";

class SystemZones : public ::testing::Test {
 protected:
  SystemZones() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~SystemZones() override {
    for (const char* domain : {"bank.example", "evil.example", "corp.example"}) {
      RegDeleteTreeA(HKEY_CURRENT_USER, (std::string(kDomains) + domain).c_str());
    }
    CoUninitialize();
  }

  static void MapDomain(const std::string& domain, const char* scheme, DWORD zone) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, (kDomains + domain).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                              nullptr),
              ERROR_SUCCESS);
    RegSetValueExA(key, scheme, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&zone), sizeof zone);
    RegCloseKey(key);
  }

  kit::ComponentContext context;
};

TEST_F(SystemZones, TheZoneMapDecidesAndEverythingElseIsTheInternet) {
  MapDomain("bank.example", "https", 2);
  MapDomain("evil.example", "*", 4);
  MapDomain("corp.example", "http", 1);
  const pagefetch::ZoneMapper zones = pagefetch::MakePlatformZoneMapper(context);
  EXPECT_EQ(zones("https://www.bank.example/login"), 2);
  EXPECT_EQ(zones("http://www.bank.example/"), 3);  // the entry names https only
  EXPECT_EQ(zones("http://evil.example/x"), 4);
  EXPECT_EQ(zones("http://intranet.corp.example/"), 1);
  EXPECT_EQ(zones("file:///C:/page.htm"), 0);
  EXPECT_EQ(zones("http://203.0.113.7/"), 3);
  EXPECT_EQ(zones("http://plain.test/"), 3);
  // What the system cannot place is checked like any Internet site.
  EXPECT_EQ(zones(std::string(3000, 'h')), 3);
}

}  // namespace
}  // namespace tarnwick
