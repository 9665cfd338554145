// Which URLs are checked, and what the server is asked. Hosts written as
// numbers in any form the address parser reads are the address they stand
// for: in the zone of that address and checked like any other site; only a
// real name without a dot is on the intranet. What goes to /check_url is the
// scheme and the host part alone, and a URL that cannot be canonicalised
// sends nothing.
#include "CheckFixture.h"
#include "ZoneMap.h"

namespace tarnwick::testing {
namespace {

using pagefetch::MapZone;

TEST(ZoneMapTest, EveryNumericFormOfAnAddressIsInTheInternetZone) {
  const pagefetch::ZoneLists none;
  for (const char* url : {
           "http://134744072/login",
           "http://0x08080808/",
           "HTTP://0X08080808/",
           "http://01002004010/",
           "http://010.010.010.010/",
           "http://8.526344/",
           "http://8.8.2056/",
           "http://0x8.0x8.0x8.0x8/",
           "http://%31%33%34%37%34%34%30%37%32/",
           "http://user@134744072:8080/x",
           "http://134744072?q",
           "http://2130706433/",    // 127.0.0.1: the engine decides what is private, not the zone
           "http://99999999999/",   // too big for an address, and no name either
           "http://1347%0144072/",  // a control character the host name cleaning drops
           "http://[2001:db8::1]/",
       }) {
    EXPECT_EQ(MapZone(url, none), pagefetch::kZoneInternet) << url;
  }
  for (const char* url : {"http://intranet/", "http://wiki-2/x", "http://%41b/", "http://deadbeef/", "http://0x7g/",
                          "http://print_srv/"}) {
    EXPECT_EQ(MapZone(url, none), pagefetch::kZoneIntranet) << url;
  }
}

// Without lists most hosts are answered from the URL as written; a list that
// covers none of them makes every host be decoded first: the answers agree.
TEST(ZoneMapTest, HostsAnsweredWithoutDecodingGetTheDecodedHostsZone) {
  const pagefetch::ZoneLists none;
  const pagefetch::ZoneLists unrelated{"unrelated.invalid", "", ""};
  for (const char* url : {"http://www.example.com/a.b",
                          "HTTPS://WWW.EXAMPLE.COM:8443/",
                          "http://a.b@intranet/x.y",
                          "http://intranet@a.b/",
                          "http://intranet:80.1/",
                          "http://intranet/?q=a.b",
                          "http://intranet#a.b",
                          "http://x%2ey/",
                          "http://%2e/",
                          "http://./",
                          "http://[::1]/",
                          "http://[a.b]/",
                          "ftp://a.b",
                          "http://.",
                          "http://",
                          "a.b",
                          "file://a.b/",
                          "//a.b/",
                          "http:/a.b/",
                          "http://a.b\\c/"}) {
    EXPECT_EQ(MapZone(url, none), MapZone(url, unrelated)) << url;
  }
}

TEST(ZoneMapTest, ListsNameAddressesInAnyForm) {
  const pagefetch::ZoneLists lists{"0x08080808", "", "1.1.1.1"};
  EXPECT_EQ(MapZone("http://8.8.8.8/", lists), pagefetch::kZoneTrusted);
  EXPECT_EQ(MapZone("http://134744072/", lists), pagefetch::kZoneTrusted);
  EXPECT_EQ(MapZone("http://16843009/", lists), pagefetch::kZoneRestricted);
  EXPECT_EQ(MapZone("http://9.8.8.8/", lists), pagefetch::kZoneInternet);
  EXPECT_EQ(MapZone("http://1.8.8.8/", {"8.8", "", ""}), pagefetch::kZoneInternet);  // no suffixes of addresses
}

using NumericHostTest = CheckFixture;

TEST_F(NumericHostTest, NumericHostsAreCheckedAndSentWithTheirAddress) {
  for (const char* host : {"134744072", "0x08080808", "01002004010", "8.526344", "010.010.010.010"}) {
    const std::string url = "http://" + std::string(host) + "/";
    EXPECT_FALSE(Navigate(url)) << url;
    EXPECT_TRUE(checker.LastOutcome().checked) << url;
    ASSERT_FALSE(Targets().empty()) << url;
    EXPECT_EQ(Targets().back(), "/check_url/http://" + std::string(host) + "/134744072");
  }
  verdict.status = 403;
  EXPECT_TRUE(Navigate("http://0x08080808/login"));
  EXPECT_EQ(checker.LastOutcome().step, CheckStep::Remote);
}

TEST_F(NumericHostTest, TheCheckPathCarriesNoPathQueryOrFragment) {
  const std::pair<const char*, const char*> cases[] = {
      {"http://8.8.8.8?x=1", "/check_url/http://8.8.8.8/134744072"},
      {"http://8.8.8.8?x#top", "/check_url/http://8.8.8.8/134744072"},
      {"http://8.8.8.8:8080?q=/x/y", "/check_url/http://8.8.8.8:8080/134744072"},
      {"https://8.8.8.8/a/b?c#d", "/check_url/https://8.8.8.8/134744072"},
      {"ftp://8.8.8.8?x", "/check_url/ftp://8.8.8.8/134744072"},
  };
  for (const auto& [url, target] : cases) {
    EXPECT_FALSE(Navigate(url)) << url;
    ASSERT_FALSE(Targets().empty()) << url;
    EXPECT_EQ(Targets().back(), target) << url;
  }
}

TEST_F(NumericHostTest, AUrlThatCannotBeCanonicalisedIsNotSent) {
  process.CurrentRiskRank = 4;
  EXPECT_FALSE(Navigate("http://203.0.113.9/" + std::string(8200, 'a')));
  EXPECT_TRUE(Logged("Could not canonicalise URL (): The canonical URL is longer than 8191 characters"));
  EXPECT_TRUE(Logged("URL not supported: \n"));
  EXPECT_EQ(checker.GetLastResponse(), "No information available.");
  EXPECT_EQ(process.CurrentRiskRank, -1);
  EXPECT_TRUE(server.Requests().empty());
}

}  // namespace
}  // namespace tarnwick::testing
