// MapZone on POSIX answers from the toolbar's own zone lists in the
// settings; a list changed by any program applies to the next question,
// though the lists are not read again while they stay as they are.
#include <gtest/gtest.h>

#include <fstream>

#include "ComponentContext.h"
#include "ZoneMap.h"
#include "ZoneMapper.h"
#include "common/TestSupport.h"
#include "settings/SiteLists.h"
#include "settings/mdlRegistry.h"

namespace tarnwick {
namespace {

TEST(ZoneMapperPosix, AChangedListAppliesToTheNextQuestion) {
  testing::TestProcess t;  // the settings files in its folder, as the component finds them
  kit::ComponentContext context;
  const pagefetch::ZoneMapper zones = pagefetch::MakePlatformZoneMapper(context);
  SettingsStore& settings = *t.process.settings;
  const std::string bank = "https://www.bank.example/login";
  EXPECT_EQ(zones(bank), pagefetch::kZoneInternet);

  std::string error;
  ASSERT_TRUE(SetTrustedSites(settings, {"bank.example"}, error)) << error;
  EXPECT_EQ(zones(bank), pagefetch::kZoneTrusted);
  EXPECT_EQ(zones("http://intranet/"), pagefetch::kZoneIntranet);
  mdlRegistry::SaveSetting(settings, mdlRegistry::kSettingsKey, "RestrictedSites", std::string("www.bank.example"),
                           kRegSz);
  EXPECT_EQ(zones(bank), pagefetch::kZoneRestricted);

  // An editor writing the file in place.
  const auto file = std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "tarnwick" / "settings.reg";
  std::ofstream(file, std::ios::trunc) << "Windows Registry Editor Version 5.00\n\n[HKEY_CURRENT_USER\\"
                                       << mdlRegistry::kSettingsKey << "]\n\"IntranetSites\"=\"bank.example\"\n";
  EXPECT_EQ(zones(bank), pagefetch::kZoneIntranet);
  std::filesystem::remove(file);
  EXPECT_EQ(zones(bank), pagefetch::kZoneInternet);
}

}  // namespace
}  // namespace tarnwick
