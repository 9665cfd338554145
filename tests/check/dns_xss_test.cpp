#include "CheckFixture.h"
#include "check/mdlDNS.h"
#include "check/mdlXSS.h"

namespace tarnwick::testing {
namespace {

struct HostTest : CheckFixture {
  Rex rex{*rexObject};
  mdlDNS dns{resolver, process.log};
};

TEST_F(HostTest, HostNamesAreExtractedAndCleaned) {
  const std::pair<const char*, const char*> cases[] = {
      {"http://user:pw@MyHost:8080/path?x", "myhost"},
      {"http://%41b/", "ab"},
      {"http://..a..b../", "a.b"},
      {"http://ex%01am\xE9ple.com/", "example.com"},
      {"http://a_b!c.example/", "a%5fb%21c.example"},
      {"http://3232235777/", "192.168.1.1"},
      {"http://0x7f.1/", "0x7f.1"},  // the "f" fails the numeric test
      {"https://10.1/", "10.0.0.1"},
      {"http://host\\path", "host"},
  };
  for (const auto& [url, host] : cases) EXPECT_EQ(dns.URL2Hostname(url, rex), host) << url;
  EXPECT_EQ(dns.URL2Hostname("not a url", rex), "");
  EXPECT_TRUE(Logged("(URL2Hostname) Bad url: not a url"));
  EXPECT_EQ(dns.URL2Hostname("http://1.2.3.4.5/", rex), "1.2.3.4.5");  // four dots: left alone
  EXPECT_EQ(dns.URL2Hostname("http://999.1.1.1/", rex), "999.1.1.1");
  EXPECT_TRUE(Logged("(URL2Hostname) Looks like IP address but isn't: 999.1.1.1"));
}

TEST_F(HostTest, PrivateAndSpecialUseRanges) {
  const std::pair<IPv4Bytes, bool> cases[] = {
      {{172, 15, 0, 1}, false},   {{172, 16, 0, 1}, true},  {{172, 31, 255, 255}, true}, {{172, 32, 0, 1}, false},
      {{192, 0, 2, 1}, true},     {{192, 0, 3, 1}, false},  {{10, 9, 9, 9}, true},       {{0, 1, 2, 3}, true},
      {{127, 0, 0, 1}, true},     {{192, 168, 5, 5}, true}, {{169, 254, 1, 1}, true},    {{224, 0, 0, 1}, true},
      {{255, 255, 255, 0}, true}, {{8, 8, 8, 8}, false},    {{203, 0, 113, 1}, false},
  };
  for (const auto& [address, isPrivate] : cases) {
    EXPECT_EQ(mdlDNS::IsPrivateAddress(address), isPrivate) << int(address[0]) << "." << int(address[1]);
  }
  EXPECT_FALSE(mdlDNS::IsPrivateAddress(std::nullopt));
}

TEST_F(HostTest, NamesResolveAfterTrimmingAndFailuresAreLogged) {
  resolver.names["shop.example"] = {198, 51, 100, 4};
  std::string host = "  shop.example ";
  EXPECT_EQ(dns.GetIPAddressBytes(host), (IPv4Bytes{198, 51, 100, 4}));
  EXPECT_EQ(host, "shop.example");
  EXPECT_EQ(dns.IPAddressString("nowhere.example"), "");
  EXPECT_TRUE(Logged("(GetIPAddressBytes) Unable to resolve hostname nowhere.example"));
  // All ones and all zeros are no addresses: they go to name resolution.
  std::string broadcast = "255.255.255.255";
  EXPECT_EQ(dns.GetIPAddressBytes(broadcast), std::nullopt);
}

struct XssTest : HostTest {
  mdlXSS& xss = process.XSS;
};

TEST_F(XssTest, DecodingUndoesEachDisguiseOnceAndInOrder) {
  std::string data = "a+b%3Cs%63ript%3E&#x41;&#66&#67;x\\y\x01\x7f%2527";
  EXPECT_EQ(xss.DecodeForXSS(data, rex), "a b<script>ABCxy%27");
  EXPECT_EQ(data, "a b<script>ABCxy%27");
  // Characters made by references are not filtered again.
  std::string reference = "&#1;&#x7f;";
  EXPECT_EQ(xss.DecodeForXSS(reference, rex), "\x01\x7f");
}

// The decoding skips a step where a byte scan shows its pattern cannot
// match; each step run every time must give the same text.
TEST_F(XssTest, SkippedStepsWouldNotHaveChangedTheText) {
  const auto everyStep = [&](std::string data) {
    data = rex.Replace(data, R"(\+)", " ", "g");
    data = rex.Replace(data, R"(\%([\da-f]{2}))", "chr(hex($1))", "ige");
    data = rex.Replace(data, R"([\x00-\x08\x0e-\x1f\x7f-\xff])", "", "g");
    data = rex.Replace(data, R"(&#(?:x([\da-f]*)|([\d]*));?)", "chr($1 ? hex($1) : $2)", "ige");
    return rex.Replace(data, R"(\\)", "", "g");
  };
  for (const char* text : {"http://a.example/",
                           "%",
                           "a%",
                           "%4",
                           "%4g",
                           "%g4",
                           "%%41",
                           "%2%41",
                           "%E9%e9",
                           "%0A%09",
                           "%5C%5c",
                           "%26%2378;",
                           "&",
                           "&#",
                           "&#;",
                           "&x#1",
                           "+%2B+",
                           "\\",
                           "\t\r\n\x0b\x0c",
                           "\x80\xff%7F",
                           "%25%34%31"}) {
    std::string data = text;
    EXPECT_EQ(xss.DecodeForXSS(data, rex), everyStep(text)) << text;
  }
}

TEST_F(XssTest, DetectionFollowsTheSettingAndLeavesTheDecodedUrl) {
  std::string url = "http://shop.example/?q=%3Cscript%3E";
  process.options.BlockXSS = false;
  EXPECT_FALSE(xss.Contains_XSS(url, rex));
  EXPECT_EQ(url, "http://shop.example/?q=%3Cscript%3E");

  process.options.BlockXSS = true;
  for (std::string disguised : {"http://shop.example/?q=%3Cscript%3E", "http://shop.example/?q=&#60;script&#62;",
                                "http://shop.example/?q=<script+src=x>"}) {
    EXPECT_TRUE(xss.Contains_XSS(disguised, rex)) << disguised;
  }
  EXPECT_TRUE(xss.Contains_XSS(url, rex));
  EXPECT_EQ(url, "http://shop.example/?q=<script>");
  EXPECT_TRUE(Logged("(Contains_XSS) Data: http://shop.example/?q=%3Cscript%3E"));
  EXPECT_TRUE(xss.PostData_Contains_XSS({'<', 'S', 'C', 'R', 'I', 'P', 'T', '>'}, rex));
  EXPECT_FALSE(xss.PostData_Contains_XSS({}, rex));
}

TEST_F(XssTest, AnEmptyOrMissingListDetectsNothingYetStillDecodes) {
  mdlXSS fresh(process.options, process.log);
  std::string url = "http://a.example/%3Cscript%3E";
  EXPECT_FALSE(fresh.Contains_XSS(url, rex));
  EXPECT_EQ(url, "http://a.example/<script>");
  fresh.SetXSSPatterns("");
  EXPECT_FALSE(fresh.Contains_XSS(url, rex));
  // A hostile pattern is no match, never a hang.
  fresh.SetXSSPatterns("(a+)+$\r\n([");
  std::string attack = "http://a.example/?" + std::string(5000, 'a') + "!";
  EXPECT_FALSE(fresh.Contains_XSS(attack, rex));
}

}  // namespace
}  // namespace tarnwick::testing
