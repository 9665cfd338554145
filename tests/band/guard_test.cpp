// The navigation guard against the reference server: what is checked and
// when, the block page after a redirect, pop-ups, the report form and the
// browser's bars.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BandFixture.h"

namespace tarnwick::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class GuardTest : public BandFixture {
 protected:
  void SetUp() override { ASSERT_TRUE(Start().toolbarCreated); }
  NavigationGuard& guard() { return band.guard(); }
  PopupRecord Popup(bool& cancel) {
    cancel = false;
    return guard().m_oIE_NewWindow2(cancel);
  }
};

TEST_F(GuardTest, AJumpWithinThePageIsNotCheckedAgain) {
  EXPECT_TRUE(Navigate("http://www.news.example/today").outcome.checked);
  EXPECT_EQ(ServerQuestions(), 1);
  bool cancel = false;
  EXPECT_EQ(
      guard().m_oIE_BeforeNavigate2(true, "http://www.news.example/today#weather", 0, "", {}, "", cancel).notChecked,
      NotChecked::SamePage);
  EXPECT_EQ(ServerQuestions(), 1);
  EXPECT_EQ(guard().lastURL(), "http://www.news.example/today");
  Navigate("http://www.news.example/sport");
  EXPECT_EQ(ServerQuestions(), 2);
}

TEST_F(GuardTest, AListedSiteIsStoppedBeforeItsRequestUnlessThePersonInsists) {
  t.ui.answers = {vbNo};
  NavigationRecord record = Navigate("http://phish.example/signin");
  EXPECT_TRUE(record.cancel);
  EXPECT_EQ(record.outcome.step, CheckStep::Remote);
  EXPECT_EQ(record.outcome.answer, vbNo);
  EXPECT_EQ(record.riskRank, 10);
  EXPECT_EQ(t.ui.shown.back().title, "Page Blocked");
  EXPECT_EQ(browser.location, "");  // the browser never went there

  t.ui.answers = {vbYes};
  record = Navigate("http://phish.example/other");
  EXPECT_FALSE(record.cancel);
  EXPECT_FALSE(record.blockPage);
  EXPECT_EQ(browser.location, "http://phish.example/other");
}

TEST_F(GuardTest, ARedirectToAListedPageEndsOnTheBlockPageOutOfHistory) {
  t.ui.answers = {vbNo};
  const NavigationRecord record = Navigate("http://shop.example/", "http://shop.example/cart/login.php");

  EXPECT_TRUE(record.outcome.checked);
  EXPECT_TRUE(record.blockPage);
  EXPECT_EQ(ServerQuestions(), 2);
  ASSERT_FALSE(browser.navigations.empty());
  EXPECT_EQ(browser.navigations.back().url, "about:PhishingSite");
  EXPECT_EQ(browser.navigations.back().flags, navNoHistory);
  EXPECT_TRUE(browser.navigations.back().targetFrame.empty());
  EXPECT_TRUE(band.strip().text.starts_with("(Blocked) ")) << band.strip().text;

  // The block page itself is neither checked nor checked again on arrival.
  const NavigationRecord blockPage = Navigate("about:PhishingSite");
  EXPECT_FALSE(blockPage.outcome.checked);
  EXPECT_FALSE(blockPage.blockPage);
  EXPECT_EQ(ServerQuestions(), 2);
}

TEST_F(GuardTest, ARedirectThePersonAcceptsStays) {
  t.ui.answers = {vbYes};
  EXPECT_FALSE(Navigate("http://shop.example/", "http://shop.example/cart/login.php").blockPage);
  EXPECT_TRUE(browser.navigations.empty());
}

TEST_F(GuardTest, FramesAreNeitherCheckedNorRemembered) {
  Navigate("http://www.news.example/");
  bool cancel = false;
  EXPECT_EQ(guard().m_oIE_BeforeNavigate2(false, "http://phish.example/ad", 0, "ad", {}, "", cancel).notChecked,
            NotChecked::Frame);
  EXPECT_FALSE(cancel);
  EXPECT_EQ(guard().m_oIE_NavigateComplete2(false, "http://phish.example/ad").notChecked, NotChecked::Frame);
  EXPECT_EQ(guard().lastURL(), "http://www.news.example/");
  EXPECT_EQ(ServerQuestions(), 1);
  EXPECT_TRUE(browser.navigations.empty());
}

TEST_F(GuardTest, NothingIsCheckedOffline) {
  browser.offline = true;
  bool cancel = false;
  EXPECT_EQ(guard().m_oIE_BeforeNavigate2(true, "http://phish.example/", 0, "", {}, "", cancel).notChecked,
            NotChecked::Offline);
  EXPECT_FALSE(cancel);
  EXPECT_EQ(guard().m_oIE_NavigateComplete2(true, "http://phish.example/x").notChecked, NotChecked::Offline);
  EXPECT_EQ(ServerQuestions(), 0);
}

TEST_F(GuardTest, TheStripShowsTheServersTextRankAndCountry) {
  Navigate("http://shop.example/");
  const SiteInformation& strip = windows.shown.back();
  EXPECT_EQ(strip.countryCode, "AU");
  EXPECT_EQ(strip.countryName, "Australia");
  EXPECT_GE(strip.riskRank, 0);
  EXPECT_EQ(strip.riskRank, process.CurrentRiskRank);
  EXPECT_EQ(strip.riskLink, server.Url("/help/faq/index.html#riskrating"));
  EXPECT_THAT(strip.runs, Contains(::testing::Field(&StripRun::target, server.Url("/help/faq/index.html#riskrating"))));
}

TEST_F(GuardTest, PopupsFollowTheirRulesInOrder) {
  bool cancel = false;
  // Before any page there is no document: refused.
  EXPECT_EQ(Popup(cancel).decision, PopupDecision::RefusedNoDocument);
  EXPECT_TRUE(cancel);

  Navigate("http://www.news.example/");
  browser.document->eventType = "click";
  EXPECT_EQ(Popup(cancel).decision, PopupDecision::AllowedUserEvent);
  EXPECT_FALSE(cancel);
  browser.document->eventType.reset();
  browser.document->activeElement = true;
  EXPECT_EQ(Popup(cancel).decision, PopupDecision::AllowedActive);
  browser.document->activeElement = false;
  EXPECT_EQ(Popup(cancel).decision, PopupDecision::RefusedScript);
  EXPECT_TRUE(cancel);
  t.ui.ctrlDown = true;
  EXPECT_EQ(Popup(cancel).decision, PopupDecision::AllowedCtrl);
  EXPECT_FALSE(cancel);
}

TEST_F(GuardTest, EachRefusedPopupAddsOnePrefixToTheStrip) {
  Navigate("http://www.news.example/");
  const std::string text = band.strip().text;
  bool cancel = false;
  Popup(cancel);
  EXPECT_EQ(band.strip().text, "(Popups blocked) " + text);
  const PopupRecord second = Popup(cancel);
  EXPECT_EQ(second.lastResponse, "(Popups blocked) (Popups blocked) " + text);
  EXPECT_EQ(windows.shown.back().text, second.lastResponse);
}

TEST_F(GuardTest, PagesOfTrustedSitesMayOpenPopups) {
  Set("TrustedSites", "news.example");
  Navigate("http://www.news.example/");
  EXPECT_EQ(band.strip().text, "This site is in your Trusted Sites zone.");
  bool cancel = false;
  EXPECT_EQ(Popup(cancel).decision, PopupDecision::AllowedTrusted);
  EXPECT_FALSE(cancel);
}

TEST_F(GuardTest, WithPopupBlockingOffEveryPopupOpens) {
  Set("BlockPopups", "0");
  process.LoadOptions();
  bool cancel = false;
  EXPECT_EQ(Popup(cancel).decision, PopupDecision::Allowed);
  EXPECT_FALSE(cancel);
}

class ReportFormTest : public GuardTest {
 protected:
  void ArriveAtReportPage() {
    const std::string page = server.Url("/report_url?url=http://phish.example/");
    Navigate(page);
    browser.document->formName = "frmReportURL";
    browser.document->fields = {{"name", ""}, {"email", ""}, {"reason", ""}};
    guard().m_oIE_DocumentComplete(true, page);
  }
};

TEST_F(ReportFormTest, TheFormIsFilledFromTheSettingsAndItsValuesAreSavedOnSubmit) {
  Set("AutoFillName", "Alice");
  Set("AutoFillEmail", "alice@example.org");
  process.LoadOptions();
  ArriveAtReportPage();
  RecordingDocument& page = *browser.document;
  EXPECT_EQ(page.fields["name"], "Alice");
  EXPECT_EQ(page.fields["email"], "alice@example.org");
  EXPECT_EQ(page.focused, "reason");
  EXPECT_EQ(page.watched, "frmReportURL");

  page.fields["name"] = "Bob";
  page.fields["email"] = "bob@example.org";
  guard().oForm_onsubmit();
  EXPECT_EQ(Setting("AutoFillName"), "Bob");
  EXPECT_EQ(Setting("AutoFillEmail"), "bob@example.org");
  EXPECT_EQ(process.options.AutoFillName, "Bob");
}

TEST_F(ReportFormTest, MissingFieldsAreLoggedAndOtherPagesLeftAlone) {
  const std::string page = server.Url("/report_url?url=x");
  Navigate(page);
  browser.document->formName = "frmReportURL";
  browser.document->fields = {{"email", ""}};
  guard().m_oIE_DocumentComplete(true, page);
  EXPECT_EQ(browser.document->watched, "frmReportURL");
  EXPECT_THAT(ProgramLog(), Contains("(debug) (DoReportAutoFill) Field is nothing"));

  Navigate("http://www.news.example/");
  browser.document->formName = "frmReportURL";
  guard().m_oIE_DocumentComplete(true, "http://www.news.example/");
  EXPECT_EQ(browser.document->watched, "");
}

TEST_F(ReportFormTest, NothingIsFilledOrSavedWhenThePersonSaidNo) {
  Set("AutoFillReportForm", "0");
  Set("AutoFillName", "Alice");
  process.LoadOptions();
  ArriveAtReportPage();
  EXPECT_EQ(browser.document->fields["name"], "");
  browser.document->fields["name"] = "Bob";
  guard().oForm_onsubmit();
  EXPECT_EQ(Setting("AutoFillName"), "Alice");
}

TEST_F(GuardTest, HiddenBarsComeBackWhereTheSettingsAskForThem) {
  Set("ForceToolbar", "0");
  Set("BarHeight", "40");
  process.LoadOptions();
  browser.calls.clear();
  guard().m_oIE_OnMenuBar(false);
  guard().m_oIE_OnStatusBar(false);
  guard().m_oIE_OnToolBar(false);
  guard().m_oIE_OnStatusBar(true);
  EXPECT_THAT(browser.calls, ElementsAre("MenuBar on", "AddressBar on", "StatusBar on"));
  EXPECT_EQ(browser.height, 680);
}

TEST_F(GuardTest, ArrivingKeepsTheWindowResizable) {
  browser.calls.clear();
  Navigate("http://www.news.example/");
  EXPECT_THAT(browser.calls, Contains("Resizable on"));
}

TEST_F(GuardTest, APostedFormCarryingAScriptIsStopped) {
  t.ui.answers = {vbNo};
  bool cancel = false;
  const std::string post = "comment=%3Cscript%3Ealert(1)%3C/script%3E";
  const NavigationRecord record = guard().m_oIE_BeforeNavigate2(
      true, "http://www.news.example/comment", 0, "", std::vector<std::uint8_t>(post.begin(), post.end()), "", cancel);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(record.outcome.step, CheckStep::Xss);
}

TEST_F(GuardTest, TheSearchBoxPostsItsQueryToTheTopFrame) {
  band.Search("tarnwick & co/100%");
  ASSERT_EQ(browser.navigations.size(), 1u);
  const NavigateRequest& request = browser.navigations[0];
  EXPECT_EQ(request.url, server.Url("/search/"));
  EXPECT_EQ(request.targetFrame, "_top");
  EXPECT_EQ(std::string(request.postData.begin(), request.postData.end()), "q=tarnwick+%26+co%2F100%25");
  EXPECT_EQ(request.headers, "Content-Type: application/x-www-form-urlencoded\r\n");
}

}  // namespace
}  // namespace tarnwick::testing
