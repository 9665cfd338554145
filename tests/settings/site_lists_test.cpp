#include <gtest/gtest.h>

#include "common/TestSupport.h"
#include "settings/SettingValue.h"
#include "settings/SiteLists.h"
#include "settings/mdlRegistry.h"

namespace tarnwick::testing {
namespace {

using Sites = std::vector<std::string>;

TEST(SiteListsTest, EntriesCoverTheirHostsAndTheHostsBelow) {
  EXPECT_EQ(SiteOfURL("HTTPS://User:pw@WWW.Bank.Example:8443/login?x#y"), "www.bank.example");
  EXPECT_EQ(SiteOfURL("http://%62ank.example/"), "bank.example");
  EXPECT_EQ(SiteOfURL("http://134744072/"), "8.8.8.8");
  EXPECT_EQ(SiteOfURL("about:blank"), "");
  EXPECT_EQ(SiteListEntries(" a.example;b.example\t;; *.c.example "), (Sites{"a.example", "b.example", "*.c.example"}));

  const std::string list = "Bank.Example; *.shop.example 0x08080808";
  for (const char* site : {"bank.example", "www.bank.example", "shop.example", "a.b.shop.example", "8.8.8.8"}) {
    EXPECT_TRUE(SiteListCovers(list, site)) << site;
  }
  for (const char* site : {"notbank.example", "bank.example.evil", "example", "8.8.8.9", ""}) {
    EXPECT_FALSE(SiteListCovers(list, site)) << site;
  }
  EXPECT_FALSE(SiteListCovers("8.8", "1.8.8.8"));  // an address names itself alone
}

struct TrustedSitesTest : ::testing::Test {
  TestProcess t;
  SettingsStore& store = *t.process.settings;
  std::string Stored() {
    return ToText(mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, kTrustedSites, std::string("-")));
  }
};

TEST_F(TrustedSitesTest, SitesAreAddedOnceAndRemovedWithEveryEntryThatCoversThem) {
  EXPECT_TRUE(TrustSite(store, "https://www.bank.example/login"));
  EXPECT_TRUE(TrustSite(store, "http://www.bank.example/other"));  // covered already
  EXPECT_TRUE(TrustSite(store, "http://news.example/"));
  EXPECT_EQ(Stored(), "www.bank.example; news.example");
  EXPECT_FALSE(TrustSite(store, "mailto:someone@bank.example"));
  EXPECT_FALSE(TrustSite(store, "http://[::1]/"));

  std::string error;
  ASSERT_TRUE(SetTrustedSites(store, {"bank.example", "*.bank.example", "www.bank.example", "news.example"}, error));
  EXPECT_TRUE(DistrustSite(store, "https://www.bank.example/"));
  EXPECT_EQ(TrustedSites(store), (Sites{"news.example"}));
  EXPECT_FALSE(DistrustSite(store, "https://www.bank.example/"));
  EXPECT_FALSE(DistrustSite(store, "not a url"));
}

TEST_F(TrustedSitesTest, AListWithAnythingButHostNamesIsNotWritten) {
  std::string error;
  ASSERT_TRUE(SetTrustedSites(store, {"bank.example"}, error));
  for (const char* bad : {"", "two words", "a;b", "http://bank.example/", "*."}) {
    EXPECT_FALSE(SetTrustedSites(store, {"news.example", bad}, error)) << bad;
    EXPECT_EQ(error, "\"" + std::string(bad) + "\" is not a host name");
  }
  EXPECT_EQ(Stored(), "bank.example");
  ASSERT_TRUE(SetTrustedSites(store, {}, error));
  EXPECT_EQ(Stored(), "");
}

}  // namespace
}  // namespace tarnwick::testing
