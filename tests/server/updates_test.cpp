// The update protocol: /updates/ with Last-Modified and 304, /file_hashes as
// the toolbar's own hash routine computes it, and /check_update.
#include <gtest/gtest.h>

#include <chrono>

#include "ServerFixture.h"
#include "server/HttpDate.h"
#include "support/CMD5.h"
#include "support/Files.h"
#include "support/Text.h"

namespace tarnwick::server::testing {
namespace {

class UpdatesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // Bytes 0x80-0x9F hash differently as text than as raw bytes.
    WriteText(server.data / "localblock.dat", "^https?://[^/]*@\r\nphish\x80\x9F\r\n");
    WriteText(server.data / "menu.xml", "<menu><item href=\"http://a.example/\">A</item></menu>");
    WriteText(server.data / "tarnwickrex.dll", std::string("MZ\x80\x90\0\x01", 6));
    WriteText(server.data / "server" / "risk.conf", "base = 1\n");
    std::filesystem::last_write_time(server.data / "localblock.dat", kModified);
    server.Start();
  }

  // 2026-01-02 03:04:05 UTC
  static constexpr std::int64_t kModifiedSeconds = 1767323045;
  const std::filesystem::file_time_type kModified =
      std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(kModifiedSeconds)));
  ServerFixture server;
};

TEST_F(UpdatesTest, FilesComeWithLastModifiedAndAreNotSentAgainWhenUnchanged) {
  const HttpResult file = HttpGet(server.Url("/updates/localblock.dat"));
  EXPECT_EQ(file.status, 200);
  EXPECT_EQ(file.body, "^https?://[^/]*@\r\nphish\x80\x9F\r\n");
  EXPECT_EQ(file.Header("Last-Modified"), "Fri, 02 Jan 2026 03:04:05 GMT");

  const auto since = [&](const std::string& date) {
    return HttpGet(server.Url("/updates/localblock.dat"), {"If-Modified-Since: " + date}).status;
  };
  EXPECT_EQ(since("Fri, 02 Jan 2026 03:04:05 GMT"), 304);
  EXPECT_EQ(since("Sat, 3 Jan 2026 00:00:00 GMT"), 304);
  EXPECT_EQ(since("Fri, 02 Jan 2026 03:04:04 GMT"), 200);
  EXPECT_EQ(since("Thu, 1 Jan 1970 00:00:00 GMT"), 200);  // what the toolbar sends when it has no date
  EXPECT_EQ(since("yesterday"), 200);
}

TEST_F(UpdatesTest, OnlyPublishedFilesAreServed) {
  for (const char* path :
       {"/updates/", "/updates/missing.dat", "/updates/..", "/updates/%2e%2e", "/updates/../server.db",
        "/updates/..%2fserver.db", "/updates/server/risk.conf", "/updates/server%2Frisk.conf",
        "/updates/%2Fetc%2Fpasswd", "/updates/.hidden", "/updates/server"}) {
    EXPECT_EQ(HttpGet(server.Url(path)).status, 404) << path;
  }

  // A link is not followed, wherever it points.
  WriteText(server.dir / "secret.txt", "not published");
  std::filesystem::create_symlink(server.dir / "secret.txt", server.data / "outside.dat");
  std::filesystem::create_symlink("localblock.dat", server.data / "inside.dat");
  EXPECT_EQ(HttpGet(server.Url("/updates/outside.dat")).status, 404);
  EXPECT_EQ(HttpGet(server.Url("/updates/inside.dat")).status, 404);
  EXPECT_EQ(HttpGet(server.Url("/file_hashes?file0=outside.dat")).body, "");
}

TEST_F(UpdatesTest, HashesAreWhatTheToolbarComputesInTheOrderAsked) {
  const HttpResult answer = HttpGet(
      server.Url("/file_hashes?file0=localblock.dat&file1=tarnwick.xml&file2=menu.xml&file3=logo.bmp&file4=xss.dat"
                 "&file5=tarnwickrex.dll&file6=pagefetch.dll&other=menu.xml"));
  ASSERT_EQ(answer.status, 200);

  tarnwick::testing::TestProcess client;
  const CMD5 md5;
  const std::string text = UpperAscii(md5.MD5(ReadFile(client.process.log, server.data / "localblock.dat")));
  const std::string menu = UpperAscii(md5.MD5(ReadFile(client.process.log, server.data / "menu.xml")));
  const std::string dll = UpperAscii(md5.MD5Byte(ReadBinaryFile(client.process.log, server.data / "tarnwickrex.dll")));
  EXPECT_EQ(answer.body, "localblock.dat=" + text + "\r\nmenu.xml=" + menu + "\r\ntarnwickrex.dll=" + dll + "\r\n");
  // The text routine maps 0x80-0x9F, so the text file's hash is not its raw bytes' hash.
  EXPECT_NE(text, UpperAscii(md5.MD5Byte(ReadBinaryFile(client.process.log, server.data / "localblock.dat"))));

  // A changed file gets a new hash.
  WriteText(server.data / "menu.xml", "<menu/>");
  EXPECT_EQ(HttpGet(server.Url("/file_hashes?file0=menu.xml")).body,
            "menu.xml=" + UpperAscii(md5.MD5("<menu/>")) + "\r\n");
}

TEST_F(UpdatesTest, CheckUpdateOffersTheNewestPublishedVersionAboveTheAskedOne) {
  WriteText(server.data / "releases" / "1.0.1" / "twtb.dll", "version 1.0.1");
  WriteText(server.data / "releases" / "1.2.0" / "twtb.dll", "version 1.2.0");
  WriteText(server.data / "releases" / "9.9.9" / "readme.txt", "no program here");
  const HttpResult newer = HttpGet(server.Url("/check_update/127/1.0.0/0123456789ABCDEF0123456789ABCDEF"));
  EXPECT_EQ(newer.status, 200);
  EXPECT_EQ(newer.body, "version 1.2.0");
  EXPECT_EQ(HttpGet(server.Url("/check_update/127/1.2.0/0123456789ABCDEF0123456789ABCDEF")).status, 404);
  EXPECT_EQ(HttpGet(server.Url("/check_update/127/1.10.0/")).status, 404);
  for (const char* path : {"/check_update/127/1.0/GUID", "/check_update/127/1.0.x/GUID", "/check_update/1.0.0",
                           "/check_update/127/1.0.0/GUID/more"}) {
    EXPECT_EQ(HttpGet(server.Url(path)).status, 400) << path;
  }
}

TEST(HttpDate, ReadsTheThreeFormsAndWritesTheFirst) {
  EXPECT_EQ(FormatHttpDate(0), "Thu, 01 Jan 1970 00:00:00 GMT");
  EXPECT_EQ(FormatHttpDate(784111777), "Sun, 06 Nov 1994 08:49:37 GMT");
  EXPECT_EQ(ParseHttpDate("Sun, 06 Nov 1994 08:49:37 GMT"), 784111777);
  EXPECT_EQ(ParseHttpDate("Sunday, 06-Nov-94 08:49:37 GMT"), 784111777);
  EXPECT_EQ(ParseHttpDate("Sun Nov  6 08:49:37 1994"), 784111777);
  EXPECT_EQ(ParseHttpDate("Thu, 1 Jan 1970 00:00:00 GMT"), 0);
  EXPECT_EQ(ParseHttpDate(FormatHttpDate(1767323045)), 1767323045);
  for (const char* unreadable : {"", "yesterday", "Sun, 32 Nov 1994 08:49:37 GMT", "Sun, 06 Nov 1994 25:00:00 GMT"}) {
    EXPECT_FALSE(ParseHttpDate(unreadable)) << unreadable;
  }
  using namespace std::string_view_literals;
  EXPECT_FALSE(ParseHttpDate("Sun, 06 Nov 1994 08:49:37 GMT\0garbage"sv));
}

}  // namespace
}  // namespace tarnwick::server::testing
