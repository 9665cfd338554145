// Importing each feed format into a real database file: rows rejected with
// their reasons, the rest stored once.
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "common/TestSupport.h"
#include "server/FeedImport.h"

namespace tarnwick::server {
namespace {

struct Recorder final : ImportProgress {
  void Committed(const ImportSummary& soFar) override { commits.push_back(soFar.added + soFar.known); }
  void Rejected(const std::string& where, const std::string& reason) override {
    rejections.push_back(where + ": " + reason);
  }
  std::vector<std::size_t> commits;
  std::vector<std::string> rejections;
};

struct Contents final : IndexSource {
  void PhishingSite(std::string_view host) override { sites.emplace(host); }
  void PhishingPage(std::string_view, std::string_view siteUrl) override { pages.emplace(siteUrl); }
  void PhishingHostAddress(std::uint32_t address, std::string_view host) override {
    addresses.emplace(std::to_string(address) + " " + std::string(host));
  }
  std::set<std::string> sites, pages, addresses;
};

class ImportTest : public ::testing::Test {
 protected:
  ImportSummary Import(FeedFormat format, const std::string& feed, bool wholeSites = false) {
    std::istringstream in(feed);
    recorder = Recorder();
    return ImportFeed(in, ImportOptions{format, wholeSites, 2}, *storage, recorder);
  }
  Contents Stored() {
    Contents contents;
    storage->LoadIndex(contents);
    return contents;
  }

  tarnwick::testing::TempDir dir;
  std::unique_ptr<Storage> storage = OpenSqliteStorage(dir / "feeds.db");
  Recorder recorder;
};

TEST_F(ImportTest, PhishtankCsvRejectsBadRowsAndKeepsGoing) {
  const ImportSummary summary = Import(FeedFormat::PhishtankCsv,
                                       "phish_id,url,phish_detail_url,submission_time,verified,verification_time,"
                                       "online,target\r\n"
                                       "1,http://a.example/login.php,d,t,yes,t,yes,PayPal\r\n"
                                       "2,not a url,d,t,yes,t,yes,Other\r\n"
                                       "3,http://b.example/,d,t,no,t,yes,Other\r\n"
                                       "4,http://c.example/,d,t,yes,t,no,Other\r\n"
                                       "5,\"http://d.example/x,y.php\",d,t,yes,t,yes,Other\r\n"
                                       "6,http://e.example/,d,t,yes\r\n"
                                       "7,\"http://f.example/,d,t,yes,t,yes,Other\r\n");
  EXPECT_EQ(summary.added, 2u);
  EXPECT_EQ(summary.rejected, 5u);
  EXPECT_EQ(recorder.rejections,
            (std::vector<std::string>{"line 3: URL contains white space or control characters", "line 4: not verified",
                                      "line 5: not online", "line 7: expected 8 columns, found 5",
                                      "line 8: a quoted field is not closed"}));
  EXPECT_EQ(Stored().pages, (std::set<std::string>{"a.example/login.php", "d.example/x,y.php"}));

  Import(FeedFormat::PhishtankCsv, "id,link\n1,http://x.example/\n");
  EXPECT_EQ(recorder.rejections, (std::vector<std::string>{"line 1: the header names no url column; nothing read"}));
}

TEST_F(ImportTest, PhishtankJsonKeepsHostingAddressesAndStopsAtBrokenJson) {
  const ImportSummary summary = Import(FeedFormat::PhishtankJson, R"([
    {"phish_id":1,"url":"http:\/\/a.example\/","verified":"yes","online":"yes","target":"PayPal",
     "details":[{"ip_address":"203.0.113.7"},{"ip_address":"2001:db8::1"}]},
    42,
    {"phish_id":3,"verified":"yes"},
    {"phish_id":4,"url":"http://b.example/","verified":"no"},
    {"phish_id":5,"url":"http://c.example/p\u0068p","online":"yes"},
    {"phish_id":6,"url":"http://d.example/" "oops"},
    {"phish_id":7,"url":"http://e.example/"}
  ])");
  EXPECT_EQ(summary.added, 2u);
  EXPECT_EQ(recorder.rejections,
            (std::vector<std::string>{"entry 2 (line 4): not an object", "entry 3 (line 5): no url",
                                      "entry 4 (line 6): not verified",
                                      "entry 6: malformed JSON at line 8: syntax error while parsing object - "
                                      "unexpected string literal; expected '}'; the rest is not read"}));
  const Contents stored = Stored();
  EXPECT_EQ(stored.sites, (std::set<std::string>{"a.example"}));
  EXPECT_EQ(stored.pages, (std::set<std::string>{"c.example/php"}));
  EXPECT_EQ(stored.addresses, (std::set<std::string>{"3405803783 a.example"}));

  Import(FeedFormat::PhishtankJson, "{\"url\":\"http://a.example/\"}");
  EXPECT_EQ(recorder.rejections,
            (std::vector<std::string>{
                "entry 1: malformed JSON at line 1: the feed is not a JSON array; the rest is not read"}));
}

TEST_F(ImportTest, HostileJsonIsReadInBoundedMemory) {
  // One entry holding a hundred thousand values is rejected whole; the
  // entries around it are read.
  std::string crowded = R"([{"url":"http://a.example/"},{"url":"http://b.example/","details":[)";
  for (int i = 0; i < 100000; ++i) crowded += "{},";
  crowded += R"({}]},{"url":"http://c.example/"}])";
  Import(FeedFormat::PhishtankJson, crowded);
  EXPECT_EQ(recorder.rejections, (std::vector<std::string>{"entry 2 (line 1): more than 1000 values"}));
  EXPECT_EQ(Stored().sites, (std::set<std::string>{"a.example", "c.example"}));

  // A value the parser would have to gather whole, a run of structure it
  // would keep, and nesting without end.
  Import(FeedFormat::PhishtankJson, R"([{"url":"http://)" + std::string(2 << 20, 'x'));
  EXPECT_EQ(recorder.rejections,
            (std::vector<std::string>{
                "entry 1: malformed JSON at line 1: more than 1 MiB without a string, number or literal; "
                "the rest is not read"}));
  std::string structure = R"([{"url":"http://a.example/","details":[)";
  for (int i = 0; i < 400000; ++i) structure += "{},";
  Import(FeedFormat::PhishtankJson, structure + "{}]}]");
  EXPECT_EQ(recorder.rejections,
            (std::vector<std::string>{"entry 1: malformed JSON at line 1: more than 1 MiB without a string, number or "
                                      "literal; the rest is not read"}));
  Import(FeedFormat::PhishtankJson, "[" + std::string(100000, '['));
  EXPECT_EQ(recorder.rejections,
            (std::vector<std::string>{"entry 1: malformed JSON at line 1: nested deeper than 64 levels; the rest "
                                      "is not read"}));
}

TEST_F(ImportTest, TextAfterTheJsonArrayIsAnError) {
  const ImportSummary summary = Import(FeedFormat::PhishtankJson, "[{\"url\":\"http://a.example/\"}]\n<html>");
  EXPECT_EQ(summary.added, 1u);
  EXPECT_EQ(recorder.rejections, (std::vector<std::string>{"line 2: text after the closing ] of the feed"}));
  EXPECT_EQ(Import(FeedFormat::PhishtankJson, "[]\n\n").rejected, 0u);
}

TEST_F(ImportTest, LongLinesAndWordsThatAreNoHostsAreRejected) {
  Import(FeedFormat::Lines, "Home\nv1.2\n404\n-----\ne.g.\nlocalhost\nhttp://intranet/login\n" +
                                std::string(100000, 'a') + "\n" + std::string(8192, 'a') + "\n" +
                                std::string(8193, 'a') + "\nwhole.example\n192.0.2.7");
  EXPECT_EQ(recorder.rejections,
            (std::vector<std::string>{
                "line 1: 'home' is not an Internet host name", "line 2: 'v1.2' is not an Internet host name",
                "line 4: '-----' is not an Internet host name", "line 5: 'e.g' is not an Internet host name",
                "line 6: 'localhost' is not an Internet host name", "line 7: 'intranet' is not an Internet host name",
                "line 8: a line longer than 8192 bytes", "line 9: URL longer than 2048 characters",
                "line 10: a line longer than 8192 bytes"}));
  EXPECT_EQ(Stored().sites, (std::set<std::string>{"whole.example", "192.0.2.7", "404"}));
}

TEST_F(ImportTest, UrlListsAndUrlhausCsv) {
  Import(FeedFormat::OpenPhish,
         "http://a.example/x\n\n  https://b.example/y?z=1  \r\nftp://c.example/\nhttp://\nhttp://d.example:99999/\n"
         "http://e_e.example/\n");
  EXPECT_EQ(recorder.rejections, (std::vector<std::string>{"line 4: not an http or https URL",
                                                           "line 5: no valid host name", "line 6: bad port"}));

  Import(FeedFormat::Lines, "# ours\nwhole.example\nhttp://f.example/a#frag\n#http://g.example/\n");
  EXPECT_TRUE(recorder.rejections.empty());

  Import(FeedFormat::UrlhausCsv,
         "# id,dateadded,url,url_status,last_online,threat,tags,urlhaus_link,reporter\n"
         "\"1\",\"2026-01-01 00:00:00\",\"http://h.example/bin.exe\",\"online\",\"\",\"malware_download\","
         "\"exe\",\"https://urlhaus.abuse.ch/url/1/\",\"x\"\n"
         "\"2\",\"2026-01-01 00:00:00\",\"http://i.example/bin.exe\"\n" +
             std::string(70000, ',') + "\n");
  EXPECT_EQ(recorder.rejections, (std::vector<std::string>{"line 3: expected 9 columns, found 3",
                                                           "line 4: a line longer than 65536 bytes"}));

  const Contents stored = Stored();
  EXPECT_EQ(stored.sites, (std::set<std::string>{"whole.example", "e_e.example"}));
  EXPECT_EQ(stored.pages,
            (std::set<std::string>{"a.example/x", "b.example/y?z=1", "f.example/a", "h.example/bin.exe"}));
}

TEST_F(ImportTest, HostsAreStoredAsTheHostKeyReadsThemAndANulEndsNoHost) {
  // A page is kept under its host decoded and in lower case, so that its
  // pattern matches the URL a browser shows; an escaped NUL inside an
  // address makes it no address at all, not the part before the NUL.
  Import(FeedFormat::OpenPhish,
         "http://%41.Example/login\nhttp://u%40@%62.example:8080/x\nhttp://[2001:db8::1%00.evil.example]/x\n");
  EXPECT_EQ(recorder.rejections, (std::vector<std::string>{"line 3: no valid host name"}));
  Import(FeedFormat::PhishtankJson, R"([{"url":"http://c.example/","details":[{"ip_address":"203.0.113.9\u0000x"},
                                                                            {"ip_address":"203.0.113.10"}]}])");
  const Contents stored = Stored();
  EXPECT_EQ(stored.pages, (std::set<std::string>{"a.example/login", "u%40@b.example:8080/x"}));
  EXPECT_EQ(stored.addresses, (std::set<std::string>{"3405803786 c.example"}));
}

TEST_F(ImportTest, ImportingAgainAddsNothingAndEveryBatchIsReported) {
  const std::string feed =
      "http://a.example/1\nhttp://a.example/2\nhttps://a.example/1\nhttp://A.EXAMPLE/2\nb.example\n";
  const ImportSummary first = Import(FeedFormat::Lines, feed);
  EXPECT_EQ(first.added, 3u);
  EXPECT_EQ(first.known, 2u);
  EXPECT_EQ(recorder.commits, (std::vector<std::size_t>{2, 4, 5}));

  const std::int64_t version = storage->FeedVersion();
  const ImportSummary again = Import(FeedFormat::Lines, feed);
  EXPECT_EQ(again.added, 0u);
  EXPECT_EQ(again.known, 5u);
  EXPECT_EQ(storage->FeedVersion(), version);  // nothing new: the servers need not reload

  Import(FeedFormat::Lines, "http://c.example/deep/page.html\n", true);
  EXPECT_EQ(Stored().sites, (std::set<std::string>{"b.example", "c.example"}));
  EXPECT_GT(storage->FeedVersion(), version);
}

}  // namespace
}  // namespace tarnwick::server
