#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "check/HostsFile.h"
#include "check/Resolver.h"
#include "common/TestSupport.h"

namespace tarnwick::testing {
namespace {

TEST(HostsFileTest, NamesAreFoundOnTheirLinesWithoutCase) {
  const std::string text =
      "# test sites\n"
      "127.0.0.1 localhost\n"
      "8.8.8.8\tNews.Example www.news.example   # the news site\n"
      "::1 ip6.test\n"
      "1.1.1.1 shop.test\r\n"
      "2.2.2.2 shop.test\n"
      "300.1.1.1 big.test\n"
      "1.2.3 short.test\n"
      "not-an-address name.test\n";
  EXPECT_EQ(LookUpHostsText(text, "news.example"), (IPv4Bytes{8, 8, 8, 8}));
  EXPECT_EQ(LookUpHostsText(text, "WWW.NEWS.EXAMPLE"), (IPv4Bytes{8, 8, 8, 8}));
  EXPECT_EQ(LookUpHostsText(text, "shop.test"), (IPv4Bytes{1, 1, 1, 1}));  // the first line wins
  for (const char* missing : {"ip6.test", "big.test", "short.test", "name.test", "the", "news", "#", ""}) {
    EXPECT_EQ(LookUpHostsText(text, missing), std::nullopt) << missing;
  }
  EXPECT_EQ(LookUpHostsText("", "a.test"), std::nullopt);
  EXPECT_EQ(LookUpHostsText("1.2.3.4", "1.2.3.4"), std::nullopt);  // an address alone names nothing
}

#ifndef _WIN32
// The platform's resolver consults the file TARNWICK_HOSTS names before it
// refuses a reserved name; without the file such names stay unresolved.
TEST(HostsFileTest, ThePlatformResolverReadsTheFileTarnwickHostsNames) {
  TempDir dir;
  std::ofstream(dir / "hosts") << "8.8.8.8 www.news.example\n1.1.1.1 shop.test\n";
  auto resolver = MakePlatformResolver();
  ::setenv("TARNWICK_HOSTS", (dir / "hosts").c_str(), 1);
  EXPECT_EQ(resolver->ResolveName("www.news.example"), (IPv4Bytes{8, 8, 8, 8}));
  EXPECT_EQ(resolver->ResolveName("SHOP.test"), (IPv4Bytes{1, 1, 1, 1}));
  EXPECT_EQ(resolver->ResolveName("other.test"), std::nullopt);
  ::setenv("TARNWICK_HOSTS", (dir / "missing").c_str(), 1);
  EXPECT_EQ(resolver->ResolveName("shop.test"), std::nullopt);
  ::unsetenv("TARNWICK_HOSTS");
  EXPECT_EQ(resolver->ResolveName("shop.test"), std::nullopt);
}
#endif

}  // namespace
}  // namespace tarnwick::testing
