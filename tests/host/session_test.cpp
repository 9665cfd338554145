// The native host's session over the real band core, components and the
// reference server in-process on a loopback port: each message turns into
// band-core calls, and the reply carries the record, the strip, the actions
// the band asked of the tab and the notices it showed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "HostSession.h"
#include "NativeMessaging.h"
#include "common/TableResolver.h"
#include "components/ComponentTest.h"
#include "server/ServerFixture.h"
#include "settings/SettingValue.h"
#include "settings/mdlRegistry.h"

namespace tarnwick::testing {
namespace {

using host::HostSession;
using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::filesystem::path kBuiltPageFetch = TARNWICK_PAGEFETCH_FILE;
const std::filesystem::path kSourceData = TARNWICK_SOURCE_DATA;

class HostTest : public ::testing::Test {
 protected:
  HostTest() {
    for (const auto& built : {kBuiltRex, kBuiltPageFetch}) {
      std::filesystem::copy_file(built, paths.program / built.filename());
    }
    for (const char* file :
         {"localblock.dat", "xss.dat", "tarnwick.xml", "menu.xml", "logo.bmp", "server/update-signing.key"}) {
      std::filesystem::create_directories((server.data / file).parent_path());
      std::filesystem::copy_file(kSourceData / file, server.data / file);
    }
    for (const char* file : {"tarnwick.xml", "menu.xml", "logo.bmp"}) {
      std::filesystem::copy_file(kSourceData / file, paths.program / file);
    }
    server::testing::ImportLines(server.database, {"phish.example", "http://shop.example/cart/login.php"});
    server.Start();
    session = std::make_unique<HostSession>(
        paths, clock, *shell, [this](Log& log) { return MakeCleanTestStore(dir.path(), log); },
        Endpoints{server.Url(""), server.Url("")});
    auto table = std::make_unique<TableResolver>();
    table->names = {{"www.news.example", {8, 8, 8, 8}}, {"shop.example", {1, 1, 1, 1}}};
    session->process().resolver = std::move(table);
  }

  json Send(const json& message) { return json::parse(session->Handle(message.dump())); }
  json Navigate(int tab, const std::string& url) { return Send({{"type", "navigate"}, {"tab", tab}, {"url", url}}); }
  json Complete(int tab, const std::string& url) { return Send({{"type", "complete"}, {"tab", tab}, {"url", url}}); }
  void Set(const char* name, const std::string& value) {
    mdlRegistry::SaveSetting(*session->process().settings, mdlRegistry::kSettingsKey, name, value, kRegSz);
  }
  std::string Setting(const char* name) {
    return ToText(
        mdlRegistry::GetSetting(*session->process().settings, mdlRegistry::kSettingsKey, name, std::string("-")));
  }

  TempDir dir;
  TestPaths paths{dir.path()};
  FakeClock clock;
  std::unique_ptr<Shell> shell = MakePlatformShell();
  server::testing::ServerFixture server;
  std::unique_ptr<HostSession> session;
};

TEST_F(HostTest, AListedSiteIsAQuestionForThePageAndARedirectToOneEndsOnTheBlockPage) {
  json reply = Send({{"id", 7}, {"type", "open"}, {"tab", 1}});
  EXPECT_EQ(reply["id"], 7);
  EXPECT_TRUE(reply["started"].get<bool>());
  EXPECT_TRUE(reply["toolbar"].get<bool>());

  reply = Navigate(1, "http://phish.example/signin");
  EXPECT_EQ(reply["type"], "navigate");
  EXPECT_TRUE(reply["cancel"].get<bool>());
  EXPECT_EQ(reply["step"], "remote");
  EXPECT_EQ(reply["answer"], "no");  // the person has not agreed yet
  EXPECT_THAT(
      reply["message"].get<std::string>(),
      StartsWith("The page you are trying to visit has been blocked by the Tarnwick Toolbar because it is "
                 "believed to be part of a fraudulent phishing attack.\r\n\r\nURL: http://phish.example/signin"));
  EXPECT_FALSE(reply.contains("notices"));  // the question is the page's, not a notice
  EXPECT_EQ(reply["strip"]["risk_rank"], 10);
  EXPECT_EQ(reply["actions"], json::array());
  // The tab shows the question page; Yes there comes back as the person's answer.
  EXPECT_FALSE(Navigate(1, "chrome-extension://" TARNWICK_EXTENSION_ID "/check.html")["cancel"].get<bool>());
  reply = Send({{"type", "navigate"}, {"tab", 1}, {"url", "http://phish.example/signin"}, {"agreed", true}});
  EXPECT_FALSE(reply["cancel"].get<bool>());
  EXPECT_EQ(reply["answer"], "yes");
  EXPECT_TRUE(Navigate(1, "http://phish.example/other")["cancel"].get<bool>());  // once

  EXPECT_FALSE(Navigate(1, "http://shop.example/")["cancel"].get<bool>());
  reply = Complete(1, "http://shop.example/cart/login.php");
  EXPECT_TRUE(reply["block_page"].get<bool>());
  ASSERT_EQ(reply["actions"].size(), 1u);
  EXPECT_EQ(reply["actions"][0]["do"], "navigate");
  EXPECT_EQ(reply["actions"][0]["url"], "about:PhishingSite");
  EXPECT_TRUE(reply["actions"][0]["no_history"].get<bool>());
  EXPECT_EQ(Navigate(1, "about:PhishingSite")["step"], "scheme");
}

TEST_F(HostTest, ABenignSiteShowsItsRankAndCountryAndCtrlLetsABlockedOneThrough) {
  const json reply = Navigate(3, "http://www.news.example/today");
  EXPECT_FALSE(reply["cancel"].get<bool>());
  EXPECT_EQ(reply["strip"]["country"], "US");
  EXPECT_EQ(reply["strip"]["country_name"], "United States");
  EXPECT_GE(reply["strip"]["risk_rank"].get<int>(), 0);
  EXPECT_EQ(reply["strip"]["risk_link"], server.Url("/help/faq/index.html#riskrating"));

  const json held = Send({{"type", "navigate"}, {"tab", 3}, {"url", "http://phish.example/"}, {"ctrl", true}});
  EXPECT_FALSE(held["cancel"].get<bool>());
  EXPECT_EQ(held["answer"], nullptr);
}

TEST_F(HostTest, APostCarryingAScriptIsAQuestion) {
  const json reply =
      Send({{"type", "navigate"},
            {"tab", 1},
            {"url", "http://www.news.example/comment"},
            {"post_data", "dGV4dD0lM0NzY3JpcHQlM0VhbGVydCgxKSUzQy9zY3JpcHQlM0U="}});  // text=<script>alert(1)</script>
  EXPECT_TRUE(reply["cancel"].get<bool>());
  EXPECT_EQ(reply["step"], "xss");
}

TEST_F(HostTest, PopupsAreJudgedFromWhatThePageWasDoing) {
  Set("BlockPopups", "1");
  Navigate(2, "http://www.news.example/");
  EXPECT_EQ(Send({{"type", "popup"}, {"tab", 2}})["decision"], "refused: no document");
  Complete(2, "http://www.news.example/");
  json reply = Send({{"type", "popup"}, {"tab", 2}, {"event_type", "click"}});
  EXPECT_TRUE(reply["allowed"].get<bool>());
  reply = Send({{"type", "popup"}, {"tab", 2}, {"event_type", nullptr}, {"active_element", false}});
  EXPECT_FALSE(reply["allowed"].get<bool>());
  EXPECT_EQ(reply["decision"], "refused: opened by a script");
  reply = Send({{"type", "popup"}, {"tab", 2}});
  EXPECT_THAT(reply["strip"]["text"].get<std::string>(), StartsWith("(Popups blocked) (Popups blocked) "));
  EXPECT_TRUE(Send({{"type", "popup"}, {"tab", 2}, {"ctrl", true}})["allowed"].get<bool>());
}

TEST_F(HostTest, TheReportFormIsFilledThroughThePageAndItsValuesSavedOnSubmit) {
  Set("AutoFillName", "Alice");
  Set("AutoFillEmail", "alice@example.org");
  const std::string page = server.Url("/report_url?url=http://phish.example/");
  Navigate(4, page);
  Complete(4, page);
  const json fields = {{"name", ""}, {"email", ""}, {"reason", ""}};
  const json reply = Send({{"type", "document"}, {"tab", 4}, {"url", page}, {"forms", {{"frmReportURL", fields}}}});
  EXPECT_EQ(reply["actions"], json::parse(R"([{"do":"fill","form":"frmReportURL","field":"name","value":"Alice"},
                            {"do":"fill","form":"frmReportURL","field":"email","value":"alice@example.org"},
                            {"do":"focus","form":"frmReportURL","field":"reason"},
                            {"do":"watch_submit","form":"frmReportURL"}])"));

  const json submitted = {{"name", "Bob"}, {"email", "bob@example.org"}, {"reason", "looks like my bank"}};
  EXPECT_TRUE(Send({{"type", "submit"}, {"tab", 4}, {"form", "frmReportURL"}, {"fields", submitted}})["saved"]);
  EXPECT_EQ(Setting("AutoFillName"), "Bob");
  EXPECT_EQ(Setting("AutoFillEmail"), "bob@example.org");
  EXPECT_EQ(Send({{"type", "submit"}, {"tab", 4}, {"form", "other"}})["error"], "the page on show has no form other");

  // Any other page's forms are left alone.
  EXPECT_EQ(Send({{"type", "document"},
                  {"tab", 5},
                  {"url", "http://www.news.example/"},
                  {"forms", {{"frmReportURL", fields}}}})["actions"],
            json::array());
}

TEST_F(HostTest, OptionsArePlayedBackOnTheModelAndOkWritesWhatTheNextCheckObeys) {
  json reply = Send({{"type", "options"}});
  EXPECT_EQ(reply["caption"], "Tarnwick Toolbar Options");
  const auto& controls = reply["controls"];
  const auto risk =
      std::find_if(controls.begin(), controls.end(), [](const json& c) { return c["id"] == "slOption(4)"; });
  ASSERT_NE(risk, controls.end());
  EXPECT_EQ((*risk)["setting"], "BlockAtRiskRank");

  const json changes = json::parse(R"j([{"id":"slOption(4)","value":1},{"id":"nothing","value":1},
                                         {"id":"tbAutoFillName","text":"Carol"}])j");
  reply = Send({{"type", "options"}, {"changes", changes}});
  EXPECT_EQ(reply["refused"], json::array({changes[1]}));
  EXPECT_FALSE(reply["saved"].get<bool>());
  EXPECT_EQ(Setting("BlockAtRiskRank"), "-");  // nothing written before OK

  reply = Send({{"type", "options"}, {"changes", changes}, {"press", "cbOK"}});
  EXPECT_TRUE(reply["saved"].get<bool>());
  EXPECT_EQ(Setting("BlockAtRiskRank"), "1");
  EXPECT_EQ(Setting("AutoFillName"), "Carol");
  // shop.example is rated above 1: blocked for its rank now.
  EXPECT_EQ(Navigate(1, "http://shop.example/")["step"], "rank");
}

TEST_F(HostTest, TrustedSitesAreNotCheckedAndTheListRefusesWhatIsNoHostName) {
  Navigate(1, "http://phish.example/signin");
  Complete(1, "http://phish.example/signin");
  json reply = Send({{"type", "trust"}, {"tab", 1}, {"trusted", true}});
  EXPECT_EQ(reply["site"], "phish.example");
  EXPECT_TRUE(reply["trusted"].get<bool>());
  EXPECT_EQ(Send({{"type", "strip"}, {"tab", 1}})["trusted"], true);
  reply = Navigate(1, "http://phish.example/other");
  EXPECT_FALSE(reply["cancel"].get<bool>());
  EXPECT_EQ(reply["step"], "zone");
  EXPECT_EQ(reply["strip"]["text"], "This site is in your Trusted Sites zone.");

  reply = Send({{"type", "trusted"}, {"sites", {"bank.example", "not a host"}}});
  EXPECT_EQ(reply["error"], "\"not a host\" is not a host name");
  EXPECT_EQ(Send({{"type", "trusted"}})["sites"], json::array({"phish.example"}));
  EXPECT_FALSE(Send({{"type", "trust"}, {"tab", 1}, {"url", "http://www.phish.example/"}})["trusted"].get<bool>());
  EXPECT_EQ(Send({{"type", "trusted"}})["sites"], json::array());
}

TEST_F(HostTest, MenusRunTheirCommandsAsActionsAndNotices) {
  Navigate(1, "http://www.news.example/");
  Complete(1, "http://www.news.example/");
  const json menus = Send({{"type", "menus"}});
  EXPECT_EQ(menus["product"][6]["link"], "tarnwicktoolbar:about");
  EXPECT_EQ(menus["client"][0]["caption"], "Example Bank Home");
  EXPECT_THAT(menus["product_bitmap"].get<std::string>(), StartsWith("Qk"));  // "BM"
  EXPECT_THAT(menus["client_logo"].get<std::string>(), StartsWith("Qk"));

  json reply = Send({{"type", "menu"}, {"tab", 1}, {"menu", "product"}, {"choice", 10}});
  EXPECT_EQ(reply["actions"], json::parse(R"([{"do":"open_about"}])"));
  reply = Send({{"type", "menu"}, {"tab", 1}, {"menu", "product"}, {"choice", 1}});
  EXPECT_EQ(reply["actions"][0]["url"], server.Url("/report_url?url=http://www.news.example/"));
  reply = Send({{"type", "menu"}, {"tab", 1}, {"menu", "product"}, {"choice", 11}});
  EXPECT_EQ(reply["actions"][0]["do"], "uninstall");
  reply = Send({{"type", "menu"}, {"tab", 1}, {"menu", "product"}, {"choice", 8}});
  ASSERT_EQ(reply["notices"].size(), 1u);
  EXPECT_EQ(reply["notices"][0]["text"], "There are no updates available for the Tarnwick Toolbar.");
  EXPECT_EQ(Send({{"type", "menu"}, {"tab", 1}, {"menu", "side"}})["error"], "menu is product or client");

  reply = Send({{"type", "search"}, {"tab", 1}, {"query", "a b&c"}});
  EXPECT_EQ(reply["actions"][0]["url"], server.Url("/search/"));
  EXPECT_EQ(reply["actions"][0]["post_data"], "cT1hK2IlMjZj");  // q=a+b%26c
}

TEST_F(HostTest, TheBlockPageAndAboutDialogComeFromTheCore) {
  const json page = Send({{"type", "resource"}, {"name", "phishingsite.htm"}});
  EXPECT_THAT(page["text"].get<std::string>(), HasSubstr("<a href=\"" + server.Url("/report_mistake") + "\">"));
  EXPECT_THAT(Send({{"type", "resource"}, {"name", "logo.gif"}})["base64"].get<std::string>(), StartsWith("R0lG"));
  EXPECT_EQ(Send({{"type", "resource"}, {"name", "../etc/passwd"}})["error"], "no resource ../etc/passwd");
  const json about = Send({{"type", "about"}});
  EXPECT_EQ(about["caption"], "About Tarnwick Toolbar");
  EXPECT_EQ(about["version"], "Version 1.0.0 (20070813)");
}

TEST_F(HostTest, ClosingATabTearsItsBandDownAndTheNextMessageStartsAnother) {
  Navigate(6, "http://www.news.example/");
  json reply = Send({{"type", "close"}, {"tab", 6}});
  EXPECT_EQ(reply["teardown"].back(), "(IDeskBand_CloseDW) exiting");
  EXPECT_FALSE(session->HasTab(6));
  EXPECT_EQ(Send({{"type", "close"}, {"tab", 6}})["teardown"], json::array());
  EXPECT_TRUE(Navigate(6, "http://www.news.example/")["checked"].get<bool>());
}

// Bad messages each get an error reply in their turn; nothing before or
// after them is lost, and the session goes on.
TEST_F(HostTest, BadMessagesAreAnsweredInTurnAndNothingIsLost) {
  std::ostringstream frames;
  host::WriteFrame(frames, R"({"id":1,"type":"hello"})");
  host::WriteFrame(frames, R"({"id":2,"type":"hello")");
  host::WriteFrame(frames, R"({"id":3,"type":"reboot"})");
  const std::string huge =
      std::string(R"({"id":4,"type":"navigate","tab":1,"url":")") + std::string(host::kMaxIncomingBytes, 'a') + "\"}";
  const auto length = static_cast<std::uint32_t>(huge.size());
  frames.write(reinterpret_cast<const char*>(&length), 4);
  frames << huge;
  host::WriteFrame(frames, R"({"id":5,"type":"navigate","tab":1})");
  host::WriteFrame(frames, R"({"id":6,"type":"navigate","tab":1,"url":"http://phish.example/","post_data":17})");
  host::WriteFrame(frames, R"({"id":7,"type":"options","changes":[{"id":{"x":1}},7,{"press":"cbOK"}]})");
  host::WriteFrame(frames, R"({"id":8,"type":"hello"})");
  std::istringstream in(frames.str());
  std::ostringstream out;
  EXPECT_EQ(host::Serve(*session, in, out), 0);

  std::istringstream replies(out.str());
  std::vector<json> got;
  for (host::Frame frame; (frame = host::ReadFrame(replies)).status == host::FrameStatus::Message;) {
    got.push_back(json::parse(frame.body));
  }
  ASSERT_EQ(got.size(), 8u);
  EXPECT_EQ(got[0]["type"], "hello");
  EXPECT_EQ(got[1]["error"], "the message is not JSON");
  EXPECT_EQ(got[2]["id"], 3);
  EXPECT_EQ(got[2]["error"], "unknown message type \"reboot\"");
  EXPECT_THAT(got[3]["error"].get<std::string>(), StartsWith("the message is longer than 4 MiB"));
  EXPECT_EQ(got[4]["error"], "the message needs a text url");
  EXPECT_EQ(got[5]["type"], "navigate");  // post data that is no text is none
  EXPECT_TRUE(got[5]["cancel"].get<bool>());
  EXPECT_EQ(got[6]["refused"].size(), 3u);
  EXPECT_FALSE(got[6]["saved"].get<bool>());  // OK is pressed by "press" alone
  EXPECT_EQ(got[7]["id"], 8);
  EXPECT_EQ(got[7]["type"], "hello");

  std::istringstream cut(std::string("\x10\x00\x00\x00{\"type\"", 11));
  EXPECT_EQ(host::Serve(*session, cut, out), 1);
}

}  // namespace
}  // namespace tarnwick::testing
